// SPDX-License-Identifier: MIT
#include "tests/KeyboardShortcuts/XTestKeyboard.h"

#include <xcb/xtest.h>

#include <cstdlib>

XTestKeyboard::XTestKeyboard() {
    int screen = 0;
    m_connection = xcb_connect(nullptr, &screen);
    if (xcb_connection_has_error(m_connection)) {
        xcb_disconnect(m_connection);
        m_connection = nullptr;
        return;
    }
    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
}

XTestKeyboard::~XTestKeyboard() {
    if (m_connection != nullptr) {
        xcb_disconnect(m_connection);
    }
}

void XTestKeyboard::press(xcb_keycode_t keycode) {
    xcb_test_fake_input(m_connection, XCB_KEY_PRESS, keycode, XCB_CURRENT_TIME, m_root, 0, 0, 0);
    sync();
}

void XTestKeyboard::release(xcb_keycode_t keycode) {
    xcb_test_fake_input(m_connection, XCB_KEY_RELEASE, keycode, XCB_CURRENT_TIME, m_root, 0, 0, 0);
    sync();
}

void XTestKeyboard::type(const QList<xcb_keycode_t>& modifiers, xcb_keycode_t key) {
    for (const xcb_keycode_t modifier : modifiers) {
        press(modifier);
    }
    press(key);
    release(key);
    for (auto it = modifiers.crbegin(); it != modifiers.crend(); ++it) {
        release(*it);
    }
}

void XTestKeyboard::tap(xcb_keycode_t keycode) {
    press(keycode);
    release(keycode);
}

void XTestKeyboard::sync() {
    std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

uint16_t XTestKeyboard::modifierState() {
    xcb_query_pointer_reply_t* reply =
        xcb_query_pointer_reply(m_connection, xcb_query_pointer(m_connection, m_root), nullptr);
    const uint16_t state = reply != nullptr ? reply->mask : 0;
    std::free(reply);
    return state;
}

bool XTestKeyboard::isKeyboardGrabbedByAnotherClient() {
    xcb_grab_keyboard_reply_t* reply = xcb_grab_keyboard_reply(
        m_connection,
        xcb_grab_keyboard(m_connection, 0, m_root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
        nullptr);
    const bool grabbed = reply != nullptr && reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
    if (reply != nullptr && reply->status == XCB_GRAB_STATUS_SUCCESS) {
        xcb_ungrab_keyboard(m_connection, XCB_CURRENT_TIME);
        xcb_flush(m_connection);
    }
    std::free(reply);
    return grabbed;
}
