// SPDX-License-Identifier: MIT
#include "tests/faults/LatticaProgram.h"

#include <QDBusConnectionInterface>
#include <QDir>
#include <QFile>

#include "tests/support/VirtualDesktop.h"

LatticaProgram::LatticaProgram() {
    m_environment = VirtualDesktop::programEnvironment(m_config.path());
    m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_runtime.path());
    m_environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_bus.address());
}

LatticaProgram::~LatticaProgram() {
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished(5000);
    }
}

QString LatticaProgram::configPath(const QString& relative) const {
    return relative.isEmpty() ? m_config.path() : m_config.filePath(relative);
}

bool LatticaProgram::start(int timeoutMs) {
    if (m_bus.address().isEmpty()) {
        return false;
    }
    m_process.setProcessEnvironment(m_environment);
    m_process.setProcessChannelMode(QProcess::SeparateChannels);
    QObject::connect(&m_process, &QProcess::readyReadStandardError,
                     [this] { m_errors += m_process.readAllStandardError(); });
    m_process.start(QStringLiteral(LATTICA_BINARY), {});
    return m_process.waitForStarted(5000) &&
           VirtualDesktop::waitUntil(
               [&] {
                   return m_bus.connection().interface()->isServiceRegistered(QStringLiteral("app.lattica.Lattica"));
               },
               timeoutMs);
}

QDBusMessage LatticaProgram::call(const QString& method, const QVariantList& arguments, int timeoutMs) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(QStringLiteral("app.lattica.Lattica"), QStringLiteral("/app/lattica/Lattica"),
                                       QStringLiteral("app.lattica.Lattica1"), method);
    message.setArguments(arguments);
    return m_bus.connection().call(message, QDBus::Block, timeoutMs);
}

bool LatticaProgram::stop(int timeoutMs) {
    if (m_process.state() == QProcess::NotRunning) {
        return true;
    }
    m_process.terminate();
    return m_process.waitForFinished(timeoutMs);
}

QString LatticaProgram::errorOutput() {
    m_errors += m_process.readAllStandardError();
    return QString::fromUtf8(m_errors);
}

qint64 LatticaProgram::statusField(const char* name) const {
    QFile status(QStringLiteral("/proc/%1/status").arg(pid()));
    if (pid() <= 0 || !status.open(QIODevice::ReadOnly)) {
        return -1;
    }
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(name)) {
            return line.mid(qstrlen(name)).trimmed().split(' ').value(0).toLongLong();
        }
    }
    return -1;
}

QList<qint64> LatticaProgram::sharedSegmentSizes() const {
    QFile maps(QStringLiteral("/proc/%1/maps").arg(pid()));
    QList<qint64> sizes;
    if (pid() <= 0 || !maps.open(QIODevice::ReadOnly)) {
        return sizes;
    }
    // "start-end perms offset dev inode /SYSV0000000 (deleted)"
    for (const QByteArray& line : maps.readAll().split('\n')) {
        if (line.contains("SYSV")) {
            const QList<QByteArray> range = line.split(' ').value(0).split('-');
            sizes.append(range.value(1).toLongLong(nullptr, 16) - range.value(0).toLongLong(nullptr, 16));
        }
    }
    return sizes;
}

int LatticaProgram::openFileDescriptors() const {
    return pid() > 0 ? int(QDir(QStringLiteral("/proc/%1/fd").arg(pid())).entryList(QDir::Files | QDir::System).size())
                     : -1;
}
