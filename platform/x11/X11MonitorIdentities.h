// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include "platform/Monitors.h"

// Keeps the identities of connected monitors distinct. Two monitors of one make and model often report
// the same numeric serial (a dummy value); their identifiers would then be equal.
namespace X11MonitorIdentities {

struct Candidate {
    Monitor* monitor = nullptr;
    QString connector;   // the output's name, such as "HDMI-1"
    QString serialText;  // the EDID serial-number descriptor, empty when there is none
};

// What the identity of a monitor rests on: equal keys give equal identifiers.
QString key(const Monitor& monitor);

// Where monitors share a key, the one on the first connector (in name order) keeps its identity and each
// other one gets a serial of its own: taken from its serial-number descriptor when that differs from the
// others', else from its connector name, so it stays the same while the monitor stays on that connector.
// Returns one line per monitor changed, saying why.
QStringList makeDistinct(const QList<Candidate>& candidates);

}  // namespace X11MonitorIdentities
