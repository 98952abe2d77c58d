// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <QHash>
#include <QList>
#include <optional>

#include "platform/HotKeys.h"

class X11Connection;
class X11KeyboardLayout;

// System-wide hot keys as passive key grabs on the root window. A hot key is grabbed once for each
// lock-modifier variant (none, CapsLock, NumLock, both) so that the lock keys do not get in the way;
// incoming key states are masked back to the real modifiers.
class X11HotKeys : public HotKeys {
    Q_OBJECT
public:
    // The layout, when given, tells which keys the server keeps for itself (Control+Alt+F1, ...).
    explicit X11HotKeys(X11Connection& connection, X11KeyboardLayout* layout = nullptr);
    ~X11HotKeys() override;

    Registration registerHotKey(quint32 carbonKeyCode, quint32 carbonModifiers) override;
    void unregisterHotKey(RegistrationId id) override;
    bool isHeldByAnotherClient(quint32 carbonKeyCode, quint32 carbonModifiers) override;

    // The real modifier bit NumLock sets (0 when no modifier carries it).
    uint16_t numLockMask() const { return m_numLockMask; }
    bool hasDetectableAutoRepeat() const { return m_detectableAutoRepeat; }
    // How many auto-repeated presses of held hot keys were swallowed so far.
    int suppressedRepeats() const { return m_suppressedRepeats; }

private:
    struct Grab {
        xcb_keycode_t keycode = 0;
        uint16_t modifiers = 0;
    };

    QList<uint16_t> lockVariants() const;
    // Grabs every lock variant; on failure releases what was grabbed and says why.
    std::optional<Failure> grab(xcb_keycode_t keycode, uint16_t modifiers);
    void ungrab(xcb_keycode_t keycode, uint16_t modifiers);
    bool isGrabbedByUs(xcb_keycode_t keycode, uint16_t modifiers) const;
    bool handleEvent(xcb_generic_event_t* event);
    void readNumLockMask();
    void regrabAll();
    bool isServerKey(xcb_keycode_t keycode, uint16_t modifiers) const;

    X11Connection& m_connection;
    X11KeyboardLayout* m_layout = nullptr;
    int m_handlerId = 0;
    int m_firstXkbEvent = -1;
    uint16_t m_numLockMask = 0;
    bool m_detectableAutoRepeat = false;
    QHash<RegistrationId, Grab> m_grabs;
    RegistrationId m_nextId = 1;
    // Keys whose press was delivered and whose release is still to come, keycode -> registration.
    QHash<xcb_keycode_t, RegistrationId> m_pressed;
    int m_suppressedRepeats = 0;
};
