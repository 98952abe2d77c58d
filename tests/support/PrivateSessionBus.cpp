// SPDX-License-Identifier: MIT
#include "tests/support/PrivateSessionBus.h"

#include <QUuid>

PrivateSessionBus::PrivateSessionBus()
    : m_connectionName(QStringLiteral("test-bus-") + QUuid::createUuid().toString(QUuid::WithoutBraces)) {
    m_daemon.start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address=1")});
    if (m_daemon.waitForStarted(5000) && m_daemon.waitForReadyRead(5000)) {
        m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
    }
}

PrivateSessionBus::~PrivateSessionBus() {
    QDBusConnection::disconnectFromBus(m_connectionName);
    m_daemon.terminate();
    m_daemon.waitForFinished(5000);
}

QDBusConnection PrivateSessionBus::connection() const {
    return QDBusConnection::connectToBus(m_address, m_connectionName);
}
