// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <memory>

#include "platform/Platform.h"

class GnomeShellBridge;

// Every platform service on GNOME Shell's Wayland session, through Lattica's Shell extension: monitors
// and their pictures, windows, applications, window control, accelerators, our own windows and the
// session check. Settings, autostart, links and system facts are the shared XDG ones; the keyboard layout
// is read through Xwayland when there is one.
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
