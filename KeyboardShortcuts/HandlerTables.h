#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QUuid>
#include <functional>

#include "KeyboardShortcuts/Name.h"
#include "KeyboardShortcuts/Shortcut.h"

namespace KeyboardShortcuts {

// The process-wide state of the high layer: which shortcuts are registered and who listens to which
// name. Kept in this one place; reached through handlerTables().
struct HandlerTables {
    bool isEnabled = true;
    bool isPaused = false;
    bool isMenuOpen = false;
    QSet<Shortcut> registered;
    QHash<Name, QList<std::function<void()>>> legacyKeyDownHandlers;
    QHash<Name, QList<std::function<void()>>> legacyKeyUpHandlers;
    QHash<Name, QHash<QUuid, std::function<void()>>> streamKeyDownHandlers;
    QHash<Name, QHash<QUuid, std::function<void()>>> streamKeyUpHandlers;
};

HandlerTables& handlerTables();

// Registers a shortcut as a hot key with the dispatch handlers and remembers it as registered.
void registerShortcut(const Shortcut& shortcut);
// Whether the shortcut is registered with the hot-key service installed now.
bool isRegistered(const Shortcut& shortcut);
// Registers the name's stored shortcut unless it is registered already.
void registerIfNeeded(const Name& name);
// Removes the shortcut's hot key and forgets that it is registered.
void unregisterShortcut(const Shortcut& shortcut);
// Stores, registers and announces a shortcut for a name.
void userDefaultsSet(const Name& name, const Shortcut& shortcut);
// Watches the application's menus (once per process, as soon as an application object exists).
void initialize();
// Forgets handlers, registrations and switches (each test starts from a fresh process state).
void resetForTesting();

}  // namespace KeyboardShortcuts
