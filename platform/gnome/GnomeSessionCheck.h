// SPDX-License-Identifier: MIT
#pragma once

#include "platform/SessionCheck.h"

class GnomeMonitors;
class GnomeShellBridge;

// What works on GNOME Shell (Wayland) through Lattica's Shell extension.
class GnomeSessionCheck : public SessionCheck {
public:
    // The extension as GNOME Shell's extension list reports it.
    enum class ExtensionState { Missing, Disabled, Enabled, Failed, Unknown };
    // What a check is made of, so that the wording can be tested without the Shell.
    struct Facts {
        bool answering = false;  // the extension answers on the bus
        bool refused = false;    // it answers, but not this process: another one owns Lattica's bus name
        ExtensionState state = ExtensionState::Unknown;
        bool captured = false;   // a monitor's picture came back
        QString captureProblem;  // why not, in the Shell's words
    };
    static CapabilityCheck windowControlFor(const Facts& facts);
    static CapabilityCheck screenCaptureFor(const Facts& facts);
    // Asks GNOME Shell (org.gnome.Shell.Extensions) about the extension.
    static ExtensionState extensionState(const GnomeShellBridge& bridge);

    GnomeSessionCheck(GnomeShellBridge& bridge, GnomeMonitors& monitors) : m_bridge(bridge), m_monitors(monitors) {}

    CapabilityCheck windowControl() override;
    CapabilityCheck screenCapture() override;
    QUrl helpPage(Capability capability) override;

private:
    Facts facts() const;

    GnomeShellBridge& m_bridge;
    GnomeMonitors& m_monitors;
};
