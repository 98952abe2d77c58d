#pragma once

#include <QStringList>

#include "platform/Permissions.h"

// Scripted permission answers; records every request.
class FakePermissions : public Permissions {
public:
    bool screenCaptureGranted = true;
    bool trusted = true;
    // What a prompt does: when set, answering the prompt grants trust.
    bool promptGrantsTrust = false;
    int screenCaptureRequests = 0;
    int trustPrompts = 0;
    QStringList openedSettingsPages;

    bool preflightScreenCaptureAccess() override { return screenCaptureGranted; }
    bool requestScreenCaptureAccess() override {
        ++screenCaptureRequests;
        return screenCaptureGranted;
    }
    bool isProcessTrusted() override { return trusted; }
    bool isProcessTrustedWithOptions(bool prompt) override {
        if (prompt) {
            ++trustPrompts;
            if (promptGrantsTrust) {
                trusted = true;
            }
        }
        return trusted;
    }
    void openSettingsPage(const QString& settingsUrl) override { openedSettingsPages.append(settingsUrl); }
};
