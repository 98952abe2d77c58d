#pragma once

#include <QList>

#include "platform/Activation.h"

// Records how the program presented itself.
class FakeActivation : public Activation {
public:
    ActivationPolicy policy = ActivationPolicy::Regular;
    int activations = 0;
    QList<QUrl> openedURLs;
    bool openSucceeds = true;

    void setActivationPolicy(ActivationPolicy newPolicy) override { policy = newPolicy; }
    ActivationPolicy activationPolicy() const override { return policy; }
    void activateIgnoringOtherApps() override { ++activations; }
    bool openURL(const QUrl& url) override {
        openedURLs.append(url);
        return openSucceeds;
    }
    QString operatingSystemVersionString() override { return QStringLiteral("Test OS 1.0"); }
};
