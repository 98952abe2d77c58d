// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include "platform/ForegroundActivation.h"
#include "platform/TaskbarPresence.h"

class GnomeShellBridge;
class QWindow;

// Our own windows as GNOME Shell manages them. A Wayland client cannot take the focus on its own, so the
// extension activates them: the panel (a top-level pop-up) as soon as the Shell shows it, so that it has
// the keyboard (Escape) and loses the focus on a click outside, as elsewhere. GNOME Shell has no taskbar:
// its dash and window switcher list every application that has a window, and the choice is kept for the
// settings without changing that.
class GnomeOwnWindows : public QObject, public TaskbarPresence, public ForegroundActivation {
public:
    explicit GnomeOwnWindows(GnomeShellBridge& bridge);
    ~GnomeOwnWindows() override;

    void setShownInTaskbar(bool shown) override { m_shown = shown; }
    bool isShownInTaskbar() const override { return m_shown; }
    // Activates the newest of this process's windows.
    void bringToFront() override;

    // Whether the Shell is to activate the window as it shows it.
    static bool activatedWhenShown(const QWindow& window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    GnomeShellBridge& m_bridge;
    bool m_shown = false;
};
