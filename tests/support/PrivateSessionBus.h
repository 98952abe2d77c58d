// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QString>

// A session bus of the test's own (a dbus-daemon it starts); it ends with the object.
class PrivateSessionBus {
public:
    PrivateSessionBus();
    ~PrivateSessionBus();
    PrivateSessionBus(const PrivateSessionBus&) = delete;
    PrivateSessionBus& operator=(const PrivateSessionBus&) = delete;

    // Empty when the daemon did not start.
    const QString& address() const { return m_address; }
    QDBusConnection connection() const;

private:
    QProcess m_daemon;
    QString m_address;
    QString m_connectionName;
};
