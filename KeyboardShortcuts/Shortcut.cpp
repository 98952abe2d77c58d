// SPDX-License-Identifier: MIT
#include "KeyboardShortcuts/Shortcut.h"

#include "KeyboardShortcuts/InputEvent.h"
#include "KeyboardShortcuts/SpecialKey.h"
#include "KeyboardShortcuts/Utilities.h"

namespace KeyboardShortcuts {

namespace {
QKeySequence keySequence(int qtKey, Qt::KeyboardModifiers modifiers) {
    return QKeySequence(QKeyCombination(modifiers, static_cast<Qt::Key>(qtKey)));
}
}  // namespace

std::optional<Shortcut> Shortcut::fromEvent(const InputEvent& event) {
    if (!event.isKey() || !event.keyCode()) {
        return std::nullopt;
    }
    ModifierFlags flags = event.modifierFlags();
    flags.setFlag(ModifierFlag::function, false);
    return Shortcut(*event.keyCode(), carbon(flags));
}

QString Shortcut::presentableDescription() const {
    QStringList parts = modifierNames(modifiers());
    if (const std::optional<SpecialKey> special = specialKey(key())) {
        parts.append(KeyboardShortcuts::presentableDescription(*special));
    } else {
        parts.append(capitalized(keyToCharacter(key()).value_or(QString(QChar(0xFFFD)))));
    }
    return parts.join(QLatin1Char('+'));
}

std::optional<QString> Shortcut::nsMenuItemKeyEquivalent() const {
    if (const std::optional<SpecialKey> special = specialKey(key())) {
        return appKitMenuItemKeyEquivalent(*special);
    }
    return keyToCharacter(key());
}

std::optional<QKeySequence> Shortcut::toSwiftUI() const {
    Qt::KeyboardModifiers qtModifiers = toEventModifiers(modifiers());
    if (const std::optional<SpecialKey> special = specialKey(key())) {
        const std::optional<Qt::Key> qt = qtKey(*special);
        if (!qt) {
            return std::nullopt;
        }
        if (isKeypad(*special)) {
            qtModifiers |= Qt::KeypadModifier;
        }
        return keySequence(*qt, qtModifiers);
    }
    const std::optional<QString> character = keyToCharacter(key());
    if (!character || character->size() != 1) {
        return std::nullopt;
    }
    return keySequence(character->at(0).toUpper().unicode(), qtModifiers);
}

}  // namespace KeyboardShortcuts
