// SPDX-License-Identifier: MIT
#include "KeyboardShortcuts/ShortcutRules.h"

#include <QList>

namespace KeyboardShortcuts::ShortcutRules {

bool isFunctionKey(Key key) {
    static const QList<Key> functionKeys = {Key::f1,  Key::f2,  Key::f3,  Key::f4,  Key::f5,  Key::f6,  Key::f7,
                                            Key::f8,  Key::f9,  Key::f10, Key::f11, Key::f12, Key::f13, Key::f14,
                                            Key::f15, Key::f16, Key::f17, Key::f18, Key::f19, Key::f20};
    return functionKeys.contains(key);
}

bool isOptionOnly(const Shortcut& shortcut) {
    const ModifierFlags deciding = ModifierFlag::function | ModifierFlag::command | ModifierFlag::option |
                                   ModifierFlag::control | ModifierFlag::capsLock;
    return (shortcut.modifiers() & deciding) == ModifierFlags(ModifierFlag::option);
}

Refusal refusal(const Shortcut& shortcut, bool optionOnlyRestricted) {
    const ModifierFlags commandLike = ModifierFlag::control | ModifierFlag::option | ModifierFlag::command;
    if (!(shortcut.modifiers() & commandLike) && !isFunctionKey(shortcut.key())) {
        return Refusal::needsModifier;
    }
    if (optionOnlyRestricted && isOptionOnly(shortcut)) {
        return Refusal::optionOnly;
    }
    return Refusal::none;
}

}  // namespace KeyboardShortcuts::ShortcutRules
