// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <optional>

#include "KeyboardShortcuts/Name.h"
#include "KeyboardShortcuts/Shortcut.h"

class SettingsStore;

// How shortcuts are kept in the preferences: one JSON string per name under "KeyboardShortcuts_" + its
// raw value; a stored false means "removed" for a name that has a default.
namespace KeyboardShortcuts::ShortcutStore {

QString key(const Name& name);
// The stored shortcut; the name's default when nothing is stored; nothing for a false or unreadable value.
std::optional<Shortcut> read(const SettingsStore& store, const Name& name);
// The stored JSON text, exactly as kept; nothing when no string is stored.
std::optional<QString> rawValue(const SettingsStore& store, const Name& name);
// Only the preferences change; ActionShortcuts::setShortcut also moves the hot key.
void write(SettingsStore& store, const Name& name, const Shortcut& shortcut);
// Every name with a stored entry.
QList<Name> storedNames(const SettingsStore& store);

}  // namespace KeyboardShortcuts::ShortcutStore
