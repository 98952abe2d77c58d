// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

#include <QList>
#include <QRect>

// A benchmark's own X connection beside the program it times: it presses keys through XTEST and watches
// the window manager move top-level frames (ConfigureNotify on the root's children).
class DesktopObserver {
public:
    DesktopObserver();
    ~DesktopObserver();
    DesktopObserver(const DesktopObserver&) = delete;
    DesktopObserver& operator=(const DesktopObserver&) = delete;

    bool ok() const { return xcb_connection_has_error(m_connection) == 0; }
    xcb_connection_t* connection() const { return m_connection; }

    // The first key code that gives the key symbol, or 0.
    xcb_keycode_t keycode(xcb_keysym_t symbol);
    // One key event, sent at once.
    void key(uint8_t type, xcb_keycode_t code);
    // Presses the keys in order and releases them in reverse.
    void tap(const QList<xcb_keysym_t>& chord);

    // The top-level window that holds the client: its frame under a reparenting window manager.
    xcb_window_t frameOf(xcb_window_t window);
    // A top-level window's rectangle in root coordinates; empty when it is gone.
    QRect geometry(xcb_window_t window);
    // Drops the events received so far.
    void drain();
    // Reads the events received so far: true when one of them is a ConfigureNotify that shows the
    // frame's centre inside the rectangle (root coordinates).
    bool frameArrived(xcb_window_t frame, const QRect& target);

private:
    xcb_connection_t* m_connection;
    xcb_screen_t* m_screen;
    xcb_key_symbols_t* m_symbols;
};
