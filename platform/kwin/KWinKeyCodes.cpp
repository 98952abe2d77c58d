// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinKeyCodes.h"

#include <QHash>
#include <QString>

namespace {

// Carbon modifier bits.
constexpr quint32 kCommand = 1U << 8;
constexpr quint32 kShift = 1U << 9;
constexpr quint32 kOption = 1U << 11;
constexpr quint32 kControl = 1U << 12;
constexpr quint32 kFunction = 1U << 17;

const QHash<int, int>& keysThatTypeNothing() {
    static const QHash<int, int> table{
        {0x24, Qt::Key_Return}, {0x30, Qt::Key_Tab},      {0x31, Qt::Key_Space},  {0x33, Qt::Key_Backspace},
        {0x35, Qt::Key_Escape}, {0x7A, Qt::Key_F1},       {0x78, Qt::Key_F2},     {0x63, Qt::Key_F3},
        {0x76, Qt::Key_F4},     {0x60, Qt::Key_F5},       {0x61, Qt::Key_F6},     {0x62, Qt::Key_F7},
        {0x64, Qt::Key_F8},     {0x65, Qt::Key_F9},       {0x6D, Qt::Key_F10},    {0x67, Qt::Key_F11},
        {0x6F, Qt::Key_F12},    {0x69, Qt::Key_F13},      {0x6B, Qt::Key_F14},    {0x71, Qt::Key_F15},
        {0x6A, Qt::Key_F16},    {0x40, Qt::Key_F17},      {0x4F, Qt::Key_F18},    {0x50, Qt::Key_F19},
        {0x5A, Qt::Key_F20},    {0x73, Qt::Key_Home},     {0x74, Qt::Key_PageUp}, {0x75, Qt::Key_Delete},
        {0x77, Qt::Key_End},    {0x79, Qt::Key_PageDown}, {0x7B, Qt::Key_Left},   {0x7C, Qt::Key_Right},
        {0x7D, Qt::Key_Down},   {0x7E, Qt::Key_Up},       {0x72, Qt::Key_Insert}, {0x4C, Qt::Key_Enter},
    };
    return table;
}

// The keypad types digits and signs, but is its own key to Qt.
const QHash<int, int>& keypad() {
    static const QHash<int, int> table{
        {0x52, Qt::Key_0},    {0x53, Qt::Key_1},     {0x54, Qt::Key_2},      {0x55, Qt::Key_3},
        {0x56, Qt::Key_4},    {0x57, Qt::Key_5},     {0x58, Qt::Key_6},      {0x59, Qt::Key_7},
        {0x5B, Qt::Key_8},    {0x5C, Qt::Key_9},     {0x41, Qt::Key_Period}, {0x43, Qt::Key_Asterisk},
        {0x45, Qt::Key_Plus}, {0x4B, Qt::Key_Slash}, {0x4E, Qt::Key_Minus},  {0x51, Qt::Key_Equal},
    };
    return table;
}

// What the keys that type characters type on a US layout: the answer when the layout cannot be read
// (Xwayland may be reloading its keymap, or there is none).
const QHash<int, char>& usLayout() {
    static const QHash<int, char> table{
        {0x00, 'A'},  {0x01, 'S'}, {0x02, 'D'}, {0x03, 'F'}, {0x04, 'H'}, {0x05, 'G'},  {0x06, 'Z'}, {0x07, 'X'},
        {0x08, 'C'},  {0x09, 'V'}, {0x0B, 'B'}, {0x0C, 'Q'}, {0x0D, 'W'}, {0x0E, 'E'},  {0x0F, 'R'}, {0x10, 'Y'},
        {0x11, 'T'},  {0x12, '1'}, {0x13, '2'}, {0x14, '3'}, {0x15, '4'}, {0x16, '6'},  {0x17, '5'}, {0x18, '='},
        {0x19, '9'},  {0x1A, '7'}, {0x1B, '-'}, {0x1C, '8'}, {0x1D, '0'}, {0x1E, ']'},  {0x1F, 'O'}, {0x20, 'U'},
        {0x21, '['},  {0x22, 'I'}, {0x23, 'P'}, {0x25, 'L'}, {0x26, 'J'}, {0x27, '\''}, {0x28, 'K'}, {0x29, ';'},
        {0x2A, '\\'}, {0x2B, ','}, {0x2C, '/'}, {0x2D, 'N'}, {0x2E, 'M'}, {0x2F, '.'},  {0x32, '`'},
    };
    return table;
}

}  // namespace

std::optional<int> KWinKeyCodes::qtKey(int carbonKeyCode,
                                       const std::function<std::optional<QString>(int)>& characterForKey) {
    if (const auto found = keysThatTypeNothing().constFind(carbonKeyCode); found != keysThatTypeNothing().constEnd()) {
        return *found;
    }
    if (const auto found = keypad().constFind(carbonKeyCode); found != keypad().constEnd()) {
        return *found | Qt::KeypadModifier;
    }
    const std::optional<QString> character = characterForKey(carbonKeyCode);
    if (!character || character->size() != 1) {
        if (const auto found = usLayout().constFind(carbonKeyCode); found != usLayout().constEnd()) {
            return static_cast<int>(*found);
        }
        return std::nullopt;
    }
    // Qt's keys for characters are their upper-case code points (Qt::Key_A is 'A', Qt::Key_Comma ',').
    return static_cast<int>(character->at(0).toUpper().unicode());
}

std::optional<int> KWinKeyCodes::qtModifiers(quint32 carbonModifiers) {
    if ((carbonModifiers & kFunction) != 0) {
        return std::nullopt;
    }
    int modifiers = 0;
    if ((carbonModifiers & kControl) != 0) {
        modifiers |= Qt::CTRL;
    }
    if ((carbonModifiers & kOption) != 0) {
        modifiers |= Qt::ALT;
    }
    if ((carbonModifiers & kShift) != 0) {
        modifiers |= Qt::SHIFT;
    }
    if ((carbonModifiers & kCommand) != 0) {
        modifiers |= Qt::META;
    }
    return modifiers;
}
