#pragma once

#include <sys/types.h>

#include <QString>
#include <optional>

// Plain values shared by the platform services and the core.

// The platform's number for a connected display; stable only while it stays connected.
using CGDirectDisplayID = quint32;

// How a running application presents itself (the values match the window server's policy numbers).
enum class ActivationPolicy { Regular = 0, Accessory = 1, Prohibited = 2 };

struct RunningApplication {
    pid_t processIdentifier = 0;
    ActivationPolicy activationPolicy = ActivationPolicy::Prohibited;
    std::optional<QString> localizedName;
    bool isTerminated = false;

    bool operator==(const RunningApplication&) const = default;
};
