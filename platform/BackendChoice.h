// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

// Which backend serves the desktop the program starts on.
enum class Backend {
    X11,       // an X11 session
    Xwayland,  // a Wayland compositor without a bridge: X11 applications only, through Xwayland
    KWin,      // KDE Plasma on Wayland, through KWin scripts
    Gnome,     // GNOME Shell on Wayland, through its extension
    None,      // no display at all
};

// What the choice looks at: the session's variables and the compositors on the session bus.
struct BackendSignals {
    QString sessionType;           // XDG_SESSION_TYPE
    bool waylandDisplay = false;   // WAYLAND_DISPLAY is set
    bool x11Display = false;       // DISPLAY is set
    bool kwinOnBus = false;        // org.kde.KWin is on the session bus
    bool gnomeShellOnBus = false;  // org.gnome.Shell is on the session bus
    QString forced;                // LATTICA_BACKEND: x11, kwin or gnome; empty to choose
};

struct BackendChoice {
    Backend backend = Backend::None;
    // One line for the user when the choice is not what was asked (an unknown forced backend) or
    // limits what works; empty otherwise.
    QString note;

    bool operator==(const BackendChoice&) const = default;
};

namespace BackendChooser {

// The backend for these signals. A forced backend wins when it is known.
BackendChoice choose(const BackendSignals& session);
// Whether the session is a Wayland one, which decides whether the compositors on the bus are asked.
bool isWayland(const BackendSignals& session);
// "x11", "xwayland", "kwin", "gnome" or "none".
QString name(Backend backend);

}  // namespace BackendChooser
