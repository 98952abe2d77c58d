// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <functional>
#include <optional>

#include "KeyboardShortcuts/HotKeyRegistry.h"
#include "KeyboardShortcuts/Name.h"
#include "KeyboardShortcuts/Shortcut.h"

class HotKeys;
class SettingsStore;

namespace KeyboardShortcuts {

// The program's global shortcuts: each named action's stored shortcut, the handlers attached to the
// names, and the hot keys that make them fire. One instance serves the program (main owns it); tests
// build their own. Everything runs on the main thread.
class ActionShortcuts : public QObject {
    Q_OBJECT
public:
    // Uses the installed platform's hot keys and preferences.
    explicit ActionShortcuts(QObject* parent = nullptr);
    ActionShortcuts(HotKeys* hotKeys, SettingsStore* store, QObject* parent = nullptr);
    ~ActionShortcuts() override;

    // Storage. The name's shortcut as stored (its default when nothing is stored). A stored shortcut that
    // breaks the rules of recorded ones is ignored, with one message, and left in the store as it is.
    std::optional<Shortcut> shortcut(const Name& name) const;
    // Stores (and registers) a shortcut; nothing removes it, or stores false when the name has a default.
    void setShortcut(const std::optional<Shortcut>& shortcut, const Name& name);
    // Back to each name's default, or to nothing.
    void reset(const QList<Name>& names);
    // Every stored "KeyboardShortcuts_" entry back to its default, or removed.
    void resetAll();
    // Whether anything is stored for the name (a stored false counts).
    bool isStored(const Name& name) const;

    // Handlers.
    void onKeyDown(const Name& name, std::function<void()> action);
    void onKeyUp(const Name& name, std::function<void()> action);
    void removeHandler(const Name& name);
    void removeAllHandlers();

    // Master switch; changing it suspends or revives every hot key.
    bool isEnabled() const { return m_enabled; }
    void setEnabled(bool enabled);
    // Whether the name's stored shortcut is registered and the master switch is on.
    bool isEnabled(const Name& name) const;
    void enable(const QList<Name>& names);
    void disable(const QList<Name>& names);

    // Set while a recorder records: hot keys are released and fired shortcuts run nothing.
    bool isPaused() const { return m_paused; }
    void setPaused(bool paused);
    // True while one of the application's menus or popups (the tray panel) is open. A popup holds the
    // keyboard grabbed, so hot keys cannot fire then; the shortcuts listen to raw keys instead. The
    // interface's MenuWatcher tells it.
    bool isMenuOpen() const { return m_menuOpen; }
    void setMenuOpen(bool open);

    // Whether the shortcut is registered as a hot key.
    bool isRegistered(const Shortcut& shortcut) const { return m_registered.contains(shortcut); }
    HotKeyRegistry& hotKeys() { return m_hotKeys; }
    const HotKeyRegistry& hotKeys() const { return m_hotKeys; }

Q_SIGNALS:
    // The stored shortcut of the name changed.
    void shortcutChanged(const KeyboardShortcuts::Name& name);

private:
    using Handlers = QHash<Name, QList<std::function<void()>>>;

    void store(const Name& name, const Shortcut& shortcut);
    // The stored value, whatever the rules say of it.
    std::optional<Shortcut> storedShortcut(const Name& name) const;
    void registerShortcut(const Shortcut& shortcut);
    void unregisterShortcut(const Shortcut& shortcut);
    void registerIfNeeded(const Name& name);
    void dispatch(const Shortcut& shortcut, const Handlers& handlers);
    QSet<Shortcut> shortcutsWithHandlers() const;
    void updateListenMode();

    SettingsStore* m_store = nullptr;
    HotKeyRegistry m_hotKeys;
    bool m_enabled = true;
    bool m_paused = false;
    bool m_menuOpen = false;
    QSet<Shortcut> m_registered;
    // Names and stored texts already reported as ignored.
    mutable QSet<QString> m_reportedIgnored;
    Handlers m_keyDownHandlers;
    Handlers m_keyUpHandlers;
};

}  // namespace KeyboardShortcuts
