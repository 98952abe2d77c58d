// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QMutex>
#include <QSet>

#include "platform/Monitors.h"

class KWinBridge;
class KWinOutputDevices;
class KWinScreenCapture;

// KWin's screens as its watcher script reports them, identified by the EDID that KWin's output devices
// carry (KWinMonitorList). Plasma 5.27's scripts give no output names: those come from the output devices,
// else from the toolkit's screens with the same geometry.
class KWinMonitors : public Monitors {
    Q_OBJECT
public:
    // Without output devices (no Wayland connection) monitors are known by their connectors alone.
    KWinMonitors(KWinBridge& bridge, KWinScreenCapture* capture, KWinOutputDevices* devices);

    QList<Monitor> monitors() override;
    QImage capture(MonitorId id) override;

private:
    KWinBridge& m_bridge;
    KWinScreenCapture* m_capture;
    KWinOutputDevices* m_devices;
    // The connectors of the monitors as last listed: capture, on other threads, asks KWin by connector.
    QMutex m_mutex;
    QHash<MonitorId, QString> m_connectors;
    QSet<QString> m_reportedIdentityChanges;
};
