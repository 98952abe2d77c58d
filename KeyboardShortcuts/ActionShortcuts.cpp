// SPDX-License-Identifier: MIT
#include "KeyboardShortcuts/ActionShortcuts.h"

#include "KeyboardShortcuts/ShortcutRules.h"
#include "KeyboardShortcuts/ShortcutStore.h"
#include "KeyboardShortcuts/ShortcutsLog.h"
#include "platform/Platform.h"
#include "platform/SettingsStore.h"

namespace KeyboardShortcuts {

ActionShortcuts::ActionShortcuts(QObject* parent)
    : ActionShortcuts(Platform::services().hotKeys, Platform::services().settings, parent) {}

ActionShortcuts::ActionShortcuts(HotKeys* hotKeys, SettingsStore* store, QObject* parent)
    : QObject(parent), m_store(store), m_hotKeys(hotKeys) {}

ActionShortcuts::~ActionShortcuts() = default;

std::optional<Shortcut> ActionShortcuts::storedShortcut(const Name& name) const {
    if (m_store == nullptr) {
        return std::nullopt;
    }
    return ShortcutStore::read(*m_store, name);
}

std::optional<Shortcut> ActionShortcuts::shortcut(const Name& name) const {
    const std::optional<Shortcut> stored = storedShortcut(name);
    if (!stored) {
        return std::nullopt;
    }
    const ShortcutRules::Refusal refusal = ShortcutRules::refusal(*stored, m_hotKeys.restrictsOptionOnlyHotKeys());
    if (refusal == ShortcutRules::Refusal::none) {
        return stored;
    }
    const QString reported = name.rawValue() + QLatin1Char('\n') + QString::fromUtf8(stored->toJson());
    if (!m_reportedIgnored.contains(reported)) {
        m_reportedIgnored.insert(reported);
        qCWarning(lcShortcuts).noquote() << "Ignoring the stored shortcut" << stored->presentableDescription() << "of"
                                         << name.rawValue() << "-"
                                         << (refusal == ShortcutRules::Refusal::needsModifier
                                                 ? "it needs Ctrl, Alt or Super"
                                                 : "Alt alone is refused here");
    }
    return std::nullopt;
}

bool ActionShortcuts::isStored(const Name& name) const {
    return m_store != nullptr && m_store->contains(ShortcutStore::key(name));
}

void ActionShortcuts::store(const Name& name, const Shortcut& shortcut) {
    if (m_store == nullptr) {
        return;
    }
    if (const std::optional<Shortcut> old = storedShortcut(name)) {
        unregisterShortcut(*old);
    }
    if (!isRegistered(shortcut)) {
        registerShortcut(shortcut);
    }
    ShortcutStore::write(*m_store, name, shortcut);
    Q_EMIT shortcutChanged(name);
}

void ActionShortcuts::setShortcut(const std::optional<Shortcut>& shortcut, const Name& name) {
    if (shortcut) {
        store(name, *shortcut);
        return;
    }
    const std::optional<Shortcut> old = storedShortcut(name);
    if (!old || m_store == nullptr) {
        return;
    }
    if (name.defaultShortcut()) {
        m_store->setBool(ShortcutStore::key(name), false);
    } else {
        m_store->remove(ShortcutStore::key(name));
    }
    unregisterShortcut(*old);
    Q_EMIT shortcutChanged(name);
}

void ActionShortcuts::reset(const QList<Name>& names) {
    for (const Name& name : names) {
        if (name.defaultShortcut()) {
            store(name, *name.defaultShortcut());
            continue;
        }
        setShortcut(std::nullopt, name);
        // A stored false or an unreadable value is not a shortcut, but it is still an entry.
        if (isStored(name)) {
            m_store->remove(ShortcutStore::key(name));
        }
    }
}

void ActionShortcuts::resetAll() {
    if (m_store != nullptr) {
        reset(ShortcutStore::storedNames(*m_store));
    }
}

void ActionShortcuts::registerShortcut(const Shortcut& shortcut) {
    m_hotKeys.add(
        shortcut, [this](const Shortcut& fired) { dispatch(fired, m_keyDownHandlers); },
        [this](const Shortcut& fired) { dispatch(fired, m_keyUpHandlers); });
    m_registered.insert(shortcut);
}

void ActionShortcuts::unregisterShortcut(const Shortcut& shortcut) {
    m_hotKeys.remove(shortcut);
    m_registered.remove(shortcut);
}

void ActionShortcuts::registerIfNeeded(const Name& name) {
    const std::optional<Shortcut> stored = shortcut(name);
    if (stored && !isRegistered(*stored)) {
        registerShortcut(*stored);
    }
}

void ActionShortcuts::dispatch(const Shortcut& shortcut, const Handlers& handlers) {
    if (m_paused) {
        return;
    }
    // A copy: an action may add or remove handlers. The stored value decides, not the registered one.
    const Handlers copy = handlers;
    for (auto it = copy.cbegin(); it != copy.cend(); ++it) {
        if (this->shortcut(it.key()) == shortcut) {
            for (const auto& action : it.value()) {
                action();
            }
        }
    }
}

QSet<Shortcut> ActionShortcuts::shortcutsWithHandlers() const {
    QSet<Shortcut> shortcuts;
    for (const Handlers* handlers : {&m_keyDownHandlers, &m_keyUpHandlers}) {
        for (auto it = handlers->cbegin(); it != handlers->cend(); ++it) {
            if (const std::optional<Shortcut> stored = shortcut(it.key())) {
                shortcuts.insert(*stored);
            }
        }
    }
    return shortcuts;
}

void ActionShortcuts::onKeyDown(const Name& name, std::function<void()> action) {
    m_keyDownHandlers[name].append(std::move(action));
    registerIfNeeded(name);
}

void ActionShortcuts::onKeyUp(const Name& name, std::function<void()> action) {
    m_keyUpHandlers[name].append(std::move(action));
    registerIfNeeded(name);
}

void ActionShortcuts::removeHandler(const Name& name) {
    m_keyDownHandlers.remove(name);
    m_keyUpHandlers.remove(name);
    if (const std::optional<Shortcut> stored = shortcut(name)) {
        unregisterShortcut(*stored);
    }
}

void ActionShortcuts::removeAllHandlers() {
    for (const Shortcut& shortcut : shortcutsWithHandlers()) {
        unregisterShortcut(shortcut);
    }
    m_keyDownHandlers.clear();
    m_keyUpHandlers.clear();
}

void ActionShortcuts::setEnabled(bool enabled) {
    if (m_enabled == enabled) {
        return;
    }
    m_enabled = enabled;
    updateListenMode();
}

bool ActionShortcuts::isEnabled(const Name& name) const {
    const std::optional<Shortcut> stored = shortcut(name);
    return m_enabled && stored && isRegistered(*stored);
}

void ActionShortcuts::enable(const QList<Name>& names) {
    for (const Name& name : names) {
        registerIfNeeded(name);
    }
}

void ActionShortcuts::disable(const QList<Name>& names) {
    for (const Name& name : names) {
        if (const std::optional<Shortcut> stored = shortcut(name)) {
            unregisterShortcut(*stored);
        }
    }
}

void ActionShortcuts::setPaused(bool paused) {
    if (m_paused == paused) {
        return;
    }
    m_paused = paused;
    updateListenMode();
}

void ActionShortcuts::setMenuOpen(bool open) {
    if (m_menuOpen == open) {
        return;
    }
    m_menuOpen = open;
    updateListenMode();
}

void ActionShortcuts::updateListenMode() {
    if (!m_enabled || m_paused) {
        m_hotKeys.setListenMode(ListenMode::suspended);
    } else if (m_menuOpen) {
        m_hotKeys.setListenMode(ListenMode::rawKeys);
    } else {
        m_hotKeys.setListenMode(ListenMode::hotKeys);
    }
}

}  // namespace KeyboardShortcuts
