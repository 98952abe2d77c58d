// SPDX-License-Identifier: MIT
#include "platform/gnome/GnomeTrayHost.h"

#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>

namespace {
const QString kWatcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
}

GnomeTrayHost::GnomeTrayHost(QDBusConnection bus)
    : m_bus(std::move(bus)),
      m_watcher(new QDBusServiceWatcher(kWatcherService, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this)) {
    connect(m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& newOwner) {
                Q_EMIT availabilityChanged(!newOwner.isEmpty());
            });
}

bool GnomeTrayHost::isAvailable() const {
    return m_bus.interface() != nullptr && m_bus.interface()->isServiceRegistered(kWatcherService);
}
