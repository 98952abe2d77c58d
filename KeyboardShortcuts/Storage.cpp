#include <QLoggingCategory>

#include "KeyboardShortcuts/HandlerTables.h"
#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "KeyboardShortcuts/Notifications.h"
#include "platform/Platform.h"
#include "platform/SettingsStore.h"

namespace KeyboardShortcuts {

namespace {
const QString& keyPrefix() {
    static const QString prefix = QStringLiteral("KeyboardShortcuts_");
    return prefix;
}

SettingsStore* defaults() {
    return Platform::services().settings;
}

void userDefaultsDidChange(const Name& name) {
    Notifications::shared().postShortcutByNameDidChange(name);
}

QSet<Name> allNames() {
    QSet<Name> names;
    if (SettingsStore* store = defaults()) {
        for (const QString& key : store->keys()) {
            if (key.startsWith(keyPrefix())) {
                names.insert(Name(key.mid(keyPrefix().size())));
            }
        }
    }
    return names;
}
}  // namespace

QString userDefaultsKey(const Name& name) {
    return keyPrefix() + name.rawValue();
}

std::optional<Shortcut> getShortcut(const Name& name) {
    SettingsStore* store = defaults();
    if (store == nullptr) {
        return std::nullopt;
    }
    const std::optional<QString> json = store->stringValue(userDefaultsKey(name));
    if (!json) {
        return std::nullopt;
    }
    return Shortcut::fromJson(json->toUtf8());
}

bool userDefaultsContains(const Name& name) {
    SettingsStore* store = defaults();
    return store != nullptr && store->contains(userDefaultsKey(name));
}

void userDefaultsSet(const Name& name, const Shortcut& shortcut) {
    SettingsStore* store = defaults();
    if (store == nullptr) {
        return;
    }
    const QString json = QString::fromUtf8(shortcut.toJson());
    if (const std::optional<Shortcut> old = getShortcut(name)) {
        unregisterShortcut(*old);
    }
    if (!isRegistered(shortcut)) {
        registerShortcut(shortcut);
    }
    store->setString(userDefaultsKey(name), json);
    userDefaultsDidChange(name);
}

void setShortcut(const std::optional<Shortcut>& shortcut, const Name& name) {
    if (shortcut) {
        userDefaultsSet(name, *shortcut);
        return;
    }
    const std::optional<Shortcut> old = getShortcut(name);
    if (!old) {
        return;
    }
    if (name.defaultShortcut()) {
        defaults()->setBool(userDefaultsKey(name), false);
    } else {
        defaults()->remove(userDefaultsKey(name));
    }
    unregisterShortcut(*old);
    userDefaultsDidChange(name);
}

void reset(const QList<Name>& names) {
    for (const Name& name : names) {
        if (!name.defaultShortcut()) {
            setShortcut(std::nullopt, name);
            // A stored false or an unreadable value is not a shortcut, but it is still an entry.
            if (SettingsStore* store = defaults(); store != nullptr && store->contains(userDefaultsKey(name))) {
                store->remove(userDefaultsKey(name));
            }
        } else {
            userDefaultsSet(name, *name.defaultShortcut());
        }
    }
}

void resetAll() {
    reset(allNames().values());
}

}  // namespace KeyboardShortcuts
