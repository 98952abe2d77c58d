// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <optional>

#include "KeyboardShortcuts/ModifierFlags.h"
#include "KeyboardShortcuts/Shortcut.h"

class QAction;
class QKeySequence;

// Menu-item shortcuts: a QAction plays the part of a menu item, its QKeySequence that of the key
// equivalent and modifier mask.
namespace KeyboardShortcuts {

// Gives the action the shortcut's key equivalent and modifiers, or clears them.
void setShortcut(QAction* item, const std::optional<Shortcut>& shortcut);

// The key equivalent string of an action ("k", "↩", U+F704 for F1, ...); empty when it has none.
QString keyEquivalent(const QAction* item);
// The modifier mask of an action's key equivalent.
ModifierFlags keyEquivalentModifierMask(const QAction* item);
// The key sequence of a key equivalent string and mask; empty when the string names no key.
QKeySequence keySequenceForKeyEquivalent(const QString& keyEquivalent, ModifierFlags mask);

// The first action (searching submenus depth first) whose key equivalent is the shortcut's.
QAction* menuItemWithMatchingShortcut(const QList<QAction*>& items, const Shortcut& shortcut);
// The application's own menus and actions: menu bars, menus and every widget's actions.
QList<QAction*> applicationMenuItems();

}  // namespace KeyboardShortcuts
