// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>

#include "platform/TrayHost.h"

class QDBusServiceWatcher;

// Plasma's tray shows status notifier items: the host is there while org.kde.StatusNotifierWatcher is on
// the session bus.
class KWinTrayHost : public TrayHost {
    Q_OBJECT
public:
    explicit KWinTrayHost(QDBusConnection bus);
    bool isAvailable() const override;

private:
    QDBusConnection m_bus;
    QDBusServiceWatcher* m_watcher;
};
