// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "platform/SessionCheck.h"

class KWinBridge;
class KWinScreenCapture;

// What works on KDE Plasma (Wayland) through the KWin bridge.
class KWinSessionCheck : public SessionCheck {
public:
    // What a check is made of, so that the wording can be tested without KWin.
    struct Facts {
        bool watching = false;   // KWin runs Lattica's watcher script
        bool captured = false;   // a screen capture just worked
        QString captureRefusal;  // KWin's reason when it did not
    };
    static CapabilityCheck windowControlFor(const Facts& facts);
    static CapabilityCheck screenCaptureFor(const Facts& facts);

    // tryCapture takes a picture of one screen and says whether it worked.
    KWinSessionCheck(KWinBridge& bridge, KWinScreenCapture& capture, std::function<bool()> tryCapture)
        : m_bridge(bridge), m_capture(capture), m_tryCapture(std::move(tryCapture)) {}

    CapabilityCheck windowControl() override;
    CapabilityCheck screenCapture() override;
    QUrl helpPage(Capability capability) override;

private:
    KWinBridge& m_bridge;
    KWinScreenCapture& m_capture;
    std::function<bool()> m_tryCapture;
};
