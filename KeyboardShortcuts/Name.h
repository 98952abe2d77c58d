#pragma once

#include <QHashFunctions>
#include <QString>
#include <optional>

#include "KeyboardShortcuts/Shortcut.h"

namespace KeyboardShortcuts {

// A stable, application-chosen name of a global shortcut. Equality and hashing use the raw value only.
class Name {
public:
    // Stores the default at once when nothing is stored under the name yet.
    explicit Name(const QString& rawValue, std::optional<Shortcut> defaultShortcut = std::nullopt);

    const QString& rawValue() const { return m_rawValue; }
    const std::optional<Shortcut>& defaultShortcut() const { return m_defaultShortcut; }

    // The stored shortcut (getShortcut) and its setter (setShortcut).
    std::optional<Shortcut> shortcut() const;
    void setShortcut(const std::optional<Shortcut>& shortcut) const;

    bool operator==(const Name& other) const { return m_rawValue == other.m_rawValue; }

private:
    QString m_rawValue;
    std::optional<Shortcut> m_defaultShortcut;
};

inline size_t qHash(const Name& name, size_t seed = 0) noexcept {
    return ::qHash(name.rawValue(), seed);
}

}  // namespace KeyboardShortcuts
