// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include "platform/x11/X11WindowFacts.h"

class X11Connection;

// Tells the window manager's own windows (its frames, menus and on-screen displays) among the root
// children without a request per window: every window a client makes carries that client's resource
// base, and the window manager made the check window it names on the root. Whether the check window
// names itself back, as only a running window manager's does, is asked at once and awaited when needed.
class X11WindowManagerWindows {
public:
    X11WindowManagerWindows(X11Connection& connection, const X11RootFacts& root);
    ~X11WindowManagerWindows();
    X11WindowManagerWindows(const X11WindowManagerWindows&) = delete;
    X11WindowManagerWindows& operator=(const X11WindowManagerWindows&) = delete;

    // Whether the window was made by the client that made the check window (before it is confirmed).
    bool madeBy(xcb_window_t window) const;
    // Whether the check window names itself, so that madeBy() names the window manager's windows.
    bool confirmed();

private:
    X11Connection& m_connection;
    xcb_window_t m_check = XCB_NONE;
    uint32_t m_resourceIdMask = 0;
    xcb_get_property_cookie_t m_cookie{};
    bool m_waiting = false;
    bool m_confirmed = false;
};
