// SPDX-License-Identifier: MIT
#pragma once

#include <QHashFunctions>
#include <QString>
#include <optional>

#include "KeyboardShortcuts/Shortcut.h"

namespace KeyboardShortcuts {

// A stable, application-chosen name of a global shortcut, with the shortcut it has while nothing is
// stored for it. A plain value: equality and hashing use the raw value only.
class Name {
public:
    explicit Name(const QString& rawValue, std::optional<Shortcut> defaultShortcut = std::nullopt)
        : m_rawValue(rawValue), m_defaultShortcut(defaultShortcut) {}

    const QString& rawValue() const { return m_rawValue; }
    const std::optional<Shortcut>& defaultShortcut() const { return m_defaultShortcut; }

    bool operator==(const Name& other) const { return m_rawValue == other.m_rawValue; }

private:
    QString m_rawValue;
    std::optional<Shortcut> m_defaultShortcut;
};

inline size_t qHash(const Name& name, size_t seed = 0) noexcept {
    return ::qHash(name.rawValue(), seed);
}

}  // namespace KeyboardShortcuts
