// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <signal.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QProcess>

#include "platform/Monitors.h"
#include "platform/Platform.h"
#include "platform/SessionCheck.h"
#include "platform/WindowControl.h"
#include "platform/WindowList.h"
#include "platform/kwin/KWinBridge.h"
#include "platform/kwin/KWinPlatform.h"
#include "tests/platform/kwin/KWinSessionFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

// KWin goes away under Lattica and another KWin takes its place on the session bus. The test runs on
// the offscreen platform: a Wayland client would end with its compositor.
class KWinRestartTest : public KWinSessionTest {
protected:
    void TearDown() override {
        if (m_replacement.state() != QProcess::NotRunning) {
            m_replacement.terminate();
            if (!m_replacement.waitForFinished(5000)) {
                m_replacement.kill();
                m_replacement.waitForFinished();
            }
        }
    }

    static bool kwinOnBus() {
        return QDBusConnection::sessionBus().interface()->isServiceRegistered(QStringLiteral("org.kde.KWin"));
    }

    // The session's KWin, found as the owner of its bus name.
    static pid_t kwinPid() {
        return static_cast<pid_t>(
            QDBusConnection::sessionBus().interface()->servicePid(QStringLiteral("org.kde.KWin")).value());
    }

    // Starts another headless KWin from the copy scripts/virtual-kwin.sh runs.
    void startReplacement() {
        const QString root = QFileInfo(qEnvironmentVariable("XDG_RUNTIME_DIR")).dir().path();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("KWIN_WAYLAND_NO_PERMISSION_CHECKS"), QStringLiteral("1"));
        m_replacement.setProcessEnvironment(environment);
        m_replacement.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_replacement.setStandardOutputFile(QProcess::nullDevice());
        m_replacement.start(root + QStringLiteral("/bin/kwin_wayland"),
                            {QStringLiteral("--virtual"), QStringLiteral("--no-lockscreen"), QStringLiteral("--socket"),
                             QStringLiteral("lattica-kwin-again"), QStringLiteral("--width"), QStringLiteral("1024"),
                             QStringLiteral("--height"), QStringLiteral("768")});
    }

    QProcess m_replacement;
};

TEST_F(KWinRestartTest, TheBridgeSaysItLostKWinAndReconnectsWhenKWinIsBack) {
    QString problem;
    std::unique_ptr<KWinPlatform> platform = KWinPlatform::connect(&problem);
    ASSERT_TRUE(platform) << problem.toStdString();
    platform->install();
    ASSERT_TRUE(platform->bridge().isWatching());
    ASSERT_EQ(Platform::services().sessionCheck->windowControl().availability, Availability::Available);

    const pid_t kwin = kwinPid();
    ASSERT_GT(kwin, 0);
    ASSERT_EQ(::kill(kwin, SIGTERM), 0);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return !platform->bridge().isWatching(); }, 10000));
    const CapabilityCheck lost = Platform::services().sessionCheck->windowControl();
    EXPECT_EQ(lost.availability, Availability::Unavailable);
    EXPECT_TRUE(lost.explanation.contains(QStringLiteral("lost its connection to KWin")))
        << lost.explanation.toStdString();
    EXPECT_EQ(Platform::services().windowControl->focusedWindow().result, Result::NotPermitted);
    EXPECT_FALSE(Platform::services().windowList->windows(DesktopWindows::Include));

    startReplacement();
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return platform->bridge().isWatching(); }, 15000));
    EXPECT_EQ(Platform::services().sessionCheck->windowControl().availability, Availability::Available);
    const QList<Monitor> monitors = Platform::services().monitors->monitors();
    ASSERT_EQ(monitors.size(), 1);
    EXPECT_EQ(monitors.first().bounds, QRectF(0, 0, 1024, 768));
}

}  // namespace
