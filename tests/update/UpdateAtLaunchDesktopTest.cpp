// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>

#include "tests/support/VirtualDesktop.h"
#include "tests/update/AppcastFixtures.h"
#include "tests/update/LoopbackHttpServer.h"

namespace {

// The program itself on the virtual desktop, its update feed served by this test on loopback. The
// program's build number is compared with each release's machine version.
class UpdateAtLaunchDesktopTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_config.isValid() && m_runtime.isValid());
        ASSERT_TRUE(m_server.isListening());
    }

    void TearDown() override {
        if (m_lattica.state() != QProcess::NotRunning) {
            m_lattica.terminate();
            m_lattica.waitForFinished(10000);
        }
        std::fputs(log().constData(), stderr);
    }

    // Everything the program has written to its error output so far.
    QByteArray log() {
        m_log += m_lattica.readAllStandardError();
        return m_log;
    }

    // Ends the program through its event loop (it quits on SIGTERM), so that every turn it had queued
    // before, the launch sequence among them, has run and logged.
    void quitThroughTheEventLoop() {
        m_lattica.terminate();
        ASSERT_TRUE(m_lattica.waitForFinished(10000));
        EXPECT_EQ(m_lattica.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(m_lattica.exitCode(), 0);
    }

    void serveRelease(const QString& version) {
        m_server.setRoute(QStringLiteral("/appcast.xml"),
                          {200, AppcastFixtures::feed({{version, QStringLiteral("9.9.9"), {}}})});
    }

    void storeAutomaticCheck(bool enabled) {
        QDir().mkpath(m_config.filePath(QStringLiteral("lattica")));
        QFile file(m_config.filePath(QStringLiteral("lattica/defaults.json")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(R"({"autoCheckForUpdatesOnLaunch":{"bool":)") + (enabled ? "true" : "false") + "}}");
    }

    void launch() {
        // A runtime folder of its own: tests running at the same time must not find each other's instance.
        QProcessEnvironment environment = VirtualDesktop::soleInstanceEnvironment(m_config.path(), m_runtime.path());
        environment.insert(QStringLiteral("LATTICA_APPCAST_URL"),
                           m_server.url(QStringLiteral("/appcast.xml")).toString());
        // The updater's own log says which checks it starts and how they end.
        environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("lattica.updates*.debug=true"));
        m_lattica.setProcessEnvironment(environment);
        m_lattica.setProcessChannelMode(QProcess::ForwardedOutputChannel);
        m_lattica.start(QStringLiteral(LATTICA_BINARY), {});
        ASSERT_TRUE(m_lattica.waitForStarted(5000));
    }

    static bool updateWindowShown() {
        return !VirtualDesktop::output(QStringLiteral("xdotool"),
                                       {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                        QStringLiteral("--name"), QStringLiteral("^Software Update$")})
                    .trimmed()
                    .isEmpty();
    }

    QTemporaryDir m_config;
    QTemporaryDir m_runtime;
    LoopbackHttpServer m_server;
    QProcess m_lattica;
    QByteArray m_log;
};

TEST_F(UpdateAtLaunchDesktopTest, LaunchWithANewerReleaseShowsTheUpdateWindow) {
    serveRelease(QStringLiteral("1000"));
    launch();
    ASSERT_TRUE(VirtualDesktop::waitUntil([this] { return m_server.requestedPaths().size() == 1; }, 10000));
    EXPECT_TRUE(VirtualDesktop::waitUntil([] { return updateWindowShown(); }, 10000));
    EXPECT_TRUE(log().contains("background check of"));
}

TEST_F(UpdateAtLaunchDesktopTest, LaunchWithoutANewerReleaseShowsNothing) {
    serveRelease(QString::fromLatin1(LATTICA_BUILD_NUMBER));
    launch();
    ASSERT_TRUE(VirtualDesktop::waitUntil([this] { return m_server.requestedPaths().size() == 1; }, 10000));
    // The program compared its build number with the release's and found itself current (outcome 1 is
    // "up to date"). That such a background result opens no window is checked in-process by
    // UpdaterTest, where the check's own finished signal orders it.
    EXPECT_TRUE(VirtualDesktop::waitUntil([this] { return log().contains("check finished with outcome 1"); }, 10000))
        << log().constData();
}

TEST_F(UpdateAtLaunchDesktopTest, LaunchWithAutomaticChecksOffReadsNoFeed) {
    storeAutomaticCheck(false);
    serveRelease(QStringLiteral("1000"));
    launch();
    // The program is up once it has written its other defaults.
    ASSERT_TRUE(VirtualDesktop::waitUntil(
        [this] {
            QFile file(m_config.filePath(QStringLiteral("lattica/defaults.json")));
            return file.open(QIODevice::ReadOnly) && file.readAll().contains("adjustWindowSizeToTargetScreen");
        },
        10000));
    quitThroughTheEventLoop();
    EXPECT_FALSE(log().contains("check of")) << "a check was started";
    EXPECT_TRUE(m_server.requestedPaths().isEmpty());
}

}  // namespace
