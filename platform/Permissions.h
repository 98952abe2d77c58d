#pragma once

#include <QString>

// The two grants the program needs: reading and moving other windows, and capturing displays.
class Permissions {
public:
    Permissions() = default;
    virtual ~Permissions() = default;
    Permissions(const Permissions&) = delete;
    Permissions& operator=(const Permissions&) = delete;

    // Whether display pictures can be taken.
    virtual bool preflightScreenCaptureAccess() = 0;
    // Asks for screen capture access; the answer may only take effect later.
    virtual bool requestScreenCaptureAccess() = 0;
    // Whether this process may read and move other applications' windows.
    virtual bool isProcessTrusted() = 0;
    // As isProcessTrusted; with prompt set, asks the user first where the platform can.
    virtual bool isProcessTrustedWithOptions(bool prompt) = 0;
    // Opens the system settings page behind one of the privacy settings addresses.
    virtual void openSettingsPage(const QString& settingsUrl) = 0;
};
