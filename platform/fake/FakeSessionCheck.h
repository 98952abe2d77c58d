// SPDX-License-Identifier: MIT
#pragma once

#include <QList>

#include "platform/SessionCheck.h"

// Scripted session answers; counts every check and records the help pages asked for.
class FakeSessionCheck : public SessionCheck {
public:
    bool windowControlAvailable = true;
    bool screenCaptureAvailable = true;
    // When not empty and window control is available, it is limited and this says how.
    QString windowControlLimit;
    QString windowControlReason = QStringLiteral("No window manager is running.");
    QString screenCaptureReason = QStringLiteral("This session does not allow capturing the monitors.");
    int windowControlChecks = 0;
    int screenCaptureChecks = 0;
    QList<Capability> helpPagesAsked;

    CapabilityCheck windowControl() override {
        ++windowControlChecks;
        if (!windowControlAvailable) {
            return {Availability::Unavailable, windowControlReason};
        }
        if (!windowControlLimit.isEmpty()) {
            return {Availability::Limited, windowControlLimit};
        }
        return {Availability::Available, {}};
    }
    CapabilityCheck screenCapture() override {
        ++screenCaptureChecks;
        return screenCaptureAvailable ? CapabilityCheck{Availability::Available, {}}
                                      : CapabilityCheck{Availability::Unavailable, screenCaptureReason};
    }
    QUrl helpPage(Capability capability) override {
        helpPagesAsked.append(capability);
        return helpPageUrl(capability);
    }
    static QUrl helpPageUrl(Capability capability) {
        return QUrl(capability == Capability::WindowControl ? QStringLiteral("file:///help.html#window-control")
                                                            : QStringLiteral("file:///help.html#screen-capture"));
    }
};
