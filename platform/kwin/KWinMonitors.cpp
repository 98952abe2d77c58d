// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinMonitors.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QGuiApplication>
#include <QScreen>
#include <QThread>

#include "platform/kwin/KWinBridge.h"
#include "platform/kwin/KWinScreenCapture.h"
#include "platform/kwin/KWinSpace.h"

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

KWinMonitors::KWinMonitors(KWinBridge& bridge, KWinScreenCapture* capture) : m_bridge(bridge), m_capture(capture) {
    connect(&m_bridge, &KWinBridge::screensChanged, this, &Monitors::changed, Qt::QueuedConnection);
}

MonitorId KWinMonitors::idForName(const QString& name) {
    const QByteArray digest = QCryptographicHash::hash(name.toUtf8(), QCryptographicHash::Sha1);
    quint32 id = 0;
    for (int i = 0; i < 4; ++i) {
        id = (id << 8) | static_cast<quint8>(digest.at(i));
    }
    return id == 0 ? 1 : id;
}

QList<Monitor> KWinMonitors::monitors() {
    const KWinState state = m_bridge.state();
    QList<Monitor> monitors;
    for (qsizetype i = 0; i < state.screens.size(); ++i) {
        const KWinScreen& screen = state.screens.at(i);
        Monitor monitor;
        monitor.name = screen.name.isEmpty() ? toolkitNameFor(screen.geometry) : screen.name;
        const QString key = monitor.name.isEmpty() ? QStringLiteral("screen-%1").arg(i) : monitor.name;
        monitor.id = idForName(key);
        monitor.bounds = KWinSpace::toDisplaySpace(state, screen.geometry);
        monitor.primary = i == 0;
        monitor.unit = static_cast<quint32>(i);
        monitors.append(monitor);
    }
    // The command line runs on a QCoreApplication: the thread check must not assume a GUI application.
    const QCoreApplication* application = QCoreApplication::instance();
    if (application != nullptr && QThread::currentThread() == application->thread()) {
        const QMutexLocker lock(&m_mutex);
        m_listed = monitors;
    }
    return monitors;
}

QImage KWinMonitors::capture(MonitorId id) {
    if (m_capture == nullptr) {
        return {};
    }
    QString name;
    {
        const QMutexLocker lock(&m_mutex);
        for (const Monitor& monitor : std::as_const(m_listed)) {
            if (monitor.id == id) {
                name = monitor.name;
            }
        }
    }
    return name.isEmpty() ? QImage() : m_capture->captureScreen(name);
}
