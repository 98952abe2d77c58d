#include "KeyboardShortcuts/KeyboardShortcuts.h"

#include <QCoreApplication>
#include <QPointer>

#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"
#include "KeyboardShortcuts/HandlerTables.h"
#include "KeyboardShortcuts/MenuTracking.h"

namespace KeyboardShortcuts {

HandlerTables& handlerTables() {
    static HandlerTables tables;
    return tables;
}

namespace {

using LegacyTable = QHash<Name, QList<std::function<void()>>>;
using StreamTable = QHash<Name, QHash<QUuid, std::function<void()>>>;

void dispatch(const Shortcut& shortcut, const LegacyTable& legacy, const StreamTable& streams) {
    if (handlerTables().isPaused) {
        return;
    }
    // Copies: an action may add or remove handlers. The stored value decides, not the registered one.
    const LegacyTable legacyCopy = legacy;
    for (auto it = legacyCopy.cbegin(); it != legacyCopy.cend(); ++it) {
        if (getShortcut(it.key()) == shortcut) {
            for (const auto& action : it.value()) {
                action();
            }
        }
    }
    const StreamTable streamCopy = streams;
    for (auto it = streamCopy.cbegin(); it != streamCopy.cend(); ++it) {
        if (getShortcut(it.key()) == shortcut) {
            for (const auto& action : it.value()) {
                action();
            }
        }
    }
}

void handleOnKeyDown(const Shortcut& shortcut) {
    dispatch(shortcut, handlerTables().legacyKeyDownHandlers, handlerTables().streamKeyDownHandlers);
}

void handleOnKeyUp(const Shortcut& shortcut) {
    dispatch(shortcut, handlerTables().legacyKeyUpHandlers, handlerTables().streamKeyUpHandlers);
}

template <typename Table>
QSet<Shortcut> storedShortcutsOf(const Table& table) {
    QSet<Shortcut> shortcuts;
    for (auto it = table.cbegin(); it != table.cend(); ++it) {
        if (const std::optional<Shortcut> shortcut = getShortcut(it.key())) {
            shortcuts.insert(*shortcut);
        }
    }
    return shortcuts;
}

QSet<Shortcut> shortcutsForLegacyHandlers() {
    return storedShortcutsOf(handlerTables().legacyKeyDownHandlers) +
           storedShortcutsOf(handlerTables().legacyKeyUpHandlers);
}

QSet<Shortcut> shortcutsForStreamHandlers() {
    return storedShortcutsOf(handlerTables().streamKeyDownHandlers) +
           storedShortcutsOf(handlerTables().streamKeyUpHandlers);
}

// Registrations belong to one hot-key service; a newly installed platform starts without any.
void followPlatform() {
    if (CarbonKeyboardShortcuts::rebindIfServiceChanged()) {
        handlerTables().registered.clear();
    }
}

}  // namespace

void registerShortcut(const Shortcut& shortcut) {
    // Names made before the application object existed could not watch the menus yet.
    initialize();
    followPlatform();
    CarbonKeyboardShortcuts::register_(shortcut, handleOnKeyDown, handleOnKeyUp);
    handlerTables().registered.insert(shortcut);
}

bool isRegistered(const Shortcut& shortcut) {
    followPlatform();
    return handlerTables().registered.contains(shortcut);
}

void registerIfNeeded(const Name& name) {
    followPlatform();
    const std::optional<Shortcut> shortcut = getShortcut(name);
    if (shortcut && !handlerTables().registered.contains(*shortcut)) {
        registerShortcut(*shortcut);
    }
}

void unregisterShortcut(const Shortcut& shortcut) {
    followPlatform();
    CarbonKeyboardShortcuts::unregister(shortcut);
    handlerTables().registered.remove(shortcut);
}

void initialize() {
    MenuTracking::startObserving([](bool open) {
        HandlerTables& tables = handlerTables();
        if (tables.isMenuOpen == open) {
            return;
        }
        tables.isMenuOpen = open;
        CarbonKeyboardShortcuts::updateEventHandler();
    });
}

void resetForTesting() {
    CarbonKeyboardShortcuts::resetForTesting();
    handlerTables() = HandlerTables();
}

void onKeyDown(const Name& name, std::function<void()> action) {
    handlerTables().legacyKeyDownHandlers[name].append(std::move(action));
    registerIfNeeded(name);
}

void onKeyUp(const Name& name, std::function<void()> action) {
    handlerTables().legacyKeyUpHandlers[name].append(std::move(action));
    registerIfNeeded(name);
}

void removeHandler(const Name& name) {
    handlerTables().legacyKeyDownHandlers.remove(name);
    handlerTables().legacyKeyUpHandlers.remove(name);
    if (const std::optional<Shortcut> shortcut = getShortcut(name);
        shortcut && !shortcutsForStreamHandlers().contains(*shortcut)) {
        unregisterShortcut(*shortcut);
    }
}

void removeAllHandlers() {
    const QSet<Shortcut> unused = shortcutsForLegacyHandlers() - shortcutsForStreamHandlers();
    for (const Shortcut& shortcut : unused) {
        unregisterShortcut(shortcut);
    }
    handlerTables().legacyKeyDownHandlers.clear();
    handlerTables().legacyKeyUpHandlers.clear();
}

bool isEnabled() {
    return handlerTables().isEnabled;
}

void setEnabled(bool enabled) {
    if (handlerTables().isEnabled == enabled) {
        return;
    }
    handlerTables().isEnabled = enabled;
    CarbonKeyboardShortcuts::updateEventHandler();
}

bool isEnabled(const Name& name) {
    followPlatform();
    const std::optional<Shortcut> shortcut = getShortcut(name);
    return handlerTables().isEnabled && shortcut && handlerTables().registered.contains(*shortcut);
}

void enable(const QList<Name>& names) {
    for (const Name& name : names) {
        registerIfNeeded(name);
    }
}

void disable(const QList<Name>& names) {
    for (const Name& name : names) {
        if (const std::optional<Shortcut> shortcut = getShortcut(name)) {
            unregisterShortcut(*shortcut);
        }
    }
}

bool isPaused() {
    return handlerTables().isPaused;
}

void setPaused(bool paused) {
    if (handlerTables().isPaused == paused) {
        return;
    }
    handlerTables().isPaused = paused;
    CarbonKeyboardShortcuts::updateEventHandler();
}

bool isMenuOpen() {
    return handlerTables().isMenuOpen;
}

EventStream::EventStream(const Name& name, std::optional<EventType> only, QObject* parent)
    : QObject(parent), m_name(name), m_only(only), m_id(QUuid::createUuid()) {
    QPointer<EventStream> self(this);
    handlerTables().streamKeyDownHandlers[m_name].insert(m_id, [self] {
        if (self) {
            self->deliver(EventType::keyDown);
        }
    });
    handlerTables().streamKeyUpHandlers[m_name].insert(m_id, [self] {
        if (self) {
            self->deliver(EventType::keyUp);
        }
    });
    registerIfNeeded(m_name);
}

EventStream::~EventStream() {
    // The tables are tidied on the main loop, after whatever dispatch is running has finished.
    auto cleanUp = [name = m_name, id = m_id] {
        HandlerTables& tables = handlerTables();
        for (StreamTable* table : {&tables.streamKeyDownHandlers, &tables.streamKeyUpHandlers}) {
            if (auto found = table->find(name); found != table->end()) {
                found->remove(id);
                if (found->isEmpty()) {
                    table->erase(found);
                }
            }
        }
        if (const std::optional<Shortcut> shortcut = getShortcut(name);
            shortcut && !shortcutsForLegacyHandlers().contains(*shortcut) &&
            !shortcutsForStreamHandlers().contains(*shortcut)) {
            unregisterShortcut(*shortcut);
        }
    };
    if (QCoreApplication::instance() != nullptr) {
        QMetaObject::invokeMethod(QCoreApplication::instance(), cleanUp, Qt::QueuedConnection);
    } else {
        cleanUp();
    }
}

void EventStream::deliver(EventType type) {
    if (m_only && *m_only != type) {
        return;
    }
    Q_EMIT event(type);
    if (type == EventType::keyDown) {
        Q_EMIT keyDown();
    } else {
        Q_EMIT keyUp();
    }
}

EventStream* events(const Name& name, QObject* parent) {
    return new EventStream(name, std::nullopt, parent);
}

EventStream* events(EventType type, const Name& name, QObject* parent) {
    return new EventStream(name, type, parent);
}

}  // namespace KeyboardShortcuts
