// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>

#include "platform/TrayHost.h"

class QDBusServiceWatcher;

// GNOME Shell shows status notifier items only with an extension that hosts them (the AppIndicator
// one, which Ubuntu and others turn on): the host is there while org.kde.StatusNotifierWatcher is on the
// session bus. Without it the panel opens as an ordinary window.
class GnomeTrayHost : public TrayHost {
    Q_OBJECT
public:
    explicit GnomeTrayHost(QDBusConnection bus);
    bool isAvailable() const override;

private:
    QDBusConnection m_bus;
    QDBusServiceWatcher* m_watcher;
};
