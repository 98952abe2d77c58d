// SPDX-License-Identifier: MIT
#include "KeyboardShortcuts/SpecialKey.h"

namespace KeyboardShortcuts {

const QHash<Key, SpecialKey>& keyToSpecialKeyMapping() {
    static const QHash<Key, SpecialKey> mapping = {
        {Key::return_, SpecialKey::return_},
        {Key::delete_, SpecialKey::delete_},
        {Key::deleteForward, SpecialKey::deleteForward},
        {Key::end, SpecialKey::end},
        {Key::escape, SpecialKey::escape},
        {Key::help, SpecialKey::help},
        {Key::home, SpecialKey::home},
        {Key::space, SpecialKey::space},
        {Key::tab, SpecialKey::tab},
        {Key::pageUp, SpecialKey::pageUp},
        {Key::pageDown, SpecialKey::pageDown},
        {Key::upArrow, SpecialKey::upArrow},
        {Key::rightArrow, SpecialKey::rightArrow},
        {Key::downArrow, SpecialKey::downArrow},
        {Key::leftArrow, SpecialKey::leftArrow},
        {Key::f1, SpecialKey::f1},
        {Key::f2, SpecialKey::f2},
        {Key::f3, SpecialKey::f3},
        {Key::f4, SpecialKey::f4},
        {Key::f5, SpecialKey::f5},
        {Key::f6, SpecialKey::f6},
        {Key::f7, SpecialKey::f7},
        {Key::f8, SpecialKey::f8},
        {Key::f9, SpecialKey::f9},
        {Key::f10, SpecialKey::f10},
        {Key::f11, SpecialKey::f11},
        {Key::f12, SpecialKey::f12},
        {Key::f13, SpecialKey::f13},
        {Key::f14, SpecialKey::f14},
        {Key::f15, SpecialKey::f15},
        {Key::f16, SpecialKey::f16},
        {Key::f17, SpecialKey::f17},
        {Key::f18, SpecialKey::f18},
        {Key::f19, SpecialKey::f19},
        {Key::f20, SpecialKey::f20},
        {Key::keypad0, SpecialKey::keypad0},
        {Key::keypad1, SpecialKey::keypad1},
        {Key::keypad2, SpecialKey::keypad2},
        {Key::keypad3, SpecialKey::keypad3},
        {Key::keypad4, SpecialKey::keypad4},
        {Key::keypad5, SpecialKey::keypad5},
        {Key::keypad6, SpecialKey::keypad6},
        {Key::keypad7, SpecialKey::keypad7},
        {Key::keypad8, SpecialKey::keypad8},
        {Key::keypad9, SpecialKey::keypad9},
        {Key::keypadClear, SpecialKey::keypadClear},
        {Key::keypadDecimal, SpecialKey::keypadDecimal},
        {Key::keypadDivide, SpecialKey::keypadDivide},
        {Key::keypadEnter, SpecialKey::keypadEnter},
        {Key::keypadEquals, SpecialKey::keypadEquals},
        {Key::keypadMinus, SpecialKey::keypadMinus},
        {Key::keypadMultiply, SpecialKey::keypadMultiply},
        {Key::keypadPlus, SpecialKey::keypadPlus},
    };
    return mapping;
}

std::optional<SpecialKey> specialKey(Key key) {
    const auto& mapping = keyToSpecialKeyMapping();
    const auto found = mapping.constFind(key);
    if (found == mapping.constEnd()) {
        return std::nullopt;
    }
    return *found;
}

namespace {
constexpr char16_t kKeycap = u'\u20E3';

int functionKeyNumber(SpecialKey key) {
    const int offset = static_cast<int>(key) - static_cast<int>(SpecialKey::f1);
    return offset >= 0 && offset < 20 ? offset + 1 : 0;
}

int keypadDigit(SpecialKey key) {
    const int offset = static_cast<int>(key) - static_cast<int>(SpecialKey::keypad0);
    return offset >= 0 && offset < 10 ? offset : -1;
}

QString keycap(QChar base) {
    return QString(base) + QChar(kKeycap);
}
}  // namespace

QString presentableDescription(SpecialKey key) {
    if (const int number = functionKeyNumber(key); number > 0) {
        return QStringLiteral("F%1").arg(number);
    }
    // Keypad keys carry Qt's "Num+" prefix, so that they read apart from their main-keyboard twins.
    if (const int digit = keypadDigit(key); digit >= 0) {
        return QStringLiteral("Num+%1").arg(digit);
    }
    switch (key) {
        case SpecialKey::return_:
            return QStringLiteral("Return");
        case SpecialKey::delete_:
            return QStringLiteral("Backspace");
        case SpecialKey::deleteForward:
            return QStringLiteral("Delete");
        case SpecialKey::end:
            return QStringLiteral("End");
        case SpecialKey::escape:
            return QStringLiteral("Escape");
        case SpecialKey::help:
            // The key at this position is Insert on PC keyboards.
            return QStringLiteral("Insert");
        case SpecialKey::home:
            return QStringLiteral("Home");
        case SpecialKey::space:
            return QStringLiteral("Space");
        case SpecialKey::tab:
            return QStringLiteral("Tab");
        case SpecialKey::pageUp:
            return QStringLiteral("Page Up");
        case SpecialKey::pageDown:
            return QStringLiteral("Page Down");
        case SpecialKey::upArrow:
            return QStringLiteral("Up");
        case SpecialKey::rightArrow:
            return QStringLiteral("Right");
        case SpecialKey::downArrow:
            return QStringLiteral("Down");
        case SpecialKey::leftArrow:
            return QStringLiteral("Left");
        case SpecialKey::keypadClear:
            return QStringLiteral("Num+Clear");
        case SpecialKey::keypadDecimal:
            return QStringLiteral("Num+.");
        case SpecialKey::keypadDivide:
            return QStringLiteral("Num+/");
        case SpecialKey::keypadEnter:
            return QStringLiteral("Num+Enter");
        case SpecialKey::keypadEquals:
            return QStringLiteral("Num+=");
        case SpecialKey::keypadMinus:
            return QStringLiteral("Num+-");
        case SpecialKey::keypadMultiply:
            return QStringLiteral("Num+*");
        case SpecialKey::keypadPlus:
            return QStringLiteral("Num++");
        default:
            return QString();
    }
}

QString glyph(SpecialKey key) {
    if (const int number = functionKeyNumber(key); number > 0) {
        return QStringLiteral("F%1").arg(number);
    }
    if (const int digit = keypadDigit(key); digit >= 0) {
        return keycap(QChar(u'0' + digit));
    }
    switch (key) {
        case SpecialKey::return_:
            return QStringLiteral("\u21A9");
        case SpecialKey::delete_:
            return QStringLiteral("\u232B");
        case SpecialKey::deleteForward:
            return QStringLiteral("\u2326");
        case SpecialKey::end:
            return QStringLiteral("\u2198");
        case SpecialKey::escape:
            return QStringLiteral("\u238B");
        case SpecialKey::help:
            return QStringLiteral("?\u20DD");
        case SpecialKey::home:
            return QStringLiteral("\u2196");
        case SpecialKey::space:
            return QStringLiteral("Space");
        case SpecialKey::tab:
            return QStringLiteral("\u21E5");
        case SpecialKey::pageUp:
            return QStringLiteral("\u21DE");
        case SpecialKey::pageDown:
            return QStringLiteral("\u21DF");
        case SpecialKey::upArrow:
            return QStringLiteral("\u2191");
        case SpecialKey::rightArrow:
            return QStringLiteral("\u2192");
        case SpecialKey::downArrow:
            return QStringLiteral("\u2193");
        case SpecialKey::leftArrow:
            return QStringLiteral("\u2190");
        case SpecialKey::keypadClear:
            return keycap(QChar(0x2612));
        case SpecialKey::keypadDecimal:
            return keycap(u'.');
        case SpecialKey::keypadDivide:
            return keycap(u'/');
        case SpecialKey::keypadEnter:
            return keycap(QChar(0x21A9));
        case SpecialKey::keypadEquals:
            return keycap(u'=');
        case SpecialKey::keypadMinus:
            return keycap(u'-');
        case SpecialKey::keypadMultiply:
            return keycap(u'*');
        case SpecialKey::keypadPlus:
            return keycap(u'+');
        default:
            return QString();
    }
}

bool isKeypad(SpecialKey key) {
    return key >= SpecialKey::keypad0 && key <= SpecialKey::keypadPlus;
}

std::optional<QString> appKitMenuItemKeyEquivalent(SpecialKey key) {
    if (isKeypad(key)) {
        return std::nullopt;
    }
    if (const int number = functionKeyNumber(key); number > 0) {
        // The function-key characters of the private use area: F1 is U+F704.
        return QString(QChar(0xF704 + number - 1));
    }
    if (key == SpecialKey::space) {
        return QStringLiteral(" ");
    }
    // The remaining keys are known to menus by their glyphs.
    return glyph(key);
}

std::optional<Qt::Key> qtKey(SpecialKey key) {
    if (const int number = functionKeyNumber(key); number > 0) {
        return static_cast<Qt::Key>(Qt::Key_F1 + number - 1);
    }
    if (const int digit = keypadDigit(key); digit >= 0) {
        return static_cast<Qt::Key>(Qt::Key_0 + digit);
    }
    switch (key) {
        case SpecialKey::return_:
            return Qt::Key_Return;
        case SpecialKey::delete_:
            return Qt::Key_Backspace;
        case SpecialKey::deleteForward:
            return Qt::Key_Delete;
        case SpecialKey::end:
            return Qt::Key_End;
        case SpecialKey::escape:
            return Qt::Key_Escape;
        case SpecialKey::help:
            return Qt::Key_Help;
        case SpecialKey::home:
            return Qt::Key_Home;
        case SpecialKey::space:
            return Qt::Key_Space;
        case SpecialKey::tab:
            return Qt::Key_Tab;
        case SpecialKey::pageUp:
            return Qt::Key_PageUp;
        case SpecialKey::pageDown:
            return Qt::Key_PageDown;
        case SpecialKey::upArrow:
            return Qt::Key_Up;
        case SpecialKey::rightArrow:
            return Qt::Key_Right;
        case SpecialKey::downArrow:
            return Qt::Key_Down;
        case SpecialKey::leftArrow:
            return Qt::Key_Left;
        case SpecialKey::keypadClear:
            return Qt::Key_Clear;
        case SpecialKey::keypadDecimal:
            return Qt::Key_Period;
        case SpecialKey::keypadDivide:
            return Qt::Key_Slash;
        case SpecialKey::keypadEnter:
            return Qt::Key_Enter;
        case SpecialKey::keypadEquals:
            return Qt::Key_Equal;
        case SpecialKey::keypadMinus:
            return Qt::Key_Minus;
        case SpecialKey::keypadMultiply:
            return Qt::Key_Asterisk;
        case SpecialKey::keypadPlus:
            return Qt::Key_Plus;
        default:
            return std::nullopt;
    }
}

}  // namespace KeyboardShortcuts
