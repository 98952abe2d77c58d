// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <optional>

class X11Connection;

// The XKB extension on the shared connection: set up once, keyboard change events selected, and the
// XKB event type of an incoming event.
namespace XkbEvents {

// Sets the extension up (once per connection) and selects new-keyboard, map and group-state events.
// Returns the extension's first event code; nothing when the server has no XKB.
std::optional<uint8_t> setUp(X11Connection& connection);
// The XKB event type (XCB_XKB_NEW_KEYBOARD_NOTIFY, ...) of an event, or -1 for any other event.
int xkbEventType(const xcb_generic_event_t* event, uint8_t firstEvent);
// The core keyboard's device id, or -1.
int coreKeyboardDeviceId(X11Connection& connection);

}  // namespace XkbEvents
