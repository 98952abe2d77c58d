// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include "platform/KeyboardLayout.h"

struct xkb_context;
struct xkb_keymap;
struct xkb_state;
class X11Connection;

// The keyboard layout of the X server's core keyboard, read with libxkbcommon-x11 and followed through
// XKB's keymap and group change events.
class X11KeyboardLayout : public KeyboardLayout {
    Q_OBJECT
public:
    explicit X11KeyboardLayout(X11Connection& connection);
    ~X11KeyboardLayout() override;

    // The key's keysym at level 0 of the current group, as text.
    std::optional<QString> characterForKeyCode(int carbonKeyCode) override;
    std::optional<int> carbonKeyCodeForScanCode(quint32 nativeScanCode) override;

    // The keysym the key produces with these X modifiers held (0 when none); used to spot keys the
    // server keeps for itself, such as Control+Alt+F1.
    quint32 keysymWithModifiers(xcb_keycode_t keycode, uint16_t modifierMask);

private:
    bool handleEvent(xcb_generic_event_t* event);
    void reloadKeymap();

    X11Connection& m_connection;
    int m_handlerId = 0;
    int m_firstXkbEvent = -1;
    int m_deviceId = -1;
    xkb_context* m_context = nullptr;
    xkb_keymap* m_keymap = nullptr;
    xkb_state* m_state = nullptr;
};
