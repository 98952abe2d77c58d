// SPDX-License-Identifier: MIT
#pragma once

#include <QFlags>
#include <QString>
#include <QStringList>
#include <Qt>

namespace KeyboardShortcuts {

// The window server's event modifier flags. The bit values are the ones the persisted shortcut model
// was designed around; they convert to Carbon modifier bits, Qt modifiers and symbols.
enum class ModifierFlag : unsigned int {
    capsLock = 0x10000,
    shift = 0x20000,
    control = 0x40000,
    option = 0x80000,
    command = 0x100000,
    numericPad = 0x200000,
    help = 0x400000,
    function = 0x800000,
};
Q_DECLARE_FLAGS(ModifierFlags, ModifierFlag)
Q_DECLARE_OPERATORS_FOR_FLAGS(ModifierFlags)

// Carbon modifier bits.
namespace CarbonModifier {
constexpr int cmdKey = 0x100;
constexpr int shiftKey = 0x200;
constexpr int optionKey = 0x800;
constexpr int controlKey = 0x1000;
constexpr int function = 0x20000;
// The only bits a shortcut keeps.
constexpr int known = cmdKey | shiftKey | optionKey | controlKey | function;
}  // namespace CarbonModifier

// Flags -> Carbon bits; only control, option, shift, command and function survive.
int carbon(ModifierFlags flags);
// Carbon bits -> flags; unknown bits are dropped.
ModifierFlags modifierFlagsFromCarbon(int carbonModifiers);
// The glyph form, "⌃⌥⇧⌘🌐︎" order, only the flags that are set, no separators. Never shown on Linux.
QString ks_symbolicRepresentation(ModifierFlags flags);
// The names Linux desktops show for the flags that are set, in their order: Super, Ctrl, Alt, Shift, Fn.
QStringList modifierNames(ModifierFlags flags);

// Qt's view of the same keys: Control, Alt (option), Shift, Meta (command/Super), Keypad (numeric pad).
// The function flag and caps lock have no Qt modifier and are dropped.
Qt::KeyboardModifiers toQtModifiers(ModifierFlags flags);
ModifierFlags modifierFlagsFromQt(Qt::KeyboardModifiers modifiers);
// The modifiers of a widget keyboard shortcut (caps lock, command, control, numeric pad, option, shift,
// function each to the modifier of the same name where Qt has one).
Qt::KeyboardModifiers toEventModifiers(ModifierFlags flags);

}  // namespace KeyboardShortcuts
