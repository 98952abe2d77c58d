// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

namespace X11WindowEvents {

// Asks the server for the events subject() tells about. Costs no round trip; for a window that is
// already gone, the error is harmless and the next read of it says so.
inline void watch(xcb_connection_t* connection, xcb_window_t window) {
    const uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection, window, XCB_CW_EVENT_MASK, &mask);
}

// The window an event tells about, for the events that selecting StructureNotify and PropertyChange on
// a window brings (its geometry, properties, mapping, parent or end); XCB_NONE for any other event.
inline xcb_window_t subject(xcb_generic_event_t* event) {
    switch (event->response_type & 0x7f) {
        case XCB_PROPERTY_NOTIFY:
            return reinterpret_cast<xcb_property_notify_event_t*>(event)->window;
        case XCB_CONFIGURE_NOTIFY:
            return reinterpret_cast<xcb_configure_notify_event_t*>(event)->window;
        case XCB_MAP_NOTIFY:
            return reinterpret_cast<xcb_map_notify_event_t*>(event)->window;
        case XCB_UNMAP_NOTIFY:
            return reinterpret_cast<xcb_unmap_notify_event_t*>(event)->window;
        case XCB_DESTROY_NOTIFY:
            return reinterpret_cast<xcb_destroy_notify_event_t*>(event)->window;
        case XCB_REPARENT_NOTIFY:
            return reinterpret_cast<xcb_reparent_notify_event_t*>(event)->window;
        case XCB_GRAVITY_NOTIFY:
            return reinterpret_cast<xcb_gravity_notify_event_t*>(event)->window;
        default:
            return XCB_NONE;
    }
}

}  // namespace X11WindowEvents
