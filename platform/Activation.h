#pragma once

#include <QString>
#include <QUrl>

#include "platform/Types.h"

// How this program presents itself to the desktop, and the desktop's helpers it calls.
class Activation {
public:
    Activation() = default;
    virtual ~Activation() = default;
    Activation(const Activation&) = delete;
    Activation& operator=(const Activation&) = delete;

    // Regular: our windows appear in the taskbar; accessory: they stay out of it.
    virtual void setActivationPolicy(ActivationPolicy policy) = 0;
    virtual ActivationPolicy activationPolicy() const = 0;
    // Brings this program to the front, ahead of other applications.
    virtual void activateIgnoringOtherApps() = 0;
    // Opens a URL with the user's preferred handler; false when nothing could open it.
    virtual bool openURL(const QUrl& url) = 0;
    // One line naming the operating system and its version.
    virtual QString operatingSystemVersionString() = 0;
};
