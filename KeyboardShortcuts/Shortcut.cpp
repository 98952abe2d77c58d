#include "KeyboardShortcuts/Shortcut.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>
#include <limits>

#include "KeyboardShortcuts/InputEvent.h"
#include "KeyboardShortcuts/SpecialKey.h"
#include "KeyboardShortcuts/Utilities.h"

namespace KeyboardShortcuts {

namespace {
int normalized(int carbonModifiers) {
    return carbon(modifierFlagsFromCarbon(carbonModifiers));
}

// A JSON member that is an integer within 32 bits.
std::optional<int> integerMember(const QJsonObject& object, const char* key) {
    const QJsonValue value = object.value(QLatin1String(key));
    if (!value.isDouble()) {
        return std::nullopt;
    }
    const double number = value.toDouble();
    if (std::floor(number) != number || number < std::numeric_limits<int>::min() ||
        number > std::numeric_limits<int>::max()) {
        return std::nullopt;
    }
    return static_cast<int>(number);
}

QKeySequence keySequence(int qtKey, Qt::KeyboardModifiers modifiers) {
    return QKeySequence(QKeyCombination(modifiers, static_cast<Qt::Key>(qtKey)));
}
}  // namespace

Shortcut::Shortcut(Key key, ModifierFlags modifiers)
    : m_carbonKeyCode(key.rawValue()), m_carbonModifiers(carbon(modifiers)) {}

Shortcut::Shortcut(Key key, Qt::KeyboardModifiers modifiers) : Shortcut(key, modifierFlagsFromQt(modifiers)) {}

Shortcut::Shortcut(int carbonKeyCode, int carbonModifiers)
    : m_carbonKeyCode(carbonKeyCode), m_carbonModifiers(normalized(carbonModifiers)) {}

std::optional<Shortcut> Shortcut::fromEvent(const InputEvent& event) {
    if (!event.isKey() || !event.keyCode()) {
        return std::nullopt;
    }
    ModifierFlags flags = event.modifierFlags();
    flags.setFlag(ModifierFlag::function, false);
    return Shortcut(*event.keyCode(), carbon(flags));
}

ModifierFlags Shortcut::modifiers() const {
    return modifierFlagsFromCarbon(m_carbonModifiers);
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

QByteArray Shortcut::toJson() const {
    // Written by hand so that the member order is fixed.
    return QByteArrayLiteral("{\"carbonKeyCode\":") + QByteArray::number(m_carbonKeyCode) +
           QByteArrayLiteral(",\"carbonModifiers\":") + QByteArray::number(m_carbonModifiers) + '}';
}

std::optional<Shortcut> Shortcut::fromJson(const QByteArray& json) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        return std::nullopt;
    }
    const QJsonObject object = document.object();
    const std::optional<int> keyCode = integerMember(object, "carbonKeyCode");
    const std::optional<int> modifiers = integerMember(object, "carbonModifiers");
    // Key codes are 16-bit; a larger stored one is corrupt data, not a key.
    if (!keyCode || !modifiers || *keyCode < 0 || *keyCode > 0xFFFF) {
        return std::nullopt;
    }
    return Shortcut(*keyCode, *modifiers);
}

}  // namespace KeyboardShortcuts
