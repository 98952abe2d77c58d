// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QMutex>
#include <QSet>
#include <QTimer>
#include <memory>

#include "platform/Monitors.h"
#include "platform/x11/X11Capture.h"

class X11Connection;

// Monitors from RandR 1.5: the active ones, primary first, then RandR's order. The global space is the
// root window shifted so that the primary monitor's top-left corner is the origin.
class X11Monitors : public Monitors {
    Q_OBJECT
public:
    explicit X11Monitors(X11Connection& connection);
    ~X11Monitors() override;

    QList<Monitor> monitors() override;
    QImage capture(MonitorId id) override;
    void prepareCapture(const QRectF& area) override;
    bool canCaptureAreas() const override;
    QImage captureArea(const QRectF& area) override;
    // True from a configuration event until the monitors have been compared with the last announced ones.
    bool isChangePending() const { return m_coalesceTimer.isActive(); }

private:
    // A monitor as RandR reports it, in root coordinates.
    struct RandrMonitor {
        Monitor monitor;  // its bounds are left empty here
        QRect rootRect;

        bool operator==(const RandrMonitor&) const = default;
    };

    // Reads the active monitors from the server, primary first.
    QList<RandrMonitor> fetchMonitors();
    bool handleEvent(xcb_generic_event_t* event);
    void checkForConfigurationChange();

    X11Connection& m_connection;
    int m_eventHandler = 0;
    uint8_t m_randrFirstEvent = 0;
    bool m_hasRandr15 = false;
    QTimer m_coalesceTimer;
    QList<RandrMonitor> m_signalledMonitors;  // the configuration last announced
    QMutex m_rectMutex;
    QHash<MonitorId, QRect> m_rootRects;  // read by capture threads
    QPoint m_globalOrigin;                // the primary monitor's top-left corner on the root window
    QSet<QString> m_reportedIdentityChanges;
    X11Capture m_capture;
};
