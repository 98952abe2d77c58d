// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinMonitors.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QScreen>
#include <QThread>

#include "platform/kwin/KWinBridge.h"
#include "platform/kwin/KWinMonitorList.h"
#include "platform/kwin/KWinOutputDevices.h"
#include "platform/kwin/KWinScreenCapture.h"

Q_LOGGING_CATEGORY(lcKWinMonitors, "lattica.kwin.monitors", QtInfoMsg)

namespace {

// The toolkit's name for the output with this geometry; only the main thread may ask it.
QString toolkitNameFor(const QRectF& geometry) {
    // qGuiApp would be a wrong cast on the command line's QCoreApplication.
    const auto* gui = qobject_cast<const QGuiApplication*>(QCoreApplication::instance());
    if (gui == nullptr || QThread::currentThread() != gui->thread()) {
        return {};
    }
    for (QScreen* screen : QGuiApplication::screens()) {
        if (QRectF(screen->geometry()) == geometry.toAlignedRect()) {
            return screen->name();
        }
    }
    return {};
}

}  // namespace

KWinMonitors::KWinMonitors(KWinBridge& bridge, KWinScreenCapture* capture, KWinOutputDevices* devices)
    : m_bridge(bridge), m_capture(capture), m_devices(devices) {
    connect(&m_bridge, &KWinBridge::screensChanged, this, &Monitors::changed, Qt::QueuedConnection);
}

QList<Monitor> KWinMonitors::monitors() {
    const KWinState state = m_bridge.state();
    const QList<KWinOutputDevice> devices = m_devices != nullptr ? m_devices->devices() : QList<KWinOutputDevice>{};
    QStringList changes;
    const QList<KWinListedMonitor> listed = KWinMonitorList::build(state, devices, toolkitNameFor, &changes);
    QList<Monitor> monitors;
    const QMutexLocker lock(&m_mutex);
    for (const KWinListedMonitor& entry : listed) {
        monitors.append(entry.monitor);
        m_connectors.insert(entry.monitor.id, entry.connector);
    }
    for (const QString& change : std::as_const(changes)) {
        // Said once per configuration that needs it, not at every look at the monitors.
        if (!m_reportedIdentityChanges.contains(change)) {
            m_reportedIdentityChanges.insert(change);
            qCWarning(lcKWinMonitors).noquote() << change;
        }
    }
    return monitors;
}

QImage KWinMonitors::capture(MonitorId id) {
    if (m_capture == nullptr) {
        return {};
    }
    QString connector;
    {
        const QMutexLocker lock(&m_mutex);
        connector = m_connectors.value(id);
    }
    return connector.isEmpty() ? QImage() : m_capture->captureScreen(connector);
}
