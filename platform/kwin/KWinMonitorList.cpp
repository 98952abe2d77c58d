// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinMonitorList.h"

#include <QCryptographicHash>
#include <cmath>
#include <optional>

#include "platform/kwin/KWinSpace.h"
#include "platform/x11/Edid.h"
#include "platform/x11/X11MonitorIdentities.h"

namespace {

// The device of an enabled screen: the one of its connector, else the enabled one at its place. Sizes
// are compared loosely: the protocol rounds the scale to 1/256.
const KWinOutputDevice* deviceFor(const KWinScreen& screen, const QList<KWinOutputDevice>& devices) {
    if (!screen.name.isEmpty()) {
        for (const KWinOutputDevice& device : devices) {
            if (device.enabled && device.name == screen.name) {
                return &device;
            }
        }
    }
    for (const KWinOutputDevice& device : devices) {
        const QRectF geometry = device.geometry();
        const double slackX = std::max(2.0, geometry.width() * 0.01);
        const double slackY = std::max(2.0, geometry.height() * 0.01);
        if (device.enabled && geometry.topLeft() == screen.geometry.topLeft() &&
            std::abs(geometry.width() - screen.geometry.width()) <= slackX &&
            std::abs(geometry.height() - screen.geometry.height()) <= slackY) {
            return &device;
        }
    }
    return nullptr;
}

}  // namespace

MonitorId KWinMonitorList::idForConnector(const QString& connector) {
    const QByteArray digest = QCryptographicHash::hash(connector.toUtf8(), QCryptographicHash::Sha1);
    quint32 id = 0;
    for (int i = 0; i < 4; ++i) {
        id = (id << 8) | static_cast<quint8>(digest.at(i));
    }
    return id == 0 ? 1 : id;
}

QList<KWinListedMonitor> KWinMonitorList::build(const KWinState& state, const QList<KWinOutputDevice>& devices,
                                                const std::function<QString(const QRectF&)>& toolkitName,
                                                QStringList* changes) {
    QList<KWinListedMonitor> listed;
    QStringList serialTexts;
    for (qsizetype i = 0; i < state.screens.size(); ++i) {
        const KWinScreen& screen = state.screens.at(i);
        const KWinOutputDevice* device = deviceFor(screen, devices);
        KWinListedMonitor entry;
        entry.connector = !screen.name.isEmpty()                         ? screen.name
                          : device != nullptr && !device->name.isEmpty() ? device->name
                          : toolkitName                                  ? toolkitName(screen.geometry)
                                                                         : QString();
        Monitor& monitor = entry.monitor;
        monitor.id = idForConnector(entry.connector.isEmpty() ? QStringLiteral("screen-%1").arg(i) : entry.connector);
        monitor.name = entry.connector;
        monitor.bounds = KWinSpace::toDisplaySpace(state, screen.geometry);
        monitor.primary = i == 0;
        // KWin lists connected outputs only: a position among them would change whenever another monitor
        // comes or goes. Twins without a serial are told apart by their connectors below instead.
        monitor.unit = 0;
        const std::optional<Edid> edid = device != nullptr ? parseEdid(device->edid) : std::nullopt;
        if (edid) {
            monitor.vendor = edid->vendor;
            monitor.model = edid->model;
            monitor.serial = edid->serial;
            // Earlier versions knew every monitor by its connector's number alone.
            monitor.formerId = monitor.id;
            if (!edid->monitorName.isEmpty()) {
                monitor.name = edid->monitorName;
            }
        }
        serialTexts.append(edid ? edid->serialText : QString());
        listed.append(entry);
    }
    QList<X11MonitorIdentities::Candidate> candidates;
    for (qsizetype i = 0; i < listed.size(); ++i) {
        candidates.append({&listed[i].monitor, listed[i].connector, serialTexts[i]});
    }
    const QStringList madeDistinct = X11MonitorIdentities::makeDistinct(candidates);
    if (changes != nullptr) {
        *changes = madeDistinct;
    }
    return listed;
}
