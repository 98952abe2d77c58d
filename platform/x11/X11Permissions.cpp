#include "platform/x11/X11Permissions.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QUrl>
#include <cstdlib>

#include "platform/x11/X11Connection.h"

namespace {

// The window a property of type WINDOW names, or XCB_NONE.
xcb_window_t windowProperty(X11Connection& connection, xcb_window_t window, xcb_atom_t property) {
    xcb_get_property_reply_t* reply = xcb_get_property_reply(
        connection.xcb(), xcb_get_property(connection.xcb(), 0, window, property, XCB_ATOM_WINDOW, 0, 1), nullptr);
    xcb_window_t value = XCB_NONE;
    if (reply != nullptr && reply->format == 32 && xcb_get_property_value_length(reply) >= 4) {
        value = *static_cast<xcb_window_t*>(xcb_get_property_value(reply));
    }
    std::free(reply);
    return value;
}

constexpr const char* kHelpPage = R"(<!doctype html>
<html><head><meta charset="utf-8"><title>Lattica: session requirements</title>
<style>body{font-family:sans-serif;max-width:40em;margin:3em auto;line-height:1.5}</style></head>
<body><h1>What Lattica needs from your session</h1>
<h2>Screen Recording (display previews)</h2>
<p>Lattica captures display previews through the X server. Any X11 session allows this; there is nothing to grant.
On a Wayland session, log in to an X11 (Xorg) session instead.</p>
<h2>Accessibility (moving windows)</h2>
<p>Lattica reads and moves windows through your window manager, which must follow the EWMH standard
(Openbox, Xfwm4, KWin, Mutter, IceWM, Fluxbox and most others do). If no such window manager is running, start one
and press <em>Re-check Permissions</em>.</p>
</body></html>
)";

}  // namespace

X11Permissions::X11Permissions(X11Connection& connection) : m_connection(connection) {}

X11Permissions::Answers X11Permissions::answersFor(bool hasX11Connection, bool hasEwmhWindowManager) {
    return {hasX11Connection, hasX11Connection && hasEwmhWindowManager};
}

bool X11Permissions::hasEwmhWindowManager() {
    const xcb_atom_t check = m_connection.atom("_NET_SUPPORTING_WM_CHECK");
    const xcb_window_t child = windowProperty(m_connection, m_connection.root(), check);
    // The check window names itself; a stale property left by a window manager that died does not.
    return child != XCB_NONE && windowProperty(m_connection, child, check) == child;
}

X11Permissions::Answers X11Permissions::answers() {
    const bool connected = !m_connection.hasError();
    return answersFor(connected, connected && hasEwmhWindowManager());
}

bool X11Permissions::preflightScreenCaptureAccess() {
    return answers().screenCapture;
}

bool X11Permissions::requestScreenCaptureAccess() {
    return answers().screenCapture;
}

bool X11Permissions::isProcessTrusted() {
    return answers().accessibility;
}

bool X11Permissions::isProcessTrustedWithOptions(bool) {
    return answers().accessibility;
}

void X11Permissions::openSettingsPage(const QString&) {
    const QString directory = QStandardPaths::writableLocation(QStandardPaths::TempLocation);
    const QString path = QDir(directory).filePath(QStringLiteral("lattica-permissions.html"));
    QFile page(path);
    if (page.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        page.write(kHelpPage);
        page.close();
        QDesktopServices::openUrl(QUrl::fromLocalFile(path));
    }
}
