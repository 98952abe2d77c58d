// SPDX-License-Identifier: MIT
#include "platform/gnome/GnomeWindowList.h"

#include "platform/gnome/GnomeShellBridge.h"

namespace {

// Mutter's layer of ordinary windows; the list counts layers from it.
constexpr int kNormalStackLayer = 2;

}  // namespace

WindowEntry GnomeWindowList::entryFor(const GnomeShellWindow& window) {
    WindowEntry entry;
    entry.id = static_cast<qint64>(window.id);
    if (window.pid > 0) {
        entry.pid = window.pid;
    }
    if (window.application) {
        entry.ownerName = window.application;
    } else if (!window.wmClass.isEmpty()) {
        entry.ownerName = window.wmClass;
    }
    entry.frame = window.frame;
    entry.layer = window.stackLayer - kNormalStackLayer;
    if (window.type == static_cast<int>(GnomeWindowType::Dock) && entry.layer <= 0) {
        entry.layer = 1;
    }
    entry.opacity = window.opacity;
    entry.onScreen = !window.minimized && window.onCurrentWorkspace;
    entry.title = window.title;
    return entry;
}

std::optional<QList<WindowEntry>> GnomeWindowList::windows(DesktopWindows desktopWindows) {
    const std::optional<QList<GnomeShellWindow>> windows = m_bridge.windows();
    if (!windows) {
        return std::nullopt;
    }
    QList<WindowEntry> entries;
    for (const GnomeShellWindow& window : *windows) {
        if (desktopWindows == DesktopWindows::Exclude && window.type == static_cast<int>(GnomeWindowType::Desktop)) {
            continue;
        }
        entries.append(entryFor(window));
    }
    return entries;
}
