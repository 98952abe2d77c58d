// SPDX-License-Identifier: MIT
#pragma once

#include <QMutex>

#include "platform/Monitors.h"

class KWinBridge;
class KWinScreenCapture;

// KWin's screens as its watcher script reports them. Plasma 5.27's scripts give no output names: those
// come from the toolkit's screens (the Wayland outputs) with the same geometry.
class KWinMonitors : public Monitors {
    Q_OBJECT
public:
    KWinMonitors(KWinBridge& bridge, KWinScreenCapture* capture);

    QList<Monitor> monitors() override;
    QImage capture(MonitorId id) override;

    // A number for an output name that stays the same while the output is connected and across
    // reconnections; never 0.
    static MonitorId idForName(const QString& name);

private:
    KWinBridge& m_bridge;
    KWinScreenCapture* m_capture;
    // The monitors as the main thread last listed them: capture, on other threads, names them the same.
    QMutex m_mutex;
    QList<Monitor> m_listed;
};
