// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <QtGlobal>
#include <optional>

// Carbon virtual key codes name physical key positions; Linux names the same positions with evdev scan
// codes, and the X server's keycode of a key is its evdev code + 8.
namespace CarbonKeyCodes {

std::optional<int> evdevScanCode(int carbonKeyCode);
std::optional<int> carbonKeyCodeForEvdev(int evdevScanCode);
// The X keycode of a Carbon key code, when it has one within X's range (8...255).
std::optional<xcb_keycode_t> xKeycode(int carbonKeyCode);
std::optional<int> carbonKeyCodeForXKeycode(quint32 keycode);

// X modifier masks of Carbon modifier bits: control -> Control, option -> Mod1, shift -> Shift,
// command -> Mod4. Nothing when the bits hold a modifier X has no mask for (function).
std::optional<uint16_t> xModifierMask(quint32 carbonModifiers);
// Carbon bits of an X modifier state (lock bits and other modifiers are ignored).
quint32 carbonModifiersForXState(uint16_t state);

}  // namespace CarbonKeyCodes
