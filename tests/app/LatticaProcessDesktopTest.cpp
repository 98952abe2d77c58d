// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

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

}  // namespace
