// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QUrl>

// How far one capability works on this session.
enum class Availability {
    Available,    // works for every application
    Limited,      // works for some applications only; the explanation says which
    Unavailable,  // does not work here; the explanation says why and what helps
};

// What a check found: how far the capability works and, unless it fully does, why, in words a user can
// act on.
struct CapabilityCheck {
    Availability availability = Availability::Unavailable;
    QString explanation;

    // Whether the capability can be used at all (possibly limited).
    bool isUsable() const { return availability != Availability::Unavailable; }
    bool operator==(const CapabilityCheck&) const = default;
};

// The two capabilities the program needs from the session.
enum class Capability { WindowControl, ScreenCapture };

// What really works on the session the program runs in. Every call looks again; nothing is cached.
class SessionCheck {
public:
    SessionCheck() = default;
    virtual ~SessionCheck() = default;
    SessionCheck(const SessionCheck&) = delete;
    SessionCheck& operator=(const SessionCheck&) = delete;

    // Whether other applications' windows can be read and moved.
    virtual CapabilityCheck windowControl() = 0;
    // Whether the monitors' contents can be captured for the previews.
    virtual CapabilityCheck screenCapture() = 0;
    // A page that explains what this session needs for the capability; an empty URL when there is none.
    virtual QUrl helpPage(Capability capability) = 0;
};
