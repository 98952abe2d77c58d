// SPDX-License-Identifier: MIT
#include "tests/platform/kwin/KWinSessionFixture.h"

#include <QDeadlineTimer>
#include <QStandardPaths>

#include "platform/Platform.h"
#include "tests/platform/ListedWindows.h"
#include "tests/support/VirtualDesktop.h"

WaylandClient::~WaylandClient() {
    if (m_process.state() != QProcess::NotRunning) {
        send(QStringLiteral("exit"));
        if (!m_process.waitForFinished(2000)) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }
}

bool WaylandClient::start(int timeoutMs) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland"));
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QStringLiteral(LATTICA_WAYLAND_TEST_CLIENT_PATH), {});
    return m_process.waitForStarted(timeoutMs) && waitForLine(QStringLiteral("ready"), timeoutMs);
}

void WaylandClient::send(const QString& line) {
    m_process.write((line + QLatin1Char('\n')).toUtf8());
    m_process.waitForBytesWritten(1000);
}

bool WaylandClient::waitForLine(const QString& line, int timeoutMs) {
    QDeadlineTimer deadline(timeoutMs);
    while (true) {
        m_buffer += m_process.readAllStandardOutput();
        qsizetype newline;
        while ((newline = m_buffer.indexOf('\n')) >= 0) {
            m_lines.append(QString::fromUtf8(m_buffer.left(newline)));
            m_buffer.remove(0, newline + 1);
        }
        if (m_lines.removeOne(line)) {
            return true;
        }
        if (deadline.hasExpired() || m_process.state() == QProcess::NotRunning) {
            return false;
        }
        m_process.waitForReadyRead(static_cast<int>(qMax<qint64>(1, deadline.remainingTime())));
    }
}

bool WaylandClient::open(const QString& name, const QString& options, int timeoutMs) {
    send(QStringLiteral("open name=%1 %2").arg(name, options));
    return waitForLine(QStringLiteral("window %1").arg(name), timeoutMs);
}

bool WaylandClient::close(const QString& name, int timeoutMs) {
    send(QStringLiteral("close name=%1").arg(name));
    return waitForLine(QStringLiteral("closed %1").arg(name), timeoutMs);
}

FakeKeys::~FakeKeys() {
    m_process.closeWriteChannel();
    if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(2000)) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

bool FakeKeys::start() {
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QStringLiteral(LATTICA_FAKE_KEYS_PATH), {});
    return m_process.waitForStarted() && answer() == "ready";
}

bool FakeKeys::send(const char* command, int evdevCode) {
    m_process.write(QByteArray(command) + ' ' + QByteArray::number(evdevCode) + '\n');
    return answer() == "done";
}

bool FakeKeys::movePointer(const QPoint& point) {
    m_process.write(QStringLiteral("pointer %1 %2\n").arg(point.x()).arg(point.y()).toUtf8());
    return answer() == "done";
}

QByteArray FakeKeys::answer() {
    while (!m_process.canReadLine() && m_process.waitForReadyRead(5000)) {
    }
    return m_process.readLine().trimmed();
}

void KWinSessionTest::SetUp() {
    if (qEnvironmentVariableIsEmpty("LATTICA_KWIN_LAYOUT")) {
        if (QStandardPaths::findExecutable(QStringLiteral("kwin_wayland")).isEmpty()) {
            GTEST_SKIP() << "kwin_wayland is not installed (scripts/install-deps.sh installs it)";
        }
        FAIL() << "run this test inside scripts/virtual-kwin.sh run -- (ctest does)";
    }
}

void KWinSessionFixture::SetUp() {
    KWinSessionTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) {
        return;
    }
    QString problem;
    platform = KWinPlatform::connect(&problem);
    ASSERT_TRUE(platform) << problem.toStdString();
    platform->install();
    ASSERT_TRUE(wayland.start());
    ASSERT_TRUE(x11.start());
}

void KWinSessionFixture::TearDown() {
    platform.reset();
}

QList<QRect> KWinSessionFixture::layout() {
    return VirtualDesktop::sideBySide(qEnvironmentVariable("LATTICA_KWIN_LAYOUT"));
}

std::optional<WindowEntry> KWinSessionFixture::waitForWindow(const QString& title, int timeoutMs) {
    return ListedWindows::waitFor(title, timeoutMs);
}

std::optional<WindowEntry> KWinSessionFixture::entryFor(qint64 id) {
    const auto entries = Platform::services().windowList->windows(DesktopWindows::Include);
    for (const WindowEntry& entry : entries.value_or(QList<WindowEntry>{})) {
        if (entry.id == id) {
            return entry;
        }
    }
    return std::nullopt;
}

bool KWinSessionFixture::near(const QRectF& actual, const QRectF& expected, double tolerance) {
    return std::abs(actual.left() - expected.left()) <= tolerance &&
           std::abs(actual.top() - expected.top()) <= tolerance &&
           std::abs(actual.width() - expected.width()) <= tolerance &&
           std::abs(actual.height() - expected.height()) <= tolerance;
}
