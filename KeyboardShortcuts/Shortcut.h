// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QHashFunctions>
#include <QKeySequence>
#include <QString>
#include <optional>

#include "KeyboardShortcuts/Key.h"
#include "KeyboardShortcuts/ModifierFlags.h"

namespace KeyboardShortcuts {

class InputEvent;

// One physical key plus modifiers, in Carbon key codes and Carbon modifier bits. This is the value
// that is stored, registered as a hot key and shown to the user.
class Shortcut {
public:
    Shortcut(Key key, ModifierFlags modifiers = {});
    Shortcut(Key key, Qt::KeyboardModifiers modifiers);
    // Keeps the key code as given; modifier bits other than the five known ones are dropped.
    Shortcut(int carbonKeyCode, int carbonModifiers);

    // A shortcut from a key-down or key-up event; nothing for any other event or a key without a
    // Carbon code. The function flag is never captured from a typed event.
    static std::optional<Shortcut> fromEvent(const InputEvent& event);

    int carbonKeyCode() const { return m_carbonKeyCode; }
    int carbonModifiers() const { return m_carbonModifiers; }
    Key key() const { return Key(m_carbonKeyCode); }
    ModifierFlags modifiers() const;

    // The display string as Linux users read it: modifier names then the key, joined by "+"
    // ("Ctrl+Alt+Shift+K", "Super+Left").
    QString presentableDescription() const;
    QString description() const { return presentableDescription(); }
    // The key equivalent string of a menu item, if the key has one.
    std::optional<QString> nsMenuItemKeyEquivalent() const;
    // The keyboard shortcut a QAction or button takes (the counterpart of a framework keyboard
    // shortcut); nothing when the key has no such form.
    std::optional<QKeySequence> toSwiftUI() const;

    // {"carbonKeyCode":40,"carbonModifiers":4352}
    QByteArray toJson() const;
    // Either key order; nothing when a member is missing, not an integer or outside 32 bits, or when the
    // key code is outside 0...65535.
    static std::optional<Shortcut> fromJson(const QByteArray& json);

    bool operator==(const Shortcut&) const = default;

private:
    int m_carbonKeyCode = 0;
    int m_carbonModifiers = 0;
};

inline size_t qHash(const Shortcut& shortcut, size_t seed = 0) noexcept {
    return qHashMulti(seed, shortcut.carbonKeyCode(), shortcut.carbonModifiers());
}

}  // namespace KeyboardShortcuts
