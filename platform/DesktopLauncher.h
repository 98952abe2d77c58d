// SPDX-License-Identifier: MIT
#pragma once

#include <QUrl>

// Hands addresses to the applications the user chose for them (browser, mail client, file viewer).
class DesktopLauncher {
public:
    DesktopLauncher() = default;
    virtual ~DesktopLauncher() = default;
    DesktopLauncher(const DesktopLauncher&) = delete;
    DesktopLauncher& operator=(const DesktopLauncher&) = delete;

    // Opens a URL with the user's preferred handler; false when nothing could open it.
    virtual bool openUrl(const QUrl& url) = 0;
};
