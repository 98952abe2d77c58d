// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinWindowList.h"

#include <QSet>
#include <algorithm>

#include "platform/kwin/KWinBridge.h"
#include "platform/kwin/KWinSpace.h"
#include "platform/kwin/KWinWindowControl.h"

std::optional<QList<WindowEntry>> KWinWindowList::windows(DesktopWindows desktopWindows) {
    if (!m_bridge.isWatching()) {
        return std::nullopt;
    }
    return entriesOf(m_bridge.state(), desktopWindows);
}

std::optional<WindowInventory> KWinWindowList::inventory(DesktopWindows desktopWindows) {
    if (!m_bridge.isWatching()) {
        return std::nullopt;
    }
    const KWinState state = m_bridge.state();
    WindowInventory inventory{entriesOf(state, desktopWindows), {}};
    QSet<pid_t> owners;
    for (const WindowEntry& entry : inventory.windows) {
        if (entry.pid) {
            owners.insert(*entry.pid);
        }
    }
    inventory.applications = KWinWindowControl::applicationsIn(state, m_bridge, owners);
    return inventory;
}

QList<WindowEntry> KWinWindowList::entriesOf(const KWinState& state, DesktopWindows desktopWindows) {
    QList<KWinWindow> ordered = state.windows;
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const KWinWindow& a, const KWinWindow& b) { return a.stacking > b.stacking; });
    QList<WindowEntry> entries;
    for (const KWinWindow& window : ordered) {
        if (window.desktopWindow && desktopWindows == DesktopWindows::Exclude) {
            continue;
        }
        WindowEntry entry;
        entry.id = m_bridge.idOf(window.uuid);
        if (window.pid > 0) {
            entry.pid = window.pid;
        }
        entry.ownerName = m_names.name(window);
        entry.frame = KWinSpace::toDisplaySpace(state, window.frame);
        entry.layer = KWinSpace::layer(window);
        entry.opacity = window.opacity;
        entry.onScreen = !window.minimized && !window.hidden && window.onCurrentDesktop;
        entry.title = window.caption;
        entries.append(entry);
    }
    return entries;
}
