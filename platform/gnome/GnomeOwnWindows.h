// SPDX-License-Identifier: MIT
#pragma once

#include "platform/ForegroundActivation.h"
#include "platform/TaskbarPresence.h"

class GnomeShellBridge;

// Our own windows as GNOME Shell manages them. A Wayland client cannot take the focus on its own, so the
// extension activates them. GNOME Shell has no taskbar: its dash and window switcher list every
// application that has a window, and the choice is kept for the settings without changing that.
class GnomeOwnWindows : public TaskbarPresence, public ForegroundActivation {
public:
    explicit GnomeOwnWindows(GnomeShellBridge& bridge) : m_bridge(bridge) {}

    void setShownInTaskbar(bool shown) override { m_shown = shown; }
    bool isShownInTaskbar() const override { return m_shown; }
    // Activates the newest of this process's windows.
    void bringToFront() override;

private:
    GnomeShellBridge& m_bridge;
    bool m_shown = false;
};
