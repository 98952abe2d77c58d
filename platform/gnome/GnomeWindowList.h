// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WindowList.h"
#include "platform/gnome/GnomeShellState.h"

class GnomeShellBridge;

// GNOME Shell's windows, front to back, through the extension.
class GnomeWindowList : public WindowList {
public:
    explicit GnomeWindowList(GnomeShellBridge& bridge) : m_bridge(bridge) {}

    std::optional<QList<WindowEntry>> windows(DesktopWindows desktopWindows) override;
    // One question to the Shell for the list and for what the window control tells of its owners.
    std::optional<WindowInventory> inventory(DesktopWindows desktopWindows) override;

    // The list's entry for one of the Shell's windows.
    static WindowEntry entryFor(const GnomeShellWindow& window);

private:
    static QList<WindowEntry> entriesOf(const QList<GnomeShellWindow>& windows, DesktopWindows desktopWindows);

    GnomeShellBridge& m_bridge;
};
