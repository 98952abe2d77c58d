// SPDX-License-Identifier: MIT
#include "KeyboardShortcuts/ShortcutStore.h"

#include "platform/SettingsStore.h"

namespace KeyboardShortcuts::ShortcutStore {

namespace {
const QString& keyPrefix() {
    static const QString prefix = QStringLiteral("KeyboardShortcuts_");
    return prefix;
}
}  // namespace

QString key(const Name& name) {
    return keyPrefix() + name.rawValue();
}

std::optional<Shortcut> read(const SettingsStore& store, const Name& name) {
    if (!store.contains(key(name))) {
        return name.defaultShortcut();
    }
    const std::optional<QString> json = store.stringValue(key(name));
    if (!json) {
        return std::nullopt;
    }
    return Shortcut::fromJson(json->toUtf8());
}

std::optional<QString> rawValue(const SettingsStore& store, const Name& name) {
    return store.stringValue(key(name));
}

void write(SettingsStore& store, const Name& name, const Shortcut& shortcut) {
    store.setString(key(name), QString::fromUtf8(shortcut.toJson()));
}

QList<Name> storedNames(const SettingsStore& store) {
    QList<Name> names;
    for (const QString& stored : store.keys()) {
        if (stored.startsWith(keyPrefix())) {
            names.append(Name(stored.mid(keyPrefix().size())));
        }
    }
    return names;
}

}  // namespace KeyboardShortcuts::ShortcutStore
