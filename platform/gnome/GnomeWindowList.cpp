// SPDX-License-Identifier: MIT
#include "platform/gnome/GnomeWindowList.h"

#include "platform/gnome/GnomeShellBridge.h"
#include "platform/gnome/GnomeWindowControl.h"

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

QList<WindowEntry> GnomeWindowList::entriesOf(const QList<GnomeShellWindow>& windows, DesktopWindows desktopWindows) {
    QList<WindowEntry> entries;
    for (const GnomeShellWindow& window : windows) {
        if (desktopWindows == DesktopWindows::Exclude && window.type == static_cast<int>(GnomeWindowType::Desktop)) {
            continue;
        }
        entries.append(entryFor(window));
    }
    return entries;
}

std::optional<QList<WindowEntry>> GnomeWindowList::windows(DesktopWindows desktopWindows) {
    const std::optional<QList<GnomeShellWindow>> windows = m_bridge.windows();
    if (!windows) {
        return std::nullopt;
    }
    return entriesOf(*windows, desktopWindows);
}

std::optional<WindowInventory> GnomeWindowList::inventory(DesktopWindows desktopWindows) {
    const std::optional<QList<GnomeShellWindow>> windows = m_bridge.windows();
    if (!windows) {
        return std::nullopt;
    }
    WindowInventory inventory{entriesOf(*windows, desktopWindows), {}};
    QHash<WindowId, WindowRole> roles;
    for (const GnomeShellWindow& window : *windows) {
        roles.insert(static_cast<WindowId>(window.id), GnomeWindowControl::roleOf(window));
    }
    for (const WindowEntry& entry : inventory.windows) {
        if (!entry.pid || inventory.applications.contains(*entry.pid)) {
            continue;
        }
        ApplicationWindowRoles& owned = inventory.applications[*entry.pid];
        owned.lists = {
            {Result::Ok, GnomeWindowControl::windowsOf(*windows, *entry.pid, WindowScope::Visible)},
            {Result::Ok, GnomeWindowControl::windowsOf(*windows, *entry.pid, WindowScope::IncludingMinimised)}};
        for (WindowId window : *owned.lists.includingMinimised.value) {
            owned.roles.insert(window, {Result::Ok, roles.value(window)});
        }
    }
    return inventory;
}
