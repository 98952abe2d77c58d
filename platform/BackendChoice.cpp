// SPDX-License-Identifier: MIT
#include "platform/BackendChoice.h"

bool BackendChooser::isWayland(const BackendSignals& session) {
    if (session.sessionType == QLatin1String("x11")) {
        return false;
    }
    return session.sessionType == QLatin1String("wayland") || session.waylandDisplay;
}

BackendChoice BackendChooser::choose(const BackendSignals& session) {
    QString note;
    if (session.forced == QLatin1String("x11")) {
        return {Backend::X11, {}};
    }
    if (session.forced == QLatin1String("kwin")) {
        return {Backend::KWin, {}};
    }
    if (session.forced == QLatin1String("gnome")) {
        return {Backend::Gnome, {}};
    }
    if (!session.forced.isEmpty()) {
        note =
            QStringLiteral("LATTICA_BACKEND=%1 is not a backend (x11, kwin or gnome); choosing one for this session.")
                .arg(session.forced);
    }
    if (!isWayland(session)) {
        if (session.x11Display) {
            return {Backend::X11, note};
        }
        return {Backend::None, note};
    }
    if (session.kwinOnBus) {
        return {Backend::KWin, note};
    }
    if (session.gnomeShellOnBus) {
        return {Backend::Gnome, note};
    }
    if (session.x11Display) {
        const QString limited = QStringLiteral(
            "This Wayland desktop has no bridge for Lattica: only X11 applications (through Xwayland) can be seen and "
            "moved.");
        return {Backend::Xwayland, note.isEmpty() ? limited : note + QLatin1Char(' ') + limited};
    }
    return {Backend::None, note};
}

QString BackendChooser::name(Backend backend) {
    switch (backend) {
        case Backend::X11:
            return QStringLiteral("x11");
        case Backend::Xwayland:
            return QStringLiteral("xwayland");
        case Backend::KWin:
            return QStringLiteral("kwin");
        case Backend::Gnome:
            return QStringLiteral("gnome");
        case Backend::None:
            break;
    }
    return QStringLiteral("none");
}
