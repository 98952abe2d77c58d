// SPDX-License-Identifier: MIT
#include "platform/x11/X11ForegroundActivation.h"

#include <xcb/xcb.h>

#include <QEvent>
#include <QGuiApplication>

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11TaskbarPresence.h"

namespace {
// Source indication of a pager: the window manager follows it even when another application is active.
constexpr uint32_t kSourcePager = 2;
}  // namespace

X11ForegroundActivation::X11ForegroundActivation(X11Connection& connection) : m_connection(connection) {
    m_connection.internAtoms({"_NET_ACTIVE_WINDOW"});
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->installEventFilter(this);
    }
}

X11ForegroundActivation::~X11ForegroundActivation() {
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->removeEventFilter(this);
    }
}

bool X11ForegroundActivation::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show && watched->isWindowType()) {
        auto* window = static_cast<QWindow*>(watched);
        if (X11TaskbarPresence::isOrdinaryTopLevel(*window) && window->handle() != nullptr) {
            m_lastShown = window;
        }
    }
    return QObject::eventFilter(watched, event);
}

void X11ForegroundActivation::bringToFront() {
    QWindow* target = m_lastShown && m_lastShown->isVisible() ? m_lastShown.data() : nullptr;
    if (target == nullptr) {
        for (QWindow* window : QGuiApplication::topLevelWindows()) {
            if (window->isVisible() && X11TaskbarPresence::isOrdinaryTopLevel(*window)) {
                target = window;
                break;
            }
        }
    }
    if (target == nullptr) {
        return;
    }
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(target->winId());
    message.type = m_connection.atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = kSourcePager;
    message.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(m_connection.xcb(), 0, m_connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    m_connection.flush();
}
