// SPDX-License-Identifier: MIT
#include "platform/x11/X11TaskbarPresence.h"

#include <QEvent>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QWindow>
#include <cstdlib>

#include "platform/x11/X11Connection.h"
#include "platform/x11/XcbReply.h"

Q_LOGGING_CATEGORY(lcTaskbar, "lattica.x11.taskbar", QtInfoMsg)

namespace {
constexpr uint32_t kNetWmStateRemove = 0;
constexpr uint32_t kNetWmStateAdd = 1;
}  // namespace

X11TaskbarPresence::X11TaskbarPresence(X11Connection& connection) : m_connection(connection) {
    m_connection.internAtoms({"_NET_WM_STATE", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"});
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->installEventFilter(this);
    }
}

X11TaskbarPresence::~X11TaskbarPresence() {
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->removeEventFilter(this);
    }
}

bool X11TaskbarPresence::isOrdinaryTopLevel(const QWindow& window) {
    return window.isTopLevel() && isTaskbarKind(window);
}

bool X11TaskbarPresence::skips(const QWindow& window) const {
    return !m_shown && !window.property(kAlwaysInTaskbarProperty).toBool();
}

void X11TaskbarPresence::setShownInTaskbar(bool shown) {
    m_shown = shown;
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (!isOrdinaryTopLevel(*window) || window->handle() == nullptr) {
            continue;
        }
        const bool skip = skips(*window);
        const auto xid = static_cast<xcb_window_t>(window->winId());
        if (window->isVisible()) {
            requestStateChange(xid, skip);
        } else {
            writeStateProperty(xid, skip);
        }
    }
    sync();
    qCDebug(lcTaskbar) << "shown in taskbar" << shown;
}

bool X11TaskbarPresence::eventFilter(QObject* watched, QEvent* event) {
    if (!m_shown && event->type() == QEvent::Show && watched->isWindowType()) {
        auto* window = static_cast<QWindow*>(watched);
        if (isOrdinaryTopLevel(*window) && window->handle() != nullptr) {
            // The window is not mapped yet: its state property is read by the window manager on mapping.
            writeStateProperty(static_cast<xcb_window_t>(window->winId()), skips(*window));
            sync();
        }
    }
    return QObject::eventFilter(watched, event);
}

void X11TaskbarPresence::writeStateProperty(xcb_window_t window, bool skip) {
    xcb_connection_t* xcb = m_connection.xcb();
    const xcb_atom_t state = m_connection.atom("_NET_WM_STATE");
    const xcb_atom_t skipTaskbar = m_connection.atom("_NET_WM_STATE_SKIP_TASKBAR");
    const xcb_atom_t skipPager = m_connection.atom("_NET_WM_STATE_SKIP_PAGER");

    QList<xcb_atom_t> atoms;
    const XcbReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(xcb, xcb_get_property(xcb, 0, window, state, XCB_ATOM_ATOM, 0, 1024), nullptr));
    if (reply && reply->format == 32 && reply->type == XCB_ATOM_ATOM) {
        const auto* values = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get()));
        const int count = xcb_get_property_value_length(reply.get()) / 4;
        for (int i = 0; i < count; ++i) {
            if (values[i] != skipTaskbar && values[i] != skipPager) {
                atoms.append(values[i]);
            }
        }
    }
    if (skip) {
        atoms.append(skipTaskbar);
        atoms.append(skipPager);
    }
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window, state, XCB_ATOM_ATOM, 32,
                        static_cast<uint32_t>(atoms.size()), atoms.constData());
}

void X11TaskbarPresence::requestStateChange(xcb_window_t window, bool skip) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = m_connection.atom("_NET_WM_STATE");
    message.data.data32[0] = skip ? kNetWmStateAdd : kNetWmStateRemove;
    message.data.data32[1] = m_connection.atom("_NET_WM_STATE_SKIP_TASKBAR");
    message.data.data32[2] = m_connection.atom("_NET_WM_STATE_SKIP_PAGER");
    message.data.data32[3] = 1;  // a normal application
    xcb_send_event(m_connection.xcb(), 0, m_connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
}

void X11TaskbarPresence::sync() {
    // A round trip: the server has applied our requests before Qt's own connection touches the window.
    xcb_connection_t* xcb = m_connection.xcb();
    XcbReply<xcb_get_input_focus_reply_t>(xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
}
