// SPDX-License-Identifier: MIT
#include "bench/tray_click_bench_desktop.h"

#include <xcb/randr.h>
#include <xcb/xtest.h>

#include <cstdlib>
#include <cstring>

TrayClickDesktop::TrayClickDesktop() : m_connection(xcb_connect(nullptr, nullptr)) {
    if (!ok()) {
        return;
    }
    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    m_pidAtom = atom("_NET_WM_PID");
    m_trayAtom = atom("_NET_SYSTEM_TRAY_S0");
}

TrayClickDesktop::~TrayClickDesktop() {
    xcb_disconnect(m_connection);
}

bool TrayClickDesktop::ok() const {
    return xcb_connection_has_error(m_connection) == 0;
}

QList<QRect> TrayClickDesktop::monitors() {
    QList<QRect> rects;
    auto* reply = xcb_randr_get_monitors_reply(m_connection, xcb_randr_get_monitors(m_connection, m_root, 1), nullptr);
    if (reply == nullptr) {
        return rects;
    }
    for (auto it = xcb_randr_get_monitors_monitors_iterator(reply); it.rem > 0; xcb_randr_monitor_info_next(&it)) {
        rects.append(QRect(it.data->x, it.data->y, it.data->width, it.data->height));
    }
    std::free(reply);
    return rects;
}

xcb_window_t TrayClickDesktop::embeddedWindowOf(qint64 pid, qint64 trayPid) {
    return find(m_root, pid, trayPid, false);
}

bool TrayClickDesktop::trayReady() {
    auto* reply =
        xcb_get_selection_owner_reply(m_connection, xcb_get_selection_owner(m_connection, m_trayAtom), nullptr);
    const bool owned = reply != nullptr && reply->owner != XCB_NONE;
    std::free(reply);
    return owned;
}

std::optional<QPoint> TrayClickDesktop::centre(xcb_window_t window) {
    auto* geometry = xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr);
    if (geometry == nullptr) {
        return std::nullopt;
    }
    auto* translated = xcb_translate_coordinates_reply(
        m_connection,
        xcb_translate_coordinates(m_connection, window, m_root, geometry->width / 2, geometry->height / 2), nullptr);
    std::free(geometry);
    if (translated == nullptr) {
        return std::nullopt;
    }
    const QPoint point(translated->dst_x, translated->dst_y);
    std::free(translated);
    return point;
}

bool TrayClickDesktop::pointAt(xcb_window_t window) {
    const std::optional<QPoint> point = centre(window);
    if (!point) {
        return false;
    }
    moveTo(*point);
    // The window or one of its own children is under the pointer.
    xcb_window_t current = m_root;
    while (current != XCB_NONE) {
        if (current == window) {
            return true;
        }
        auto* reply = xcb_query_pointer_reply(m_connection, xcb_query_pointer(m_connection, current), nullptr);
        if (reply == nullptr || reply->same_screen == 0) {
            std::free(reply);
            return false;
        }
        current = reply->child;
        std::free(reply);
    }
    return false;
}

xcb_window_t TrayClickDesktop::windowUnderPointer() {
    xcb_window_t deepest = m_root;
    for (;;) {
        auto* reply = xcb_query_pointer_reply(m_connection, xcb_query_pointer(m_connection, deepest), nullptr);
        const xcb_window_t child = reply != nullptr ? reply->child : xcb_window_t(XCB_NONE);
        std::free(reply);
        if (child == XCB_NONE) {
            return deepest;
        }
        deepest = child;
    }
}

void TrayClickDesktop::moveTo(QPoint at) {
    xcb_test_fake_input(m_connection, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, m_root, int16_t(at.x()), int16_t(at.y()),
                        0);
    sync();
}

void TrayClickDesktop::clickHere() {
    xcb_test_fake_input(m_connection, XCB_BUTTON_PRESS, 1, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_test_fake_input(m_connection, XCB_BUTTON_RELEASE, 1, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_flush(m_connection);
}

void TrayClickDesktop::click(QPoint at) {
    moveTo(at);
    clickHere();
}

bool TrayClickDesktop::pointerFree() {
    auto* reply = xcb_grab_pointer_reply(m_connection,
                                         xcb_grab_pointer(m_connection, 0, m_root, 0, XCB_GRAB_MODE_ASYNC,
                                                          XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
                                         nullptr);
    const bool free = reply != nullptr && reply->status == XCB_GRAB_STATUS_SUCCESS;
    std::free(reply);
    if (free) {
        xcb_ungrab_pointer(m_connection, XCB_CURRENT_TIME);
        sync();
    }
    return free;
}

void TrayClickDesktop::sync() {
    std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

xcb_atom_t TrayClickDesktop::atom(const char* name) {
    auto* reply = xcb_intern_atom_reply(m_connection,
                                        xcb_intern_atom(m_connection, 0, uint16_t(std::strlen(name)), name), nullptr);
    const xcb_atom_t value = reply != nullptr ? reply->atom : XCB_NONE;
    std::free(reply);
    return value;
}

qint64 TrayClickDesktop::pidOf(xcb_window_t window) {
    auto* reply = xcb_get_property_reply(
        m_connection, xcb_get_property(m_connection, 0, window, m_pidAtom, XCB_ATOM_CARDINAL, 0, 1), nullptr);
    qint64 pid = 0;
    if (reply != nullptr && xcb_get_property_value_length(reply) == 4) {
        pid = *static_cast<uint32_t*>(xcb_get_property_value(reply));
    }
    std::free(reply);
    return pid;
}

bool TrayClickDesktop::mapped(xcb_window_t window) {
    auto* reply =
        xcb_get_window_attributes_reply(m_connection, xcb_get_window_attributes(m_connection, window), nullptr);
    const bool viewable = reply != nullptr && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    std::free(reply);
    return viewable;
}

xcb_window_t TrayClickDesktop::find(xcb_window_t parent, qint64 pid, qint64 trayPid, bool insideTray) {
    auto* tree = xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, parent), nullptr);
    if (tree == nullptr) {
        return XCB_NONE;
    }
    const xcb_window_t* children = xcb_query_tree_children(tree);
    const int count = xcb_query_tree_children_length(tree);
    xcb_window_t found = XCB_NONE;
    for (int i = 0; i < count && found == XCB_NONE; ++i) {
        const qint64 owner = pidOf(children[i]);
        if (owner == pid && insideTray && mapped(children[i])) {
            found = children[i];
        } else if (owner != pid) {
            found = find(children[i], pid, trayPid, insideTray || owner == trayPid);
        }
    }
    std::free(tree);
    return found;
}
