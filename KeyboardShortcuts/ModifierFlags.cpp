// SPDX-License-Identifier: MIT
#include "KeyboardShortcuts/ModifierFlags.h"

namespace KeyboardShortcuts {

namespace {
struct ModifierRow {
    ModifierFlag flag;
    int carbonBit;
    const char16_t* symbol;
};
// In display order.
constexpr ModifierRow kModifierRows[] = {
    {ModifierFlag::control, CarbonModifier::controlKey, u"\u2303"},
    {ModifierFlag::option, CarbonModifier::optionKey, u"\u2325"},
    {ModifierFlag::shift, CarbonModifier::shiftKey, u"\u21E7"},
    {ModifierFlag::command, CarbonModifier::cmdKey, u"\u2318"},
    {ModifierFlag::function, CarbonModifier::function, u"\U0001F310\uFE0E"},
};
// The order and spelling of desktop shortcut settings (GNOME, KDE): Super+Ctrl+Alt+Shift+Key.
struct ModifierName {
    ModifierFlag flag;
    const char* name;
};
constexpr ModifierName kModifierNames[] = {
    {ModifierFlag::command, "Super"}, {ModifierFlag::control, "Ctrl"}, {ModifierFlag::option, "Alt"},
    {ModifierFlag::shift, "Shift"},   {ModifierFlag::function, "Fn"},
};
}  // namespace

int carbon(ModifierFlags flags) {
    int bits = 0;
    for (const ModifierRow& row : kModifierRows) {
        if (flags.testFlag(row.flag)) {
            bits |= row.carbonBit;
        }
    }
    return bits;
}

ModifierFlags modifierFlagsFromCarbon(int carbonModifiers) {
    ModifierFlags flags;
    for (const ModifierRow& row : kModifierRows) {
        if ((carbonModifiers & row.carbonBit) != 0) {
            flags |= row.flag;
        }
    }
    return flags;
}

QString ks_symbolicRepresentation(ModifierFlags flags) {
    QString symbols;
    for (const ModifierRow& row : kModifierRows) {
        if (flags.testFlag(row.flag)) {
            symbols += QString::fromUtf16(row.symbol);
        }
    }
    return symbols;
}

QStringList modifierNames(ModifierFlags flags) {
    QStringList names;
    for (const ModifierName& row : kModifierNames) {
        if (flags.testFlag(row.flag)) {
            names.append(QString::fromLatin1(row.name));
        }
    }
    return names;
}

Qt::KeyboardModifiers toQtModifiers(ModifierFlags flags) {
    Qt::KeyboardModifiers modifiers;
    modifiers.setFlag(Qt::ControlModifier, flags.testFlag(ModifierFlag::control));
    modifiers.setFlag(Qt::AltModifier, flags.testFlag(ModifierFlag::option));
    modifiers.setFlag(Qt::ShiftModifier, flags.testFlag(ModifierFlag::shift));
    modifiers.setFlag(Qt::MetaModifier, flags.testFlag(ModifierFlag::command));
    modifiers.setFlag(Qt::KeypadModifier, flags.testFlag(ModifierFlag::numericPad));
    return modifiers;
}

ModifierFlags modifierFlagsFromQt(Qt::KeyboardModifiers modifiers) {
    ModifierFlags flags;
    flags.setFlag(ModifierFlag::control, modifiers.testFlag(Qt::ControlModifier));
    flags.setFlag(ModifierFlag::option, modifiers.testFlag(Qt::AltModifier));
    flags.setFlag(ModifierFlag::shift, modifiers.testFlag(Qt::ShiftModifier));
    flags.setFlag(ModifierFlag::command, modifiers.testFlag(Qt::MetaModifier));
    flags.setFlag(ModifierFlag::numericPad, modifiers.testFlag(Qt::KeypadModifier));
    return flags;
}

Qt::KeyboardModifiers toEventModifiers(ModifierFlags flags) {
    // Caps lock and function have no Qt keyboard modifier; the rest map one to one.
    return toQtModifiers(flags);
}

}  // namespace KeyboardShortcuts
