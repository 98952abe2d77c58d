// SPDX-License-Identifier: MIT
#pragma once

#include <QWindow>

// Whether this program's windows show in the desktop's taskbar (and pager). A tray utility usually
// keeps out of it; the user may ask for it.
//
// A window the user opened to work in (the settings, the permission guide) stays in the taskbar and in
// Alt+Tab while it is open, whatever the choice: its QWindow carries this property, set to true before the
// window is first shown.
inline constexpr char kAlwaysInTaskbarProperty[] = "latticaAlwaysInTaskbar";

// Whether a window is of a kind that a taskbar lists: popups, tooltips, splash screens and desktop windows
// never are.
inline bool isTaskbarKind(const QWindow& window) {
    switch (window.type()) {
        case Qt::Window:
        case Qt::Dialog:
        case Qt::Sheet:
        case Qt::Drawer:
        case Qt::Tool:
            return true;
        default:
            return false;
    }
}

class TaskbarPresence {
public:
    TaskbarPresence() = default;
    virtual ~TaskbarPresence() = default;
    TaskbarPresence(const TaskbarPresence&) = delete;
    TaskbarPresence& operator=(const TaskbarPresence&) = delete;

    // Shows or hides our windows in the taskbar, those open now and those shown later.
    virtual void setShownInTaskbar(bool shown) = 0;
    virtual bool isShownInTaskbar() const = 0;
};
