// SPDX-License-Identifier: MIT
#include "tests/platform/x11/X11DesktopFixture.h"

#include <algorithm>
#include <cstdlib>

#include "platform/Platform.h"
#include "platform/x11/X11Connection.h"
#include "tests/support/VirtualDesktop.h"

void X11DesktopFixture::SetUp() {
    platform = X11Platform::connect();
    ASSERT_TRUE(platform) << "no X server";
    platform->install();
    // The first monitor of the layout is the primary one.
    globalOrigin = VirtualDesktop::layout().value(0).topLeft();
    ASSERT_TRUE(client.start()) << "the test client did not start";
}

void X11DesktopFixture::TearDown() {
    if (client.isRunning() && !client.exit()) {
        client.kill();
    }
    Platform::install({});
    platform.reset();
}

xcb_connection_t* X11DesktopFixture::xcb() const {
    return platform->connection().xcb();
}

std::optional<WindowEntry> X11DesktopFixture::entryFor(quint32 window, DesktopWindows desktopWindows) {
    const auto list = Platform::services().windowList->windows(desktopWindows);
    if (!list) {
        return std::nullopt;
    }
    for (const WindowEntry& entry : *list) {
        if (entry.id == window) {
            return entry;
        }
    }
    return std::nullopt;
}

bool X11DesktopFixture::lists(const QList<WindowEntry>& entries, quint32 window) {
    return std::any_of(entries.cbegin(), entries.cend(),
                       [window](const WindowEntry& entry) { return entry.id == window; });
}

QRectF X11DesktopFixture::boundsOf(const std::optional<WindowEntry>& entry) {
    return entry ? entry->frame : QRectF();
}

bool X11DesktopFixture::isOnScreen(quint32 window) {
    const std::optional<WindowEntry> entry = entryFor(window);
    return entry && entry->onScreen;
}

QRect X11DesktopFixture::frameFromTree(quint32 window) {
    xcb_window_t current = window;
    const xcb_window_t root = platform->connection().root();
    for (int depth = 0; depth < 16; ++depth) {
        xcb_query_tree_reply_t* tree = xcb_query_tree_reply(xcb(), xcb_query_tree(xcb(), current), nullptr);
        if (tree == nullptr) {
            return {};
        }
        const xcb_window_t parent = tree->parent;
        std::free(tree);
        if (parent == root) {
            break;
        }
        current = parent;
    }
    xcb_get_geometry_reply_t* geometry = xcb_get_geometry_reply(xcb(), xcb_get_geometry(xcb(), current), nullptr);
    if (geometry == nullptr) {
        return {};
    }
    const QRect frame(geometry->x, geometry->y, geometry->width + 2 * geometry->border_width,
                      geometry->height + 2 * geometry->border_width);
    std::free(geometry);
    return frame.translated(-globalOrigin);
}

QList<QRect> X11DesktopFixture::monitors() const {
    QList<QRect> result;
    for (const QRect& monitor : VirtualDesktop::layout()) {
        result.append(monitor.translated(-globalOrigin));
    }
    return result;
}

QString X11DesktopFixture::placement(int monitor, int dx, int dy, int width, int height) const {
    const QRect root = VirtualDesktop::layout().value(monitor);
    return QStringLiteral("x=%1 y=%2 w=%3 h=%4").arg(root.x() + dx).arg(root.y() + dy).arg(width).arg(height);
}

bool X11DesktopFixture::near(const QRectF& actual, const QRectF& expected, double tolerance) {
    return qAbs(actual.x() - expected.x()) <= tolerance && qAbs(actual.y() - expected.y()) <= tolerance &&
           qAbs(actual.width() - expected.width()) <= tolerance &&
           qAbs(actual.height() - expected.height()) <= tolerance;
}

std::optional<quint32> X11DesktopFixture::firstValue(quint32 window, const char* property, xcb_atom_t type) {
    const xcb_atom_t atom = platform->connection().atom(property);
    xcb_get_property_reply_t* reply =
        xcb_get_property_reply(xcb(), xcb_get_property(xcb(), 0, window, atom, type, 0, 1), nullptr);
    std::optional<quint32> value;
    if (reply != nullptr && reply->format == 32 && xcb_get_property_value_length(reply) >= 4) {
        value = *static_cast<quint32*>(xcb_get_property_value(reply));
    }
    std::free(reply);
    return value;
}

quint32 X11DesktopFixture::activeWindow() {
    return firstValue(platform->connection().root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW).value_or(0);
}

std::optional<quint32> X11DesktopFixture::currentDesktop() {
    return firstValue(platform->connection().root(), "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL);
}

std::optional<quint32> X11DesktopFixture::desktopOf(quint32 window) {
    return firstValue(window, "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL);
}

bool X11DesktopFixture::switchToDesktop(quint32 desktop) {
    if (VirtualDesktop::run(QStringLiteral("wmctrl"), {QStringLiteral("-s"), QString::number(desktop)}) != 0) {
        return false;
    }
    return VirtualDesktop::waitUntil([&] { return currentDesktop() == desktop; });
}

bool X11DesktopFixture::sendToDesktop(quint32 window, quint32 desktop) {
    // As a pager asks: a _NET_WM_DESKTOP message to the root window (0xFFFFFFFF: every desktop).
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = platform->connection().atom("_NET_WM_DESKTOP");
    message.data.data32[0] = desktop;
    message.data.data32[1] = 2;
    xcb_send_event(xcb(), 0, platform->connection().root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(xcb());
    return VirtualDesktop::waitUntil([&] { return desktopOf(window) == desktop; });
}

bool X11DesktopFixture::activate(quint32 window) {
    if (VirtualDesktop::run(QStringLiteral("wmctrl"),
                            {QStringLiteral("-i"), QStringLiteral("-a"), QString::number(window)}) != 0) {
        return false;
    }
    return VirtualDesktop::waitUntil([&] { return activeWindow() == window; });
}
