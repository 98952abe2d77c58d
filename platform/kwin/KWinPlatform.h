// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <memory>

#include "platform/Platform.h"

class KWinBridge;

// Every platform service on KDE Plasma's Wayland session, through KWin: its scripts for windows and
// screens, KGlobalAccel for hot keys, ScreenShot2 for pictures. Settings, autostart and links are the
// shared XDG ones. The keyboard layout is read through Xwayland when there is one.
class KWinPlatform {
public:
    // Nothing when KWin does not answer; why is then in *problem.
    static std::unique_ptr<KWinPlatform> connect(QString* problem = nullptr);
    ~KWinPlatform();
    KWinPlatform(const KWinPlatform&) = delete;
    KWinPlatform& operator=(const KWinPlatform&) = delete;

    void install();
    const PlatformServices& services() const { return m_services; }
    KWinBridge& bridge() const;

private:
    KWinPlatform();

    struct Owned;
    std::unique_ptr<Owned> m_owned;
    PlatformServices m_services;
};
