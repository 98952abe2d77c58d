// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <memory>

#include "tests/support/PrivateSessionBus.h"
#include "tests/support/VirtualDesktop.h"

namespace {

QJsonObject readDefaults(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QJsonDocument::fromJson(file.readAll()).object();
}

// Starts the program with its own configuration and runtime folders and no update check over the network.
void startLattica(QProcess& lattica, const QString& configDirectory, const QString& runtimeDirectory) {
    lattica.setProcessEnvironment(VirtualDesktop::soleInstanceEnvironment(configDirectory, runtimeDirectory));
    lattica.setProcessChannelMode(QProcess::ForwardedChannels);
    lattica.start(QStringLiteral(LATTICA_BINARY), {});
}

TEST(LatticaProcessDesktopTest, FirstStartWritesThePreferenceDefaultsAndSigtermEndsWithStatusZero) {
    QTemporaryDir config;
    QTemporaryDir runtime;
    ASSERT_TRUE(config.isValid() && runtime.isValid());
    QProcess lattica;
    startLattica(lattica, config.path(), runtime.path());
    ASSERT_TRUE(lattica.waitForStarted(5000));

    const QString defaultsPath = config.filePath(QStringLiteral("lattica/defaults.json"));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return readDefaults(defaultsPath).size() >= 3; }, 10000));
    const QJsonObject defaults = readDefaults(defaultsPath);
    EXPECT_EQ(defaults.value(QStringLiteral("dockIconVisible")).toObject().value(QStringLiteral("bool")),
              QJsonValue(false));
    EXPECT_EQ(defaults.value(QStringLiteral("autoCheckForUpdatesOnLaunch")).toObject().value(QStringLiteral("bool")),
              QJsonValue(true));
    EXPECT_EQ(defaults.value(QStringLiteral("adjustWindowSizeToTargetScreen")).toObject().value(QStringLiteral("bool")),
              QJsonValue(false));

    lattica.terminate();  // SIGTERM
    ASSERT_TRUE(lattica.waitForFinished(10000));
    EXPECT_EQ(lattica.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(lattica.exitCode(), 0);
}

TEST(LatticaProcessDesktopTest, CorruptPreferencesFileIsKeptAndTheDefaultsRecreated) {
    QTemporaryDir config;
    QTemporaryDir runtime;
    ASSERT_TRUE(config.isValid() && runtime.isValid());
    QDir().mkpath(config.filePath(QStringLiteral("lattica")));
    const QString defaultsPath = config.filePath(QStringLiteral("lattica/defaults.json"));
    {
        QFile file(defaultsPath);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("\x00\xff garbage {");
    }
    QProcess lattica;
    startLattica(lattica, config.path(), runtime.path());
    ASSERT_TRUE(lattica.waitForStarted(5000));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return readDefaults(defaultsPath).size() >= 3; }, 10000));
    const QStringList kept =
        QDir(config.filePath(QStringLiteral("lattica"))).entryList({QStringLiteral("defaults.json.corrupt-*")});
    EXPECT_EQ(kept.size(), 1);
    lattica.terminate();
    ASSERT_TRUE(lattica.waitForFinished(10000));
    EXPECT_EQ(lattica.exitCode(), 0);
}

// A call to the running program's bus interface, answered or not within the time given.
QDBusMessage callLattica(const QDBusConnection& bus, const QString& method, int timeoutMs) {
    const QDBusMessage call =
        QDBusMessage::createMethodCall(QStringLiteral("app.lattica.Lattica"), QStringLiteral("/app/lattica/Lattica"),
                                       QStringLiteral("app.lattica.Lattica1"), method);
    return bus.call(call, QDBus::Block, timeoutMs);
}

// Starts the tray program and waits until it answers on the bus, which it does once it has started up
// completely; false when it ended instead, as a start that finds another instance running does.
bool startAndWaitForAnswer(QProcess& lattica, const QProcessEnvironment& environment, const QDBusConnection& bus) {
    lattica.setProcessEnvironment(environment);
    lattica.setProcessChannelMode(QProcess::MergedChannels);
    lattica.start(QStringLiteral(LATTICA_BINARY), {});
    if (!lattica.waitForStarted(5000)) {
        return false;
    }
    VirtualDesktop::waitUntil(
        [&] {
            return lattica.state() == QProcess::NotRunning ||
                   callLattica(bus, QStringLiteral("Displays"), 1000).type() == QDBusMessage::ReplyMessage;
        },
        20000);
    return lattica.state() == QProcess::Running;
}

// What a user who quits and starts Lattica again at once does, several times over on a session bus of the
// test's own: each new start must run, not find the one that quit still running. Half of the new starts
// come once the old process has ended, half as soon as it has removed its lock file, while it still ends.
TEST(LatticaProcessDesktopTest, StartedRightAfterQuittingItRunsInsteadOfFindingItselfRunning) {
    PrivateSessionBus bus;
    ASSERT_FALSE(bus.address().isEmpty()) << "dbus-daemon did not start";
    QTemporaryDir config;
    QTemporaryDir runtime;
    ASSERT_TRUE(config.isValid() && runtime.isValid());
    QProcessEnvironment environment = VirtualDesktop::programEnvironment(config.path());
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime.path());
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
    const QString lockFile = runtime.filePath(QStringLiteral("lattica.lock"));

    auto previous = std::make_unique<QProcess>();
    ASSERT_TRUE(startAndWaitForAnswer(*previous, environment, bus.connection())) << previous->readAll().constData();
    for (int round = 0; round < 8; ++round) {
        // Half of the rounds quit as the panel's Quit does, half by the session's signal to end.
        if (round % 2 == 0) {
            callLattica(bus.connection(), QStringLiteral("Quit"), 10000);
        } else {
            previous->terminate();
        }
        if (round % 4 < 2) {
            ASSERT_TRUE(previous->waitForFinished(20000)) << "round " << round;
        } else {
            ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return !QFile::exists(lockFile); }, 20000))
                << "round " << round;
        }
        auto next = std::make_unique<QProcess>();
        const bool running = startAndWaitForAnswer(*next, environment, bus.connection());

        // (waitForFinished says false for a process it has already seen end.)
        ASSERT_TRUE(previous->state() == QProcess::NotRunning || previous->waitForFinished(20000)) << "round " << round;
        EXPECT_EQ(previous->exitStatus(), QProcess::NormalExit) << "round " << round;
        EXPECT_EQ(previous->exitCode(), 0) << "round " << round;
        EXPECT_TRUE(running) << "round " << round << ", the new start said: " << next->readAll().constData();
        if (!running) {
            next->waitForFinished(20000);
            return;
        }
        previous = std::move(next);
    }
    previous->terminate();
    ASSERT_TRUE(previous->waitForFinished(20000));
    EXPECT_EQ(previous->exitCode(), 0);
}

}  // namespace
