// SPDX-License-Identifier: MIT
#include "KeyboardShortcuts/InputEvent.h"

#include <QHash>
#include <QKeyEvent>
#include <QMouseEvent>

#include "KeyboardShortcuts/Key.h"
#include "platform/KeyboardLayout.h"
#include "platform/Platform.h"

namespace KeyboardShortcuts {

InputEvent::InputEvent(Type type, std::optional<int> keyCode, ModifierFlags modifierFlags, int qtKey,
                       QPointF globalPosition)
    : m_type(type),
      m_keyCode(keyCode),
      m_modifierFlags(modifierFlags),
      m_qtKey(qtKey),
      m_globalPosition(globalPosition) {}

std::optional<int> InputEvent::carbonKeyCode(const QKeyEvent& event) {
    if (KeyboardLayout* layout = Platform::services().keyboardLayout; layout != nullptr) {
        if (event.nativeScanCode() != 0) {
            if (const std::optional<int> code = layout->carbonKeyCodeForScanCode(event.nativeScanCode())) {
                return code;
            }
        }
    }
    return carbonKeyCodeForQtKey(event.key(), event.modifiers().testFlag(Qt::KeypadModifier));
}

std::optional<InputEvent> InputEvent::fromQEvent(const QEvent* event) {
    switch (event->type()) {
        case QEvent::KeyPress:
        case QEvent::KeyRelease: {
            const auto* keyEvent = static_cast<const QKeyEvent*>(event);
            const bool isModifierKey = keyEvent->key() == Qt::Key_Shift || keyEvent->key() == Qt::Key_Control ||
                                       keyEvent->key() == Qt::Key_Alt || keyEvent->key() == Qt::Key_Meta ||
                                       keyEvent->key() == Qt::Key_Super_L || keyEvent->key() == Qt::Key_Super_R ||
                                       keyEvent->key() == Qt::Key_CapsLock || keyEvent->key() == Qt::Key_NumLock ||
                                       keyEvent->key() == Qt::Key_AltGr;
            const Type type = isModifierKey ? flagsChanged : event->type() == QEvent::KeyPress ? keyDown : keyUp;
            return InputEvent(type, carbonKeyCode(*keyEvent), modifierFlagsFromQt(keyEvent->modifiers()),
                              keyEvent->key());
        }
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease: {
            const auto* mouseEvent = static_cast<const QMouseEvent*>(event);
            const bool press = event->type() == QEvent::MouseButtonPress;
            Type type;
            if (mouseEvent->button() == Qt::LeftButton) {
                type = press ? leftMouseDown : leftMouseUp;
            } else if (mouseEvent->button() == Qt::RightButton) {
                type = press ? rightMouseDown : rightMouseUp;
            } else {
                return std::nullopt;
            }
            return InputEvent(type, std::nullopt, modifierFlagsFromQt(mouseEvent->modifiers()), 0,
                              mouseEvent->globalPosition());
        }
        default:
            return std::nullopt;
    }
}

std::optional<int> carbonKeyCodeForQtKey(int qtKey, bool keypad) {
    static const QHash<int, Key> keypadKeys = {
        {Qt::Key_0, Key::keypad0},
        {Qt::Key_1, Key::keypad1},
        {Qt::Key_2, Key::keypad2},
        {Qt::Key_3, Key::keypad3},
        {Qt::Key_4, Key::keypad4},
        {Qt::Key_5, Key::keypad5},
        {Qt::Key_6, Key::keypad6},
        {Qt::Key_7, Key::keypad7},
        {Qt::Key_8, Key::keypad8},
        {Qt::Key_9, Key::keypad9},
        {Qt::Key_Clear, Key::keypadClear},
        {Qt::Key_Period, Key::keypadDecimal},
        {Qt::Key_Slash, Key::keypadDivide},
        {Qt::Key_Enter, Key::keypadEnter},
        {Qt::Key_Equal, Key::keypadEquals},
        {Qt::Key_Minus, Key::keypadMinus},
        {Qt::Key_Asterisk, Key::keypadMultiply},
        {Qt::Key_Plus, Key::keypadPlus},
    };
    static const QHash<int, Key> keys = {
        {Qt::Key_A, Key::a},
        {Qt::Key_B, Key::b},
        {Qt::Key_C, Key::c},
        {Qt::Key_D, Key::d},
        {Qt::Key_E, Key::e},
        {Qt::Key_F, Key::f},
        {Qt::Key_G, Key::g},
        {Qt::Key_H, Key::h},
        {Qt::Key_I, Key::i},
        {Qt::Key_J, Key::j},
        {Qt::Key_K, Key::k},
        {Qt::Key_L, Key::l},
        {Qt::Key_M, Key::m},
        {Qt::Key_N, Key::n},
        {Qt::Key_O, Key::o},
        {Qt::Key_P, Key::p},
        {Qt::Key_Q, Key::q},
        {Qt::Key_R, Key::r},
        {Qt::Key_S, Key::s},
        {Qt::Key_T, Key::t},
        {Qt::Key_U, Key::u},
        {Qt::Key_V, Key::v},
        {Qt::Key_W, Key::w},
        {Qt::Key_X, Key::x},
        {Qt::Key_Y, Key::y},
        {Qt::Key_Z, Key::z},
        {Qt::Key_0, Key::zero},
        {Qt::Key_1, Key::one},
        {Qt::Key_2, Key::two},
        {Qt::Key_3, Key::three},
        {Qt::Key_4, Key::four},
        {Qt::Key_5, Key::five},
        {Qt::Key_6, Key::six},
        {Qt::Key_7, Key::seven},
        {Qt::Key_8, Key::eight},
        {Qt::Key_9, Key::nine},
        {Qt::Key_Return, Key::return_},
        {Qt::Key_Enter, Key::keypadEnter},
        {Qt::Key_Backslash, Key::backslash},
        {Qt::Key_QuoteLeft, Key::backtick},
        {Qt::Key_Comma, Key::comma},
        {Qt::Key_Equal, Key::equal},
        {Qt::Key_Minus, Key::minus},
        {Qt::Key_Period, Key::period},
        {Qt::Key_Apostrophe, Key::quote},
        {Qt::Key_Semicolon, Key::semicolon},
        {Qt::Key_Slash, Key::slash},
        {Qt::Key_Space, Key::space},
        {Qt::Key_Tab, Key::tab},
        {Qt::Key_Backtab, Key::tab},
        {Qt::Key_BracketLeft, Key::leftBracket},
        {Qt::Key_BracketRight, Key::rightBracket},
        {Qt::Key_PageUp, Key::pageUp},
        {Qt::Key_PageDown, Key::pageDown},
        {Qt::Key_Home, Key::home},
        {Qt::Key_End, Key::end},
        {Qt::Key_Up, Key::upArrow},
        {Qt::Key_Right, Key::rightArrow},
        {Qt::Key_Down, Key::downArrow},
        {Qt::Key_Left, Key::leftArrow},
        {Qt::Key_Escape, Key::escape},
        {Qt::Key_Backspace, Key::delete_},
        {Qt::Key_Delete, Key::deleteForward},
        {Qt::Key_Help, Key::help},
        {Qt::Key_Insert, Key::help},
        {Qt::Key_VolumeMute, Key::mute},
        {Qt::Key_VolumeUp, Key::volumeUp},
        {Qt::Key_VolumeDown, Key::volumeDown},
        {Qt::Key_CapsLock, Key::capsLock},
        {Qt::Key_Shift, Key::shift},
        {Qt::Key_Control, Key::control},
        {Qt::Key_Alt, Key::option},
        {Qt::Key_Meta, Key::command},
        {Qt::Key_F1, Key::f1},
        {Qt::Key_F2, Key::f2},
        {Qt::Key_F3, Key::f3},
        {Qt::Key_F4, Key::f4},
        {Qt::Key_F5, Key::f5},
        {Qt::Key_F6, Key::f6},
        {Qt::Key_F7, Key::f7},
        {Qt::Key_F8, Key::f8},
        {Qt::Key_F9, Key::f9},
        {Qt::Key_F10, Key::f10},
        {Qt::Key_F11, Key::f11},
        {Qt::Key_F12, Key::f12},
        {Qt::Key_F13, Key::f13},
        {Qt::Key_F14, Key::f14},
        {Qt::Key_F15, Key::f15},
        {Qt::Key_F16, Key::f16},
        {Qt::Key_F17, Key::f17},
        {Qt::Key_F18, Key::f18},
        {Qt::Key_F19, Key::f19},
        {Qt::Key_F20, Key::f20},
        // Shifted symbols of the US layout.
        {Qt::Key_Exclam, Key::one},
        {Qt::Key_At, Key::two},
        {Qt::Key_NumberSign, Key::three},
        {Qt::Key_Dollar, Key::four},
        {Qt::Key_Percent, Key::five},
        {Qt::Key_AsciiCircum, Key::six},
        {Qt::Key_Ampersand, Key::seven},
        {Qt::Key_Asterisk, Key::eight},
        {Qt::Key_ParenLeft, Key::nine},
        {Qt::Key_ParenRight, Key::zero},
        {Qt::Key_Underscore, Key::minus},
        {Qt::Key_Plus, Key::equal},
        {Qt::Key_BraceLeft, Key::leftBracket},
        {Qt::Key_BraceRight, Key::rightBracket},
        {Qt::Key_Bar, Key::backslash},
        {Qt::Key_Colon, Key::semicolon},
        {Qt::Key_QuoteDbl, Key::quote},
        {Qt::Key_Less, Key::comma},
        {Qt::Key_Greater, Key::period},
        {Qt::Key_Question, Key::slash},
        {Qt::Key_AsciiTilde, Key::backtick},
    };
    if (keypad) {
        if (const auto found = keypadKeys.constFind(qtKey); found != keypadKeys.constEnd()) {
            return found->rawValue();
        }
    }
    if (const auto found = keys.constFind(qtKey); found != keys.constEnd()) {
        return found->rawValue();
    }
    return std::nullopt;
}

}  // namespace KeyboardShortcuts
