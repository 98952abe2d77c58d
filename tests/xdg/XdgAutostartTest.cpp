#include <gtest/gtest.h>

#include <unistd.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "app/controller/AppController.h"
#include "platform/fake/FakePlatform.h"
#include "platform/xdg/XdgAutostart.h"

namespace {

class XdgAutostartTest : public ::testing::Test {
protected:
    QTemporaryDir directory;
    QString entryPath() const { return directory.filePath(QStringLiteral("autostart/lattica.desktop")); }
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
    ASSERT_TRUE(items.disable(&error));
    EXPECT_EQ(items.status(), AutostartStatus::Disabled);
    EXPECT_FALSE(QFile::exists(entryPath()));
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

}  // namespace
