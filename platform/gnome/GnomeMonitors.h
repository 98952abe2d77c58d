// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Monitors.h"

class GnomeShellBridge;

// The monitors GNOME Shell places windows on, named after their connectors.
class GnomeMonitors : public Monitors {
public:
    explicit GnomeMonitors(GnomeShellBridge& bridge);

    QList<Monitor> monitors() override;
    // Monitor pictures are not taken on GNOME yet: a null image.
    QImage capture(MonitorId id) override;

    // The Shell's index of the monitor with the id; -1 when there is none.
    int shellIndexOf(MonitorId id);
    static MonitorId idForConnector(const QString& connector);

private:
    GnomeShellBridge& m_bridge;
};
