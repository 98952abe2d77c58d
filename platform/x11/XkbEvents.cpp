// SPDX-License-Identifier: MIT
#include "platform/x11/XkbEvents.h"

// xkb.h names a field "explicit", a C++ keyword.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
#include <xkbcommon/xkbcommon-x11.h>

#include <QHash>

#include "platform/x11/X11Connection.h"

namespace XkbEvents {

namespace {
QHash<xcb_connection_t*, uint8_t>& firstEvents() {
    static QHash<xcb_connection_t*, uint8_t> events;
    return events;
}
}  // namespace

std::optional<uint8_t> setUp(X11Connection& connection) {
    xcb_connection_t* xcb = connection.xcb();
    if (const auto found = firstEvents().constFind(xcb); found != firstEvents().constEnd()) {
        return *found;
    }
    uint8_t firstEvent = 0;
    if (xkb_x11_setup_xkb_extension(xcb, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                    XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &firstEvent,
                                    nullptr) == 0) {
        return std::nullopt;
    }
    const int device = xkb_x11_get_core_keyboard_device_id(xcb);
    const uint16_t events =
        XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
    const uint16_t mapParts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP |
                              XCB_XKB_MAP_PART_EXPLICIT_COMPONENTS | XCB_XKB_MAP_PART_KEY_ACTIONS |
                              XCB_XKB_MAP_PART_VIRTUAL_MODS | XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
    xcb_xkb_select_events_details_t details = {};
    details.affectNewKeyboard = XCB_XKB_NKN_DETAIL_KEYCODES;
    details.newKeyboardDetails = XCB_XKB_NKN_DETAIL_KEYCODES;
    details.affectState = XCB_XKB_STATE_PART_GROUP_BASE | XCB_XKB_STATE_PART_GROUP_LATCH |
                          XCB_XKB_STATE_PART_GROUP_LOCK | XCB_XKB_STATE_PART_MODIFIER_BASE |
                          XCB_XKB_STATE_PART_MODIFIER_LATCH | XCB_XKB_STATE_PART_MODIFIER_LOCK;
    details.stateDetails = details.affectState;
    xcb_xkb_select_events_aux(xcb, static_cast<xcb_xkb_device_spec_t>(device), events, 0, 0, mapParts, mapParts,
                              &details);
    connection.flush();
    firstEvents().insert(xcb, firstEvent);
    return firstEvent;
}

int xkbEventType(const xcb_generic_event_t* event, uint8_t firstEvent) {
    if ((event->response_type & 0x7F) != firstEvent) {
        return -1;
    }
    return reinterpret_cast<const xcb_xkb_new_keyboard_notify_event_t*>(event)->xkbType;
}

int coreKeyboardDeviceId(X11Connection& connection) {
    return xkb_x11_get_core_keyboard_device_id(connection.xcb());
}

}  // namespace XkbEvents
