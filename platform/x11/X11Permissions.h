#pragma once

#include "platform/Permissions.h"

class X11Connection;

// On X11 no prompt exists: windows can be moved when an EWMH window manager runs, and displays can be
// captured on any X11 connection. The requests only read the state again.
class X11Permissions : public Permissions {
public:
    explicit X11Permissions(X11Connection& connection);

    struct Answers {
        bool screenCapture = false;
        bool accessibility = false;
    };
    // The answers for a session: on a Wayland session without X11 access both are false.
    static Answers answersFor(bool hasX11Connection, bool hasEwmhWindowManager);

    bool preflightScreenCaptureAccess() override;
    bool requestScreenCaptureAccess() override;
    bool isProcessTrusted() override;
    bool isProcessTrustedWithOptions(bool prompt) override;
    // Opens a local page that explains what the session needs.
    void openSettingsPage(const QString& settingsUrl) override;

    // Whether a window manager that follows EWMH announces itself on the root window.
    bool hasEwmhWindowManager();

private:
    Answers answers();

    X11Connection& m_connection;
};
