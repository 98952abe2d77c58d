// SPDX-License-Identifier: MIT
#include "platform/x11/X11WindowManagerWindows.h"

#include "platform/x11/X11Connection.h"
#include "platform/x11/XcbReply.h"

X11WindowManagerWindows::X11WindowManagerWindows(X11Connection& connection, const X11RootFacts& root)
    : m_connection(connection), m_resourceIdMask(xcb_get_setup(connection.xcb())->resource_id_mask) {
    // Without a client list the window manager (if any) does not say which windows are clients, and
    // every mapped root child counts; then none is taken for one of the window manager's.
    if (!root.hasClientList || root.windowManagerCheck == XCB_NONE ||
        (root.windowManagerCheck & ~m_resourceIdMask) == 0) {
        return;
    }
    m_check = root.windowManagerCheck;
    m_cookie = xcb_get_property(m_connection.xcb(), 0, m_check, m_connection.atom("_NET_SUPPORTING_WM_CHECK"),
                                XCB_ATOM_WINDOW, 0, 1);
    m_waiting = true;
}

X11WindowManagerWindows::~X11WindowManagerWindows() {
    if (m_waiting) {
        xcb_discard_reply(m_connection.xcb(), m_cookie.sequence);
    }
}

bool X11WindowManagerWindows::madeBy(xcb_window_t window) const {
    return m_check != XCB_NONE && (window & ~m_resourceIdMask) == (m_check & ~m_resourceIdMask);
}

bool X11WindowManagerWindows::confirmed() {
    if (m_waiting) {
        m_waiting = false;
        const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_connection.xcb(), m_cookie, nullptr));
        m_confirmed = reply && reply->format == 32 && xcb_get_property_value_length(reply.get()) == 4 &&
                      *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get())) == m_check;
    }
    return m_confirmed;
}
