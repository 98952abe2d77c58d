// SPDX-License-Identifier: MIT
#pragma once

#include <QMutex>
#include <QString>

#include "platform/Monitors.h"

class GnomeShellBridge;

// The monitors GNOME Shell places windows on, named after their connectors.
class GnomeMonitors : public Monitors {
public:
    explicit GnomeMonitors(GnomeShellBridge& bridge);

    QList<Monitor> monitors() override;
    // The Shell's own screenshot of the monitor; a null image when it fails (why: lastCaptureProblem()).
    QImage capture(MonitorId id) override;
    // Why the last capture failed; empty after one that worked. Any thread.
    QString lastCaptureProblem() const;

    // The Shell's index of the monitor with the id; -1 when there is none.
    int shellIndexOf(MonitorId id);
    static MonitorId idForConnector(const QString& connector);

private:
    void setCaptureProblem(const QString& problem);

    GnomeShellBridge& m_bridge;
    mutable QMutex m_mutex;
    QString m_captureProblem;
};
