// SPDX-License-Identifier: MIT
#include "platform/x11/X11Ewmh.h"

#include "platform/x11/X11Connection.h"
#include "platform/x11/XcbReply.h"

namespace {

xcb_window_t windowProperty(X11Connection& connection, xcb_window_t window, xcb_atom_t property) {
    xcb_connection_t* xcb = connection.xcb();
    const XcbReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(xcb, xcb_get_property(xcb, 0, window, property, XCB_ATOM_WINDOW, 0, 1), nullptr));
    if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) < 4) {
        return XCB_NONE;
    }
    return *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
}

}  // namespace

bool X11Ewmh::windowManagerPresent(X11Connection& connection) {
    if (connection.hasError()) {
        return false;
    }
    const xcb_atom_t check = connection.atom("_NET_SUPPORTING_WM_CHECK");
    const xcb_window_t child = windowProperty(connection, connection.root(), check);
    return child != XCB_NONE && windowProperty(connection, child, check) == child;
}
