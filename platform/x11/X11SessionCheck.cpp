// SPDX-License-Identifier: MIT
#include "platform/x11/X11SessionCheck.h"

#include <QCoreApplication>

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Ewmh.h"
#include "platform/x11/X11SessionHelpPage.h"

namespace {

// Read when shown, so that it is in the language of the moment.
QString noConnection() {
    return QCoreApplication::translate(
        "X11SessionCheck",
        "Lattica has lost its connection to the X server. Start Lattica again inside your desktop session.");
}

}  // namespace

X11SessionCheck::X11SessionCheck(X11Connection& connection) : m_connection(connection) {}

bool X11SessionCheck::isWaylandSession(const QString& sessionType, const QString& waylandDisplay) {
    return sessionType.compare(QLatin1String("wayland"), Qt::CaseInsensitive) == 0 || !waylandDisplay.isEmpty();
}

CapabilityCheck X11SessionCheck::windowControlFor(const Facts& facts) {
    if (!facts.connected) {
        return {Availability::Unavailable, noConnection()};
    }
    if (facts.waylandSession) {
        if (!facts.ewmhWindowManager) {
            return {Availability::Unavailable,
                    QCoreApplication::translate(
                        "X11SessionCheck",
                        "This is a Wayland session, and Lattica can only reach X11 applications through "
                        "Xwayland, where no window manager answers. Log in to an X11 (Xorg) session to "
                        "move windows.")};
        }
        return {Availability::Limited,
                QCoreApplication::translate(
                    "X11SessionCheck",
                    "This is a Wayland session: Lattica sees and moves only X11 applications, through "
                    "Xwayland. Wayland applications are not listed and stay where they are. Log in to an "
                    "X11 (Xorg) session to move every window.")};
    }
    if (!facts.ewmhWindowManager) {
        return {Availability::Unavailable,
                QCoreApplication::translate(
                    "X11SessionCheck",
                    "No window manager is running. Lattica moves windows through a window manager that "
                    "follows the EWMH standard (Openbox, Xfwm4, KWin, Mutter, IceWM and most others). Start "
                    "one, then check again.")};
    }
    return {Availability::Available, {}};
}

CapabilityCheck X11SessionCheck::screenCaptureFor(const Facts& facts) {
    if (!facts.connected) {
        return {Availability::Unavailable, noConnection()};
    }
    if (facts.waylandSession) {
        return {Availability::Unavailable,
                QCoreApplication::translate(
                    "X11SessionCheck",
                    "This is a Wayland session: through Xwayland Lattica cannot see what your monitors "
                    "show, so there are no previews. Log in to an X11 (Xorg) session to see them.")};
    }
    return {Availability::Available, {}};
}

bool X11SessionCheck::hasEwmhWindowManager() {
    return X11Ewmh::windowManagerPresent(m_connection);
}

X11SessionCheck::Facts X11SessionCheck::facts(bool withWindowManager) {
    Facts facts;
    facts.connected = !m_connection.hasError();
    facts.ewmhWindowManager = withWindowManager && facts.connected && hasEwmhWindowManager();
    facts.waylandSession =
        isWaylandSession(qEnvironmentVariable("XDG_SESSION_TYPE"), qEnvironmentVariable("WAYLAND_DISPLAY"));
    return facts;
}

CapabilityCheck X11SessionCheck::windowControl() {
    return windowControlFor(facts(true));
}

CapabilityCheck X11SessionCheck::screenCapture() {
    // Pictures need no window manager: the panel's every opening asks, and would wait for two round trips.
    return screenCaptureFor(facts(false));
}

QUrl X11SessionCheck::helpPage(Capability capability) {
    const bool wayland =
        isWaylandSession(qEnvironmentVariable("XDG_SESSION_TYPE"), qEnvironmentVariable("WAYLAND_DISPLAY"));
    return X11SessionHelpPage::write(X11SessionHelpPage::standardDirectory(), capability, wayland);
}
