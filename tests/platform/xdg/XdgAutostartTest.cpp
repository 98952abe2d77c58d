// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <unistd.h>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "app/controller/AppController.h"
#include "platform/fake/FakePlatform.h"
#include "platform/xdg/XdgAutostart.h"

namespace {

class XdgAutostartTest : public ::testing::Test {
protected:
    QTemporaryDir directory;
    QString entryPath() const { return directory.filePath(QStringLiteral("autostart/app.lattica.Lattica.desktop")); }
    // Where earlier versions wrote the entry.
    QString legacyEntryPath() const { return directory.filePath(QStringLiteral("autostart/lattica.desktop")); }

    bool writeLegacyEntry(const QByteArray& contents) const {
        QDir().mkpath(directory.filePath(QStringLiteral("autostart")));
        QFile file(legacyEntryPath());
        return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size();
    }
};

TEST_F(XdgAutostartTest, NoEntryIsNotRegistered) {
    XdgAutostart items(entryPath());
    EXPECT_EQ(items.status(), AutostartStatus::Disabled);
}

TEST_F(XdgAutostartTest, RegisterWritesAnAutostartEntryAndUnregisterRemovesIt) {
    XdgAutostart items(entryPath());
    QString error;
    ASSERT_TRUE(items.enable(&error)) << qPrintable(error);
    EXPECT_EQ(items.status(), AutostartStatus::Enabled);
    QFile file(entryPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray contents = file.readAll();
    EXPECT_TRUE(contents.startsWith("[Desktop Entry]\n"));
    EXPECT_TRUE(contents.contains("\nExec=\""));
    EXPECT_TRUE(contents.contains("\nIcon=app.lattica.Lattica\n"));
    ASSERT_TRUE(items.disable(&error));
    EXPECT_EQ(items.status(), AutostartStatus::Disabled);
    EXPECT_FALSE(QFile::exists(entryPath()));
}

// An executable file at the given path.
bool makeProgram(const QString& path) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    file.write("#!/bin/sh\n");
    file.close();
    return file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

TEST_F(XdgAutostartTest, BinaryFoundOnThePathIsStartedByName) {
    const QString installed = directory.filePath(QStringLiteral("bin/lattica"));
    ASSERT_TRUE(makeProgram(installed));
    const QString path = QStringLiteral("/nonexistent:") + directory.filePath(QStringLiteral("bin"));
    EXPECT_EQ(XdgAutostart::execCommand(installed, path), QStringLiteral("lattica"));
    // Reached through a link, it is still the one on the path.
    ASSERT_TRUE(QFile::link(installed, directory.filePath(QStringLiteral("link"))));
    EXPECT_EQ(XdgAutostart::execCommand(directory.filePath(QStringLiteral("link")), path), QStringLiteral("lattica"));
}

TEST_F(XdgAutostartTest, BinaryOtherThanTheOneOnThePathIsStartedByItsAbsolutePath) {
    const QString installed = directory.filePath(QStringLiteral("bin/lattica"));
    const QString buildTree = directory.filePath(QStringLiteral("build/app/lattica"));
    ASSERT_TRUE(makeProgram(installed));
    ASSERT_TRUE(makeProgram(buildTree));
    EXPECT_EQ(XdgAutostart::execCommand(buildTree, directory.filePath(QStringLiteral("bin"))),
              QLatin1Char('"') + buildTree + QLatin1Char('"'));
    EXPECT_EQ(XdgAutostart::execCommand(buildTree, QString()), QLatin1Char('"') + buildTree + QLatin1Char('"'));
}

TEST_F(XdgAutostartTest, AbsolutePathIsQuotedAsDesktopEntriesRequire) {
    EXPECT_EQ(XdgAutostart::execCommand(QStringLiteral("/opt/a \"b\" $c `d` \\e 100%/lattica"), QString()),
              QStringLiteral("\"/opt/a \\\\\"b\\\\\" \\\\$c \\\\`d\\\\` \\\\\\\\e 100%%/lattica\""));
}

TEST_F(XdgAutostartTest, EntryStartsLatticaByNameWhenTheRunningBinaryIsTheOneOnThePath) {
    // A folder on PATH whose "lattica" is this very program.
    const QString bin = directory.filePath(QStringLiteral("bin"));
    ASSERT_TRUE(QDir().mkpath(bin));
    ASSERT_TRUE(QFile::link(QCoreApplication::applicationFilePath(), bin + QStringLiteral("/lattica")));
    const QByteArray savedPath = qgetenv("PATH");
    qputenv("PATH", bin.toLocal8Bit());
    XdgAutostart items(entryPath());
    EXPECT_EQ(items.program(), QStringLiteral("lattica"));
    QString error;
    const bool enabled = items.enable(&error);
    qputenv("PATH", savedPath);
    ASSERT_TRUE(enabled) << qPrintable(error);
    QFile file(entryPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("\nExec=lattica\n"));
    EXPECT_EQ(items.program(), QStringLiteral("lattica"));
}

TEST_F(XdgAutostartTest, EntryStartsTheLauncherThatStartedTheProgram) {
    // A folder on PATH whose "lattica" is the launcher that handed over to this program, which is elsewhere.
    const QString bin = directory.filePath(QStringLiteral("bin"));
    ASSERT_TRUE(QDir().mkpath(bin));
    const QString launcher = bin + QStringLiteral("/lattica");
    QFile script(launcher);
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\n");
    script.close();
    ASSERT_TRUE(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    const QByteArray savedPath = qgetenv("PATH");
    qputenv("PATH", bin.toLocal8Bit());
    qputenv("LATTICA_LAUNCHER", launcher.toLocal8Bit());
    XdgAutostart items(entryPath());
    const QString before = items.program();
    QString error;
    const bool enabled = items.enable(&error);
    // Off the PATH, the launcher is named by its path.
    qputenv("PATH", directory.path().toLocal8Bit());
    const QString offThePath = XdgAutostart(directory.filePath(QStringLiteral("none.desktop"))).program();
    qunsetenv("LATTICA_LAUNCHER");
    qputenv("PATH", savedPath);
    EXPECT_EQ(before, QStringLiteral("lattica"));
    ASSERT_TRUE(enabled) << qPrintable(error);
    QFile file(entryPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("\nExec=lattica\n"));
    EXPECT_EQ(offThePath, launcher);
}

TEST_F(XdgAutostartTest, ProgramIsTheRunningBinaryWhenItIsNotOnThePath) {
    const QByteArray savedPath = qgetenv("PATH");
    qputenv("PATH", directory.path().toLocal8Bit());
    XdgAutostart items(entryPath());
    const QString before = items.program();
    QString error;
    const bool enabled = items.enable(&error);
    qputenv("PATH", savedPath);
    EXPECT_EQ(before, QFileInfo(QCoreApplication::applicationFilePath()).absoluteFilePath());
    ASSERT_TRUE(enabled) << qPrintable(error);
    EXPECT_EQ(items.program(), before);
}

TEST_F(XdgAutostartTest, ProgramOfAnExistingEntryIsReadFromItsExecLine) {
    QDir().mkpath(directory.filePath(QStringLiteral("autostart")));
    QFile file(entryPath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Desktop Entry]\nType=Application\nExec=\"/opt/my \\\\\"apps\\\\\"/100%%/lattica\" --flag\n");
    file.close();
    XdgAutostart items(entryPath());
    EXPECT_EQ(items.program(), QStringLiteral("/opt/my \"apps\"/100%/lattica"));
    EXPECT_EQ(XdgAutostart::execProgram(QStringLiteral("lattica --start")), QStringLiteral("lattica"));
}

TEST_F(XdgAutostartTest, HiddenEntryIsNotEnabled) {
    QDir().mkpath(directory.filePath(QStringLiteral("autostart")));
    QFile file(entryPath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Desktop Entry]\nType=Application\nExec=lattica\nHidden=true\n");
    file.close();
    XdgAutostart items(entryPath());
    EXPECT_EQ(items.status(), AutostartStatus::Disabled);
}

TEST_F(XdgAutostartTest, UnwritableAutostartFolderGivesTheStatusMessageAndFalse) {
    if (::geteuid() == 0) {
        // Root writes anywhere; make the folder's place a file instead so that it cannot be created.
        QFile blocker(directory.filePath(QStringLiteral("autostart")));
        ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    } else {
        QDir().mkpath(directory.filePath(QStringLiteral("autostart")));
        QFile::setPermissions(directory.filePath(QStringLiteral("autostart")),
                              QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    }
    XdgAutostart items(entryPath());
    FakePlatform platform;
    Platform::install({.monitors = &platform.monitors,
                       .windowList = &platform.windowList,
                       .runningApplications = &platform.runningApplications,
                       .windowControl = &platform.windowControl,
                       .hotKeys = &platform.hotKeys,
                       .keyboardLayout = &platform.keyboardLayout,
                       .settings = &platform.settings,
                       .autostart = &items,
                       .sessionCheck = &platform.sessionCheck,
                       .taskbarPresence = &platform.taskbarPresence,
                       .foregroundActivation = &platform.foregroundActivation,
                       .desktopLauncher = &platform.desktopLauncher,
                       .systemInfo = &platform.systemInfo});
    AppController controller;
    controller.setLaunchAtLogin(true);
    EXPECT_FALSE(controller.launchAtLoginEnabled());
    EXPECT_TRUE(controller.statusMessage().startsWith(QStringLiteral("Unable to update login item: ")));
    EXPECT_GT(controller.statusMessage().size(), QStringLiteral("Unable to update login item: ").size());
}

TEST_F(XdgAutostartTest, EntryOfAnEarlierVersionStillCountsAsEnabled) {
    ASSERT_TRUE(writeLegacyEntry("[Desktop Entry]\nType=Application\nExec=/opt/lattica/bin/lattica\n"));
    XdgAutostart items(entryPath(), legacyEntryPath());
    EXPECT_EQ(items.status(), AutostartStatus::Enabled);
    EXPECT_EQ(items.program(), QStringLiteral("/opt/lattica/bin/lattica"));
    // Without the earlier name to look at, the same folder has no entry.
    EXPECT_EQ(XdgAutostart(entryPath()).status(), AutostartStatus::Disabled);
}

TEST_F(XdgAutostartTest, HiddenEntryOfAnEarlierVersionIsNotEnabled) {
    ASSERT_TRUE(writeLegacyEntry("[Desktop Entry]\nType=Application\nExec=lattica\nHidden=true\n"));
    XdgAutostart items(entryPath(), legacyEntryPath());
    EXPECT_EQ(items.status(), AutostartStatus::Disabled);
}

TEST_F(XdgAutostartTest, EnablingReplacesTheEntryOfAnEarlierVersion) {
    ASSERT_TRUE(writeLegacyEntry("[Desktop Entry]\nType=Application\nExec=lattica\n"));
    XdgAutostart items(entryPath(), legacyEntryPath());
    QString error;
    ASSERT_TRUE(items.enable(&error)) << qPrintable(error);
    EXPECT_TRUE(QFile::exists(entryPath()));
    EXPECT_FALSE(QFile::exists(legacyEntryPath()));
    EXPECT_EQ(QDir(directory.filePath(QStringLiteral("autostart"))).entryList(QDir::Files).size(), 1);
    EXPECT_EQ(items.status(), AutostartStatus::Enabled);
}

TEST_F(XdgAutostartTest, DisablingRemovesTheEntriesUnderBothNames) {
    ASSERT_TRUE(writeLegacyEntry("[Desktop Entry]\nType=Application\nExec=lattica\n"));
    XdgAutostart items(entryPath(), legacyEntryPath());
    QString error;
    ASSERT_TRUE(items.disable(&error)) << qPrintable(error);
    EXPECT_FALSE(QFile::exists(legacyEntryPath()));
    EXPECT_EQ(items.status(), AutostartStatus::Disabled);

    // Both present (an earlier version run again after the new one enabled its entry): both go.
    ASSERT_TRUE(items.enable(&error)) << qPrintable(error);
    ASSERT_TRUE(writeLegacyEntry("[Desktop Entry]\nType=Application\nExec=lattica\n"));
    ASSERT_TRUE(items.disable(&error)) << qPrintable(error);
    EXPECT_FALSE(QFile::exists(entryPath()));
    EXPECT_FALSE(QFile::exists(legacyEntryPath()));
    EXPECT_EQ(items.status(), AutostartStatus::Disabled);
}

}  // namespace
