// SPDX-License-Identifier: MIT
#include "platform/gnome/GnomeMonitors.h"

#include <QCryptographicHash>
#include <QImage>
#include <algorithm>

#include "platform/gnome/GnomeDisplayConfig.h"
#include "platform/gnome/GnomeShellBridge.h"

GnomeMonitors::GnomeMonitors(GnomeShellBridge& bridge) : m_bridge(bridge) {
    connect(&m_bridge, &GnomeShellBridge::monitorsChanged, this, &Monitors::changed, Qt::QueuedConnection);
}

MonitorId GnomeMonitors::idForConnector(const QString& connector) {
    const QByteArray digest = QCryptographicHash::hash(connector.toUtf8(), QCryptographicHash::Sha1);
    quint32 id = 0;
    for (int i = 0; i < 4; ++i) {
        id = (id << 8) | static_cast<quint8>(digest.at(i));
    }
    return id == 0 ? 1 : id;
}

// The Shell numbers monitors in its own order, which is not the connectors' order: each is matched to
// Mutter's configuration by the top-left corner they share.
QList<Monitor> GnomeMonitors::monitors() {
    const std::optional<QList<GnomeShellMonitor>> shellMonitors = m_bridge.monitors();
    if (!shellMonitors) {
        return {};
    }
    const QList<GnomeConnectedMonitor> connected =
        GnomeDisplayConfig::currentMonitors(m_bridge.bus()).value_or(QList<GnomeConnectedMonitor>{});
    QList<Monitor> monitors;
    for (const GnomeShellMonitor& shellMonitor : *shellMonitors) {
        Monitor monitor;
        const auto match = std::find_if(connected.cbegin(), connected.cend(), [&](const GnomeConnectedMonitor& c) {
            return c.position == shellMonitor.geometry.topLeft().toPoint();
        });
        monitor.name =
            match != connected.cend() ? match->connector : QStringLiteral("monitor-%1").arg(shellMonitor.index);
        monitor.id = idForConnector(monitor.name);
        monitor.bounds = shellMonitor.geometry;
        monitor.primary = shellMonitor.primary;
        // Mutter reports the serial as text; a number is kept, anything else reads as none.
        if (match != connected.cend()) {
            bool isNumber = false;
            const uint serial = match->serial.toUInt(&isNumber, 0);
            monitor.serial = isNumber ? serial : 0;
        }
        monitor.unit = static_cast<quint32>(shellMonitor.index);
        monitors.append(monitor);
    }
    std::stable_partition(monitors.begin(), monitors.end(), [](const Monitor& m) { return m.primary; });
    return monitors;
}

QImage GnomeMonitors::capture(MonitorId id) {
    const int index = shellIndexOf(id);
    if (index < 0) {
        setCaptureProblem(QStringLiteral("the monitor is not connected"));
        return {};
    }
    QString problem;
    const std::optional<QByteArray> png = m_bridge.captureMonitor(index, &problem);
    if (!png) {
        setCaptureProblem(problem.isEmpty() ? QStringLiteral("the extension did not answer") : problem);
        return {};
    }
    QImage image = QImage::fromData(*png, "PNG");
    if (image.isNull()) {
        setCaptureProblem(QStringLiteral("the Shell's picture could not be read"));
        return {};
    }
    setCaptureProblem({});
    return image;
}

QString GnomeMonitors::lastCaptureProblem() const {
    const QMutexLocker lock(&m_mutex);
    return m_captureProblem;
}

void GnomeMonitors::setCaptureProblem(const QString& problem) {
    const QMutexLocker lock(&m_mutex);
    m_captureProblem = problem;
}

int GnomeMonitors::shellIndexOf(MonitorId id) {
    for (const Monitor& monitor : monitors()) {
        if (monitor.id == id) {
            return static_cast<int>(monitor.unit);
        }
    }
    return -1;
}
