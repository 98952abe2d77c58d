// SPDX-License-Identifier: MIT
#include "KeyboardShortcuts/widgets/MenuItemShortcut.h"

#include <QAction>
#include <QApplication>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

#include "KeyboardShortcuts/SpecialKey.h"
#include "KeyboardShortcuts/Utilities.h"

namespace KeyboardShortcuts {

namespace {

constexpr char16_t kFirstFunctionKeyCharacter = 0xF704;

// Qt keys whose key equivalent is a glyph, and the glyph.
const QList<std::pair<Qt::Key, QString>>& glyphKeys() {
    static const QList<std::pair<Qt::Key, QString>> keys = [] {
        QList<std::pair<Qt::Key, QString>> list;
        for (const SpecialKey special :
             {SpecialKey::return_, SpecialKey::delete_, SpecialKey::deleteForward, SpecialKey::end, SpecialKey::escape,
              SpecialKey::help, SpecialKey::home, SpecialKey::space, SpecialKey::tab, SpecialKey::pageUp,
              SpecialKey::pageDown, SpecialKey::upArrow, SpecialKey::rightArrow, SpecialKey::downArrow,
              SpecialKey::leftArrow}) {
            list.append({*qtKey(special), *appKitMenuItemKeyEquivalent(special)});
        }
        return list;
    }();
    return keys;
}

QString keyEquivalentForQtKey(int key) {
    for (const auto& [qt, glyph] : glyphKeys()) {
        if (qt == key) {
            return glyph;
        }
    }
    if (key == Qt::Key_Backtab) {
        return *appKitMenuItemKeyEquivalent(SpecialKey::tab);
    }
    if (key >= Qt::Key_F1 && key <= Qt::Key_F20) {
        return QString(QChar(kFirstFunctionKeyCharacter + (key - Qt::Key_F1)));
    }
    if (key > 0x20 && key < 0x110000 && key != Qt::Key_unknown) {
        return QString::fromUcs4(reinterpret_cast<const char32_t*>(&key), 1).toLower();
    }
    return QString();
}

void collectActions(QWidget* widget, QList<QAction*>* items) {
    for (QAction* action : widget->actions()) {
        if (!items->contains(action)) {
            items->append(action);
        }
    }
}

}  // namespace

QKeySequence keySequenceForKeyEquivalent(const QString& keyEquivalent, ModifierFlags mask) {
    if (keyEquivalent.isEmpty()) {
        return QKeySequence();
    }
    const Qt::KeyboardModifiers modifiers = toQtModifiers(mask);
    for (const auto& [qt, glyph] : glyphKeys()) {
        if (glyph == keyEquivalent) {
            return QKeySequence(QKeyCombination(modifiers, qt));
        }
    }
    const char16_t first = keyEquivalent.at(0).unicode();
    if (keyEquivalent.size() == 1 && first >= kFirstFunctionKeyCharacter && first < kFirstFunctionKeyCharacter + 20) {
        return QKeySequence(
            QKeyCombination(modifiers, static_cast<Qt::Key>(Qt::Key_F1 + first - kFirstFunctionKeyCharacter)));
    }
    const QList<uint> codePoints = keyEquivalent.toUpper().toUcs4();
    if (codePoints.size() != 1) {
        return QKeySequence();
    }
    return QKeySequence(QKeyCombination(modifiers, static_cast<Qt::Key>(codePoints.first())));
}

void setShortcut(QAction* item, const std::optional<Shortcut>& shortcut) {
    if (item == nullptr) {
        return;
    }
    const QString equivalent = shortcut ? shortcut->nsMenuItemKeyEquivalent().value_or(QString()) : QString();
    const ModifierFlags mask = shortcut ? shortcut->modifiers() : ModifierFlags();
    item->setShortcut(keySequenceForKeyEquivalent(equivalent, mask));
}

QString keyEquivalent(const QAction* item) {
    const QKeySequence sequence = item->shortcut();
    if (sequence.isEmpty()) {
        return QString();
    }
    return keyEquivalentForQtKey(sequence[0].key());
}

ModifierFlags keyEquivalentModifierMask(const QAction* item) {
    const QKeySequence sequence = item->shortcut();
    if (sequence.isEmpty()) {
        return {};
    }
    ModifierFlags mask = modifierFlagsFromQt(sequence[0].keyboardModifiers());
    mask.setFlag(ModifierFlag::numericPad, false);
    return mask;
}

QAction* menuItemWithMatchingShortcut(const QList<QAction*>& items, const Shortcut& shortcut) {
    const ModifierFlags shortcutModifiers = shortcut.modifiers();
    for (QAction* item : items) {
        const QString equivalent = keyEquivalent(item);
        ModifierFlags mask = keyEquivalentModifierMask(item);
        if (shortcutModifiers.testFlag(ModifierFlag::shift) && equivalent != equivalent.toLower()) {
            // An upper-case key equivalent implies shift.
            mask |= ModifierFlag::shift;
        }
        bool matches = false;
        if (const std::optional<SpecialKey> special = specialKey(shortcut.key())) {
            const std::optional<QString> menuEquivalent = appKitMenuItemKeyEquivalent(*special);
            matches =
                menuEquivalent && !equivalent.isEmpty() && equivalent == *menuEquivalent && mask == shortcutModifiers;
        } else if (const std::optional<QString> character = keyToCharacter(shortcut.key())) {
            matches = !equivalent.isEmpty() && equivalent == *character && mask == shortcutModifiers;
        }
        if (matches) {
            return item;
        }
        if (QMenu* submenu = item->menu()) {
            if (QAction* found = menuItemWithMatchingShortcut(submenu->actions(), shortcut)) {
                return found;
            }
        }
    }
    return nullptr;
}

QList<QAction*> applicationMenuItems() {
    QList<QAction*> items;
    const QWidgetList widgets = QApplication::allWidgets();
    // Menu bars first (the main menu), then menus, then the actions of every other widget.
    for (QWidget* widget : widgets) {
        if (qobject_cast<QMenuBar*>(widget) != nullptr) {
            collectActions(widget, &items);
        }
    }
    for (QWidget* widget : widgets) {
        if (qobject_cast<QMenu*>(widget) != nullptr) {
            collectActions(widget, &items);
        }
    }
    for (QWidget* widget : widgets) {
        collectActions(widget, &items);
    }
    return items;
}

}  // namespace KeyboardShortcuts
