// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

// The system the program runs on, as a bug report names it. Each field is "Unknown" when it cannot be
// found out.
struct SystemDescription {
    QString distribution;  // the os-release PRETTY_NAME, e.g. "Debian GNU/Linux 12 (bookworm)"
    QString kernel;        // e.g. "Linux 6.1.0-18-amd64"
    QString desktop;       // XDG_CURRENT_DESKTOP, e.g. "XFCE"
    QString sessionType;   // XDG_SESSION_TYPE, e.g. "x11" or "wayland"
    QString backend;       // how this program reaches the desktop, e.g. "X11"

    bool operator==(const SystemDescription&) const = default;
};

// Describes the system for support requests.
class SystemInfo {
public:
    SystemInfo() = default;
    virtual ~SystemInfo() = default;
    SystemInfo(const SystemInfo&) = delete;
    SystemInfo& operator=(const SystemInfo&) = delete;

    // Read afresh at each call.
    virtual SystemDescription describe() = 0;
};
