// SPDX-License-Identifier: MIT
#include "bench/DesktopObserver.h"

#include <xcb/xtest.h>

#include <cstdlib>

DesktopObserver::DesktopObserver() : m_connection(xcb_connect(nullptr, nullptr)) {
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection, m_screen->root, XCB_CW_EVENT_MASK, &mask);
    m_symbols = xcb_key_symbols_alloc(m_connection);
    xcb_flush(m_connection);
}

DesktopObserver::~DesktopObserver() {
    xcb_key_symbols_free(m_symbols);
    xcb_disconnect(m_connection);
}

xcb_keycode_t DesktopObserver::keycode(xcb_keysym_t symbol) {
    xcb_keycode_t* codes = xcb_key_symbols_get_keycode(m_symbols, symbol);
    const xcb_keycode_t code = codes != nullptr ? codes[0] : 0;
    std::free(codes);
    return code;
}

void DesktopObserver::key(uint8_t type, xcb_keycode_t code) {
    xcb_test_fake_input(m_connection, type, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_flush(m_connection);
}

void DesktopObserver::tap(const QList<xcb_keysym_t>& chord) {
    for (const xcb_keysym_t symbol : chord) {
        key(XCB_KEY_PRESS, keycode(symbol));
    }
    for (auto it = chord.crbegin(); it != chord.crend(); ++it) {
        key(XCB_KEY_RELEASE, keycode(*it));
    }
}

xcb_window_t DesktopObserver::frameOf(xcb_window_t window) {
    for (;;) {
        xcb_query_tree_reply_t* tree =
            xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, window), nullptr);
        if (tree == nullptr) {
            return window;
        }
        const xcb_window_t parent = tree->parent;
        std::free(tree);
        if (parent == m_screen->root || parent == XCB_NONE) {
            return window;
        }
        window = parent;
    }
}

QRect DesktopObserver::geometry(xcb_window_t window) {
    xcb_get_geometry_reply_t* reply =
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr);
    const QRect rect = reply != nullptr ? QRect(reply->x, reply->y, reply->width, reply->height) : QRect();
    std::free(reply);
    return rect;
}

void DesktopObserver::drain() {
    while (xcb_generic_event_t* event = xcb_poll_for_event(m_connection)) {
        std::free(event);
    }
}

bool DesktopObserver::frameArrived(xcb_window_t frame, const QRect& target) {
    bool arrived = false;
    while (xcb_generic_event_t* event = xcb_poll_for_event(m_connection)) {
        if ((event->response_type & 0x7f) == XCB_CONFIGURE_NOTIFY) {
            auto* configure = reinterpret_cast<xcb_configure_notify_event_t*>(event);
            const QRect rect(configure->x, configure->y, configure->width, configure->height);
            arrived = arrived || (configure->window == frame && target.contains(rect.center()));
        }
        std::free(event);
    }
    return arrived;
}
