// SPDX-License-Identifier: MIT
#include "platform/x11/X11TrayHost.h"

#include <cstdlib>
#include <memory>

#include "platform/x11/X11Connection.h"
#include "platform/x11/XcbReply.h"

namespace {

// The screen number the display name selects (":0.1" is screen 1); 0 when it names none.
int screenNumber(const QByteArray& displayName) {
    int screen = 0;
    char* host = nullptr;
    int display = 0;
    const QByteArray name = displayName.isEmpty() ? qgetenv("DISPLAY") : displayName;
    if (xcb_parse_display(name.constData(), &host, &display, &screen) == 0) {
        screen = 0;
    }
    std::free(host);  // xcb_parse_display's string, not a reply
    return screen;
}

void addStructureNotify(xcb_connection_t* xcb, xcb_window_t window) {
    // Our connection's other event selections on the window are kept.
    const xcb_get_window_attributes_cookie_t cookie = xcb_get_window_attributes(xcb, window);
    const XcbReply<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(xcb, cookie, nullptr));
    const uint32_t mask = (reply ? reply->your_event_mask : 0) | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(xcb, window, XCB_CW_EVENT_MASK, &mask);
}

}  // namespace

X11TrayHost::X11TrayHost(X11Connection& connection) : m_connection(connection) {
    const QByteArray selection = "_NET_SYSTEM_TRAY_S" + QByteArray::number(screenNumber(connection.displayName()));
    m_selection = m_connection.atom(selection.constData());
    m_manager = m_connection.atom("MANAGER");
    addStructureNotify(m_connection.xcb(), m_connection.root());
    m_handler = m_connection.addEventHandler([this](xcb_generic_event_t* event) { return handle(event); });
    readOwner();
}

X11TrayHost::~X11TrayHost() {
    m_connection.removeEventHandler(m_handler);
}

void X11TrayHost::readOwner() {
    xcb_connection_t* xcb = m_connection.xcb();
    const xcb_get_selection_owner_cookie_t cookie = xcb_get_selection_owner(xcb, m_selection);
    const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(xcb, cookie, nullptr));
    const xcb_window_t owner = reply ? reply->owner : XCB_NONE;
    if (owner != XCB_NONE) {
        addStructureNotify(xcb, owner);
        m_connection.flush();
    }
    setOwner(owner);
}

void X11TrayHost::setOwner(xcb_window_t owner) {
    const bool was = isAvailable();
    m_owner = owner;
    if (was != isAvailable()) {
        Q_EMIT availabilityChanged(isAvailable());
    }
}

bool X11TrayHost::handle(xcb_generic_event_t* event) {
    switch (event->response_type & 0x7f) {
        case XCB_CLIENT_MESSAGE: {
            const auto* message = reinterpret_cast<xcb_client_message_event_t*>(event);
            if (message->type == m_manager && message->format == 32 && message->data.data32[1] == m_selection) {
                readOwner();
            }
            return false;
        }
        case XCB_DESTROY_NOTIFY: {
            const auto* destroyed = reinterpret_cast<xcb_destroy_notify_event_t*>(event);
            if (m_owner != XCB_NONE && destroyed->window == m_owner) {
                // A successor may already hold the selection.
                readOwner();
            }
            return false;
        }
        default:
            return false;
    }
}
