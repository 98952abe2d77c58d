// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <QObject>

#include "platform/TaskbarPresence.h"

class QWindow;
class X11Connection;

// Our windows in the taskbar of an X11 desktop. Hidden: every top-level window carries
// _NET_WM_STATE_SKIP_TASKBAR and _SKIP_PAGER, including windows shown later, except those marked with
// kAlwaysInTaskbarProperty.
class X11TaskbarPresence : public QObject, public TaskbarPresence {
public:
    explicit X11TaskbarPresence(X11Connection& connection);
    ~X11TaskbarPresence() override;

    void setShownInTaskbar(bool shown) override;
    bool isShownInTaskbar() const override { return m_shown; }

    // Whether a window is of a kind that a taskbar lists.
    static bool isOrdinaryTopLevel(const QWindow& window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Whether a window is kept out of the taskbar now.
    bool skips(const QWindow& window) const;
    // Sets or clears the two states on a window that is about to be mapped.
    void writeStateProperty(xcb_window_t window, bool skip);
    // Asks the window manager to set or clear them on a mapped window.
    void requestStateChange(xcb_window_t window, bool skip);
    void sync();

    X11Connection& m_connection;
    bool m_shown = true;
};
