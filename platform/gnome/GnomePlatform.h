// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <memory>

#include "platform/Platform.h"

class GnomeShellBridge;

// The platform services on GNOME Shell's Wayland session, through Lattica's Shell extension: monitors,
// windows, applications, window control and the session check. Settings, autostart, links and system
// facts are the shared XDG ones. Hot keys, the keyboard layout, the tray and the program's own windows
// are not served on GNOME yet: those pointers stay empty.
class GnomePlatform {
public:
    // Nothing when the extension does not answer; why is then in *problem.
    static std::unique_ptr<GnomePlatform> connect(QString* problem = nullptr);
    ~GnomePlatform();
    GnomePlatform(const GnomePlatform&) = delete;
    GnomePlatform& operator=(const GnomePlatform&) = delete;

    void install();
    const PlatformServices& services() const { return m_services; }
    GnomeShellBridge& bridge() const;

private:
    GnomePlatform();

    struct Owned;
    std::unique_ptr<Owned> m_owned;
    PlatformServices m_services;
};
