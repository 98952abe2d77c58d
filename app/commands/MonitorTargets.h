// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <optional>
#include <variant>

#include "app/model/Models.h"

// Turns the monitor a user names on the command line into one of the connected monitors.
namespace MonitorTargets {

// Why a name matches no monitor, in words for the user.
struct NoSuchMonitor {
    QString message;
};

// TARGET is a 1-based index as the panel shows it, a monitor's name (any case), its persistent identifier,
// or one of "next",
// "previous", "left", "right", "up" and "down", taken from `from` (the focused window's monitor).
// "next" and "previous" follow the indexes and wrap around; the four directions follow the monitors'
// positions and never wrap.
std::variant<DisplayDescriptor, NoSuchMonitor> resolve(const QString& target, const QList<DisplayDescriptor>& displays,
                                                       const std::optional<DisplayDescriptor>& from);

// Whether the word is one of the relative targets, which need a monitor to start from.
bool isRelative(const QString& target);

}  // namespace MonitorTargets
