// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinSessionCheck.h"

#include "platform/kwin/KWinBridge.h"
#include "platform/kwin/KWinScreenCapture.h"

namespace {

const QString kNoKWin = QStringLiteral(
    "Lattica has lost its connection to KWin, the KDE Plasma window manager. Start Lattica again inside your "
    "Plasma session.");

}  // namespace

CapabilityCheck KWinSessionCheck::windowControlFor(const Facts& facts) {
    if (!facts.watching) {
        return {Availability::Unavailable, kNoKWin};
    }
    return {Availability::Available, {}};
}

CapabilityCheck KWinSessionCheck::screenCaptureFor(const Facts& facts) {
    if (!facts.watching) {
        return {Availability::Unavailable, kNoKWin};
    }
    if (facts.captured) {
        return {Availability::Available, {}};
    }
    return {Availability::Unavailable,
            QStringLiteral("KWin does not let Lattica capture the screen (%1). KWin serves screen pictures only to "
                           "programs whose installed desktop file lists org.kde.KWin.ScreenShot2 in "
                           "X-KDE-DBUS-Restricted-Interfaces: install Lattica with its desktop file, then start it "
                           "again.")
                .arg(facts.captureRefusal.isEmpty() ? QStringLiteral("no picture came back") : facts.captureRefusal)};
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
