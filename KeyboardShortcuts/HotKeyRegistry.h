// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QPointer>
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "KeyboardShortcuts/KeyEvents.h"
#include "KeyboardShortcuts/Shortcut.h"
#include "platform/HotKeys.h"

namespace KeyboardShortcuts {

class RawKeyMonitor;

// How the registry hears its keys.
enum class ListenMode {
    // Nothing reaches the handlers and no key is held (switched off, or a recorder records).
    suspended,
    // System-wide hot keys.
    hotKeys,
    // One of our menus or popups holds the keyboard, so hot keys stay silent: the hot keys are released
    // and the application's own key events are matched instead.
    rawKeys,
};

// The hot keys registered with one hot-key service, each under its own id, and the delivery of their
// presses and releases to the handlers given at registration.
class HotKeyRegistry {
public:
    using Handler = std::function<void(const Shortcut&)>;

    explicit HotKeyRegistry(HotKeys* service);
    ~HotKeyRegistry();
    HotKeyRegistry(const HotKeyRegistry&) = delete;
    HotKeyRegistry& operator=(const HotKeyRegistry&) = delete;

    // Registers a hot key under the next id. A refusal is reported and keeps nothing. Taking the keys back
    // after a suspension reports a refusal once, until the key is registered or refused differently.
    void add(const Shortcut& shortcut, Handler onKeyDown, Handler onKeyUp);
    // Removes every hot key of this shortcut; unknown shortcuts are ignored.
    void remove(const Shortcut& shortcut);
    // Releases or takes back the platform registrations to match the mode.
    void setListenMode(ListenMode mode);
    ListenMode listenMode() const { return m_mode; }
    // The candidates that the system or another client already holds.
    QList<Shortcut> heldByOthers(const QList<Shortcut>& candidates) const;
    // Whether option (alone or with shift) may not be a hot key's only modifier with this service.
    bool restrictsOptionOnlyHotKeys() const;

    // A raw key event matched against the table; true when a hot key took it (a probe runs nothing).
    bool handleRawKeyEvent(int keyCode, int carbonModifiers, RawKeyEvent event);
    // A hot-key event for the table entry hotKeyId; true when the entry exists and handled it.
    bool handleHotKeyEvent(int hotKeyId, HotKeyEvent event);

    // Inspection, for tests and the debug trace.
    int lastHotKeyId() const { return m_lastId; }
    QList<int> hotKeyIds() const;
    // Whether the entry holds a live platform registration (false while suspended or refused).
    bool isActive(int hotKeyId) const;
    std::optional<Shortcut> shortcutForHotKey(int hotKeyId) const;
    bool isRawKeyMonitorActive() const;

private:
    struct HotKey {
        Shortcut shortcut;
        std::optional<HotKeys::RegistrationId> registration;  // empty while suspended
        Handler onKeyDown;
        Handler onKeyUp;
        // The refusal last reported for this entry: a resume refused the same way says nothing again.
        std::optional<HotKeys::Failure> reportedRefusal;
    };

    void registerAll();
    void releaseAll();
    void dispatchServiceEvent(HotKeys::RegistrationId registration, HotKeyEvent event);
    RawKeyMonitor& rawKeyMonitor();
    bool usesModifier(int carbonModifier) const;

    QPointer<HotKeys> m_service;
    std::map<int, HotKey> m_hotKeys;
    int m_lastId = 0;
    ListenMode m_mode = ListenMode::hotKeys;
    std::unique_ptr<RawKeyMonitor> m_rawKeyMonitor;
    QList<QMetaObject::Connection> m_connections;
};

}  // namespace KeyboardShortcuts
