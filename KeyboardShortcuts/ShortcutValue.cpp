// SPDX-License-Identifier: MIT
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>
#include <limits>

#include "KeyboardShortcuts/Shortcut.h"

// A shortcut as a value: how it is made and stored. Kept apart from its names and key equivalents so that
// it builds without the rest of the library.

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
}  // namespace

Shortcut::Shortcut(Key key, ModifierFlags modifiers)
    : m_carbonKeyCode(key.rawValue()), m_carbonModifiers(carbon(modifiers)) {}

Shortcut::Shortcut(Key key, Qt::KeyboardModifiers modifiers) : Shortcut(key, modifierFlagsFromQt(modifiers)) {}

Shortcut::Shortcut(int carbonKeyCode, int carbonModifiers)
    : m_carbonKeyCode(carbonKeyCode), m_carbonModifiers(normalized(carbonModifiers)) {}

ModifierFlags Shortcut::modifiers() const {
    return modifierFlagsFromCarbon(m_carbonModifiers);
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
