// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <QList>

// Types on the X server's keyboard through XTEST, from a connection of its own (as a user would).
class XTestKeyboard {
public:
    // X keycodes of the evdev keymap (evdev scan code + 8).
    static constexpr xcb_keycode_t controlL = 37;
    static constexpr xcb_keycode_t altL = 64;
    static constexpr xcb_keycode_t superL = 133;
    static constexpr xcb_keycode_t capsLock = 66;
    static constexpr xcb_keycode_t numLock = 77;
    static constexpr xcb_keycode_t escape = 9;
    static constexpr xcb_keycode_t keyJ = 44;
    static constexpr xcb_keycode_t keyK = 45;
    static constexpr xcb_keycode_t keyL = 46;
    static constexpr xcb_keycode_t keyY = 29;
    static constexpr xcb_keycode_t keyZ = 52;
    static constexpr xcb_keycode_t f8 = 74;

    XTestKeyboard();
    ~XTestKeyboard();
    XTestKeyboard(const XTestKeyboard&) = delete;
    XTestKeyboard& operator=(const XTestKeyboard&) = delete;

    bool isConnected() const { return m_connection != nullptr; }
    xcb_connection_t* connection() const { return m_connection; }
    xcb_window_t root() const { return m_root; }

    void press(xcb_keycode_t keycode);
    void release(xcb_keycode_t keycode);
    // Presses the modifiers and the key, then releases them in reverse order.
    void type(const QList<xcb_keycode_t>& modifiers, xcb_keycode_t key);
    void tap(xcb_keycode_t keycode);
    // Waits until the server has handled everything sent so far.
    void sync();
    // Whether another client holds the keyboard grabbed (a popup of the program under test, say).
    bool isKeyboardGrabbedByAnotherClient();
    // Whether a lock modifier (XCB_MOD_MASK_LOCK, or the NumLock mask) is on.
    uint16_t modifierState();

private:
    xcb_connection_t* m_connection = nullptr;
    xcb_window_t m_root = 0;
};
