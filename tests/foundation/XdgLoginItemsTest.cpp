#include <gtest/gtest.h>

#include <unistd.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "app/AppController.h"
#include "platform/fake/FakePlatform.h"
#include "platform/x11/XdgLoginItems.h"

namespace {

class XdgLoginItemsTest : public ::testing::Test {
protected:
    QTemporaryDir directory;
    QString entryPath() const { return directory.filePath(QStringLiteral("autostart/lattica.desktop")); }
};

TEST_F(XdgLoginItemsTest, NoEntryIsNotRegistered) {
    XdgLoginItems items(entryPath());
    EXPECT_EQ(items.status(), LoginItemStatus::NotRegistered);
}

TEST_F(XdgLoginItemsTest, RegisterWritesAnAutostartEntryAndUnregisterRemovesIt) {
    XdgLoginItems items(entryPath());
    QString error;
    ASSERT_TRUE(items.registerMainApp(&error)) << qPrintable(error);
    EXPECT_EQ(items.status(), LoginItemStatus::Enabled);
    QFile file(entryPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray contents = file.readAll();
    EXPECT_TRUE(contents.startsWith("[Desktop Entry]\n"));
    EXPECT_TRUE(contents.contains("\nExec=\""));
    ASSERT_TRUE(items.unregisterMainApp(&error));
    EXPECT_EQ(items.status(), LoginItemStatus::NotRegistered);
    EXPECT_FALSE(QFile::exists(entryPath()));
}

TEST_F(XdgLoginItemsTest, HiddenEntryIsNotEnabled) {
    QDir().mkpath(directory.filePath(QStringLiteral("autostart")));
    QFile file(entryPath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Desktop Entry]\nType=Application\nExec=lattica\nHidden=true\n");
    file.close();
    XdgLoginItems items(entryPath());
    EXPECT_EQ(items.status(), LoginItemStatus::NotRegistered);
}

TEST_F(XdgLoginItemsTest, UnwritableAutostartFolderGivesTheStatusMessageAndFalse) {
    if (::geteuid() == 0) {
        // Root writes anywhere; make the folder's place a file instead so that it cannot be created.
        QFile blocker(directory.filePath(QStringLiteral("autostart")));
        ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    } else {
        QDir().mkpath(directory.filePath(QStringLiteral("autostart")));
        QFile::setPermissions(directory.filePath(QStringLiteral("autostart")),
                              QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    }
    XdgLoginItems items(entryPath());
    FakePlatform platform;
    Platform::install({.monitors = &platform.monitors,
                       .windowServer = &platform.windowServer,
                       .workspace = &platform.workspace,
                       .accessibility = &platform.accessibility,
                       .hotKeys = &platform.hotKeys,
                       .keyboardLayout = &platform.keyboardLayout,
                       .settings = &platform.settings,
                       .loginItems = &items,
                       .permissions = &platform.permissions,
                       .activation = &platform.activation});
    AppController controller;
    controller.setLaunchAtLogin(true);
    EXPECT_FALSE(controller.launchAtLoginEnabled());
    EXPECT_TRUE(controller.statusMessage().startsWith(QStringLiteral("Unable to update login item: ")));
    EXPECT_GT(controller.statusMessage().size(), QStringLiteral("Unable to update login item: ").size());
}

}  // namespace
