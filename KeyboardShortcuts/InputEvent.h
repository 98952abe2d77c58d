// SPDX-License-Identifier: MIT
#pragma once

#include <QPointF>
#include <optional>

#include "KeyboardShortcuts/ModifierFlags.h"

class QEvent;
class QKeyEvent;

namespace KeyboardShortcuts {

// A keyboard or mouse event in the terms the shortcut rules are written in: the window server's event
// types and modifier flags, and the Carbon key code of the physical key.
class InputEvent {
public:
    enum Type {
        leftMouseDown = 1,
        leftMouseUp = 2,
        rightMouseDown = 3,
        rightMouseUp = 4,
        keyDown = 10,
        keyUp = 11,
        flagsChanged = 12,
    };
    // An event mask has the bit 1 << type of each wanted type.
    static constexpr quint64 mask(Type type) { return quint64(1) << type; }

    InputEvent(Type type, std::optional<int> keyCode, ModifierFlags modifierFlags, int qtKey = 0,
               QPointF globalPosition = {});

    // The event a Qt input event stands for; nothing for events the rules do not look at.
    static std::optional<InputEvent> fromQEvent(const QEvent* event);
    // The Carbon key code of a Qt key event: from the platform's scan code when it knows it, otherwise
    // from the key the event produced on a US layout.
    static std::optional<int> carbonKeyCode(const QKeyEvent& event);

    Type type() const { return m_type; }
    // Nothing for a key that has no Carbon key code.
    std::optional<int> keyCode() const { return m_keyCode; }
    ModifierFlags modifierFlags() const { return m_modifierFlags; }
    int rawModifierFlags() const { return static_cast<int>(m_modifierFlags.toInt()); }
    // The Qt key the event produced (0 when unknown).
    int qtKey() const { return m_qtKey; }
    QPointF globalPosition() const { return m_globalPosition; }
    bool isKey() const { return m_type == keyDown || m_type == keyUp; }

private:
    Type m_type;
    std::optional<int> m_keyCode;
    ModifierFlags m_modifierFlags;
    int m_qtKey = 0;
    QPointF m_globalPosition;
};

// The Carbon key code a Qt key stands for on a US layout (letters, digits, punctuation, special keys).
std::optional<int> carbonKeyCodeForQtKey(int qtKey, bool keypad);

}  // namespace KeyboardShortcuts
