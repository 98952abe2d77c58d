// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinSessionCheck.h"

#include <QCoreApplication>

#include "platform/kwin/KWinBridge.h"
#include "platform/kwin/KWinScreenCapture.h"

namespace {

// Read when shown, so that it is in the language of the moment.
QString noKWin() {
    return QCoreApplication::translate("KWinSessionCheck",
                                       "Lattica has lost its connection to KWin, the KDE Plasma window manager. "
                                       "Start Lattica again inside your Plasma session.");
}

}  // namespace

CapabilityCheck KWinSessionCheck::windowControlFor(const Facts& facts) {
    if (!facts.watching) {
        return {Availability::Unavailable, noKWin()};
    }
    return {Availability::Available, {}};
}

CapabilityCheck KWinSessionCheck::screenCaptureFor(const Facts& facts) {
    if (!facts.watching) {
        return {Availability::Unavailable, noKWin()};
    }
    if (facts.captured) {
        return {Availability::Available, {}};
    }
    return {Availability::Unavailable,
            QCoreApplication::translate(
                "KWinSessionCheck",
                "KWin does not let Lattica capture the screen (%1). KWin serves screen pictures only to "
                "programs whose installed desktop file lists org.kde.KWin.ScreenShot2 in "
                "X-KDE-DBUS-Restricted-Interfaces: install Lattica with its desktop file, then start it "
                "again.")
                .arg(facts.captureRefusal.isEmpty()
                         ? QCoreApplication::translate("KWinSessionCheck", "no picture came back")
                         : facts.captureRefusal)};
}

CapabilityCheck KWinSessionCheck::windowControl() {
    return windowControlFor({m_bridge.isWatching(), false, {}});
}

CapabilityCheck KWinSessionCheck::screenCapture() {
    Facts facts;
    facts.watching = m_bridge.isWatching();
    if (facts.watching) {
        facts.captured = m_tryCapture();
        facts.captureRefusal = m_capture.lastRefusal();
    }
    return screenCaptureFor(facts);
}

QUrl KWinSessionCheck::helpPage(Capability) {
    return {};
}
