// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <functional>

#include "platform/Monitors.h"
#include "platform/kwin/KWinOutputDevices.h"
#include "platform/kwin/KWinState.h"

// A monitor and the connector KWin knows its output by (captures ask for it by that name).
struct KWinListedMonitor {
    Monitor monitor;
    QString connector;

    bool operator==(const KWinListedMonitor&) const = default;
};

// KWin's screens as monitors, identified as on X11: by the EDID's vendor, model and serial where the output
// has an EDID, else by a number made from the connector name.
namespace KWinMonitorList {

// A number for a connector name that stays the same while the output is connected and across
// reconnections; never 0.
MonitorId idForConnector(const QString& connector);

// The monitors of KWin's screens, in KWin's order (the first is primary), in the global display space.
// The output devices give each screen its EDID, and its connector where the script names none (Plasma
// 5.27); toolkitName names a screen by its geometry where neither does. Monitors identified by their EDID
// keep their connector's number as the former identity that earlier versions stored settings under.
// Where two monitors report the same identity, *changes gets a line saying how they were told apart.
QList<KWinListedMonitor> build(const KWinState& state, const QList<KWinOutputDevice>& devices,
                               const std::function<QString(const QRectF&)>& toolkitName, QStringList* changes);

}  // namespace KWinMonitorList
