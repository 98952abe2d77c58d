// SPDX-License-Identifier: MIT
#include "tests/testclient/TestClient.h"

#include <QDeadlineTimer>

TestClient::TestClient() {
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
}

TestClient::~TestClient() {
    if (isRunning() && !exit(2000)) {
        kill();
    }
}

QString TestClient::programPath() {
    return QStringLiteral(LATTICA_TEST_CLIENT_PATH);
}

bool TestClient::start(int timeoutMs) {
    m_process.start(programPath(), {});
    if (!m_process.waitForStarted(timeoutMs)) {
        return false;
    }
    return waitForLine(QStringLiteral("ready"), timeoutMs) == QStringLiteral("ready");
}

void TestClient::send(const QString& line) {
    m_process.write((line + QLatin1Char('\n')).toUtf8());
    m_process.waitForBytesWritten(1000);
}

void TestClient::readLines() {
    m_buffer += m_process.readAllStandardOutput();
    qsizetype newline;
    while ((newline = m_buffer.indexOf('\n')) >= 0) {
        const QString line = QString::fromUtf8(m_buffer.left(newline));
        m_buffer.remove(0, newline + 1);
        const QStringList words = line.split(QLatin1Char(' '));
        if (words.size() == 3 && words[0] == QLatin1String("window")) {
            m_windows.insert(words[1], words[2].toUInt());
        } else if (words.size() == 2 && words[0] == QLatin1String("closed")) {
            m_windows.remove(words[1]);
        }
        m_lines.append(line);
    }
}

QString TestClient::waitForLine(const QString& prefix, int timeoutMs) {
    QDeadlineTimer deadline(timeoutMs);
    while (true) {
        readLines();
        for (qsizetype i = 0; i < m_lines.size(); ++i) {
            if (m_lines[i].startsWith(prefix)) {
                const QString line = m_lines.takeAt(i);
                return line;
            }
        }
        if (deadline.hasExpired() || !isRunning()) {
            return {};
        }
        m_process.waitForReadyRead(static_cast<int>(qMax<qint64>(1, deadline.remainingTime())));
    }
}

quint32 TestClient::open(const QString& name, const QString& options, int timeoutMs) {
    send(QStringLiteral("open name=%1 %2").arg(name, options));
    const QString line = waitForLine(QStringLiteral("window %1 ").arg(name), timeoutMs);
    return line.isEmpty() ? 0 : line.section(QLatin1Char(' '), 2, 2).toUInt();
}

QList<quint32> TestClient::openMany(const QString& name, int count, const QString& options, int timeoutMs) {
    send(QStringLiteral("open name=%1 count=%2 %3").arg(name).arg(count).arg(options));
    QList<quint32> windows;
    QDeadlineTimer deadline(timeoutMs);
    for (int i = 0; i < count; ++i) {
        const QString line = waitForLine(QStringLiteral("window %1%2 ").arg(name).arg(i),
                                         static_cast<int>(qMax<qint64>(1, deadline.remainingTime())));
        if (line.isEmpty()) {
            break;
        }
        windows.append(line.section(QLatin1Char(' '), 2, 2).toUInt());
    }
    return windows;
}

bool TestClient::close(const QString& name, int timeoutMs) {
    send(QStringLiteral("close name=%1").arg(name));
    return !waitForLine(QStringLiteral("closed %1").arg(name), timeoutMs).isEmpty();
}

bool TestClient::exit(int timeoutMs) {
    send(QStringLiteral("exit"));
    m_process.closeWriteChannel();
    return m_process.waitForFinished(timeoutMs);
}

void TestClient::kill() {
    m_process.kill();
    m_process.waitForFinished(2000);
}
