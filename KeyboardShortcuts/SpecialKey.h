// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QString>
#include <Qt>
#include <optional>

#include "KeyboardShortcuts/Key.h"

namespace KeyboardShortcuts {

// Keys that print no character and are shown with a glyph of their own.
enum class SpecialKey {
    return_,
    delete_,
    deleteForward,
    end,
    escape,
    help,
    home,
    space,
    tab,
    pageUp,
    pageDown,
    upArrow,
    rightArrow,
    downArrow,
    leftArrow,
    f1,
    f2,
    f3,
    f4,
    f5,
    f6,
    f7,
    f8,
    f9,
    f10,
    f11,
    f12,
    f13,
    f14,
    f15,
    f16,
    f17,
    f18,
    f19,
    f20,
    keypad0,
    keypad1,
    keypad2,
    keypad3,
    keypad4,
    keypad5,
    keypad6,
    keypad7,
    keypad8,
    keypad9,
    keypadClear,
    keypadDecimal,
    keypadDivide,
    keypadEnter,
    keypadEquals,
    keypadMinus,
    keypadMultiply,
    keypadPlus,
};

// Every special key, keyed by the Key of the same name (53 entries).
const QHash<Key, SpecialKey>& keyToSpecialKeyMapping();
std::optional<SpecialKey> specialKey(Key key);

// The key's name as desktop shortcut settings spell it ("Return", "Page Up", "F5", "Num+0", ...).
QString presentableDescription(SpecialKey key);
// The key's glyph ("↩", "⇞", "F5", "0⃣", ...): the form of menu key equivalents, never shown on Linux.
QString glyph(SpecialKey key);
// The key equivalent of a menu item; nothing for the keypad keys.
std::optional<QString> appKitMenuItemKeyEquivalent(SpecialKey key);
// The Qt key of a widget keyboard shortcut; nothing when Qt has no named key for it.
std::optional<Qt::Key> qtKey(SpecialKey key);
// Whether Qt needs the keypad modifier to tell this key from its main-keyboard twin.
bool isKeypad(SpecialKey key);

}  // namespace KeyboardShortcuts
