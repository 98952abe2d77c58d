// SPDX-License-Identifier: MIT
#include "app/commands/SingleInstance.h"

#include <QDBusConnectionInterface>
#include <QDir>
#include <QStandardPaths>

#include "app/commands/LatticaBusService.h"

QString SingleInstance::lockPath() {
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty()) {
        folder = QDir::tempPath();
    }
    return folder + QStringLiteral("/lattica.lock");
}

SingleInstance::Claim SingleInstance::claim() {
    m_lock = std::make_unique<QLockFile>(lockPath());
    // A lock left by a process that has ended is taken over; a live holder's never is.
    m_lock->setStaleLockTime(0);
    if (!m_lock->tryLock(0)) {
        m_lock.reset();
        return Claim::AnotherIsRunning;
    }
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected()) {
        const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
            bus.interface()->registerService(LatticaBusService::serviceName, QDBusConnectionInterface::DontQueueService,
                                             QDBusConnectionInterface::DontAllowReplacement);
        if (reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceNotRegistered) {
            // Someone holds the name without our lock: another instance with another runtime folder.
            m_lock.reset();
            return Claim::AnotherIsRunning;
        }
        m_ownsBusName = reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
    }
    return Claim::Primary;
}

SingleInstance::~SingleInstance() {
    release();
}

void SingleInstance::release() {
    // Left to the end of the process, the name would be dropped by the bus some time after the lock file is
    // gone, and a new instance that took the lock in between would be refused the name.
    if (m_ownsBusName) {
        QDBusConnection::sessionBus().interface()->unregisterService(LatticaBusService::serviceName);
        m_ownsBusName = false;
    }
    m_lock.reset();
}
