// SPDX-License-Identifier: MIT
#pragma once

#include "platform/SessionCheck.h"

class X11Connection;

// What works on an X11 connection. Windows are read and moved through a window manager that follows
// EWMH; monitors are captured from the root window. Inside a Wayland session the server is Xwayland:
// only X11 applications are seen there, and the root window shows none of the Wayland windows.
class X11SessionCheck : public SessionCheck {
public:
    explicit X11SessionCheck(X11Connection& connection);

    // What the checks are made of.
    struct Facts {
        bool connected = false;          // the X server still answers
        bool ewmhWindowManager = false;  // a window manager that follows EWMH announces itself
        bool waylandSession = false;     // the X server is Xwayland inside a Wayland session
    };
    static CapabilityCheck windowControlFor(const Facts& facts);
    static CapabilityCheck screenCaptureFor(const Facts& facts);
    // From the session's XDG_SESSION_TYPE and WAYLAND_DISPLAY.
    static bool isWaylandSession(const QString& sessionType, const QString& waylandDisplay);

    CapabilityCheck windowControl() override;
    CapabilityCheck screenCapture() override;
    // The local page that explains the session's requirements, written where a browser can read it.
    QUrl helpPage(Capability capability) override;

    // Whether a window manager that follows EWMH announces itself on the root window.
    bool hasEwmhWindowManager();

private:
    // Asks the X server for the window manager only when the check needs it.
    Facts facts(bool withWindowManager);

    X11Connection& m_connection;
};
