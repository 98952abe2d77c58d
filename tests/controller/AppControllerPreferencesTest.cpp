// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QSignalSpy>

#include "app/controller/AppController.h"
#include "app/update/Updater.h"
#include "platform/fake/FakePlatform.h"

namespace {

class AppControllerPreferencesTest : public ::testing::Test {
protected:
    FakePlatform platform;
};

TEST_F(AppControllerPreferencesTest, FirstRunWritesAndPublishesTheDefaults) {
    AppController controller;
    EXPECT_EQ(platform.settings.value(QStringLiteral("dockIconVisible")), SettingValue(false));
    EXPECT_EQ(platform.settings.value(QStringLiteral("autoCheckForUpdatesOnLaunch")), SettingValue(true));
    EXPECT_EQ(platform.settings.value(QStringLiteral("adjustWindowSizeToTargetScreen")), SettingValue(false));
    EXPECT_FALSE(controller.dockIconVisible());
    EXPECT_TRUE(controller.autoCheckForUpdatesEnabled());
    EXPECT_FALSE(controller.adjustWindowSizeToTargetScreen());
}

TEST_F(AppControllerPreferencesTest, InitialPublishedStateIsEmpty) {
    AppController controller;
    EXPECT_TRUE(controller.displays().isEmpty());
    EXPECT_FALSE(controller.isLoadingPreviews());
    EXPECT_TRUE(controller.statusMessage().isEmpty());
    EXPECT_FALSE(controller.launchAtLoginEnabled());
    EXPECT_FALSE(controller.previewLoadID().isNull());
}

TEST_F(AppControllerPreferencesTest, StartAsksForTheGuideOnlyWhenAPermissionIsMissing) {
    platform.sessionCheck.screenCaptureAvailable = true;
    platform.sessionCheck.windowControlAvailable = false;
    platform.settings.setBool(QStringLiteral("autoCheckForUpdatesOnLaunch"), false);
    AppController controller;
    QSignalSpy guide(&controller, &AppController::permissionGuideRequested);
    controller.start();
    EXPECT_EQ(guide.count(), 1);

    platform.sessionCheck.windowControlAvailable = true;
    controller.start();
    EXPECT_EQ(guide.count(), 1) << "both granted: no guide";
}

TEST_F(AppControllerPreferencesTest, AChangeThatCannotBeSavedIsKeptAndAnnouncedOnceUntilAWriteSucceeds) {
    AppController controller;
    QSignalSpy notice(&controller, &AppController::unsavedPreferencesNoticeChanged);
    platform.settings.setWriteFailure(QStringLiteral("cannot write /config/lattica/defaults.json: Permission denied"));
    // A write of the program's own (the remembered displays) is no change of the user's.
    controller.refreshShortcutDisplays();
    EXPECT_TRUE(controller.unsavedPreferencesNotice().isEmpty());

    controller.setDockIconVisible(true);
    EXPECT_TRUE(controller.dockIconVisible());
    EXPECT_EQ(notice.count(), 1);
    EXPECT_TRUE(controller.unsavedPreferencesNotice().contains(QStringLiteral("Permission denied")))
        << qPrintable(controller.unsavedPreferencesNotice());
    controller.setAdjustWindowSizeToTargetScreen(true);
    controller.setAutoCheckForUpdatesEnabled(false);
    EXPECT_EQ(notice.count(), 1) << "told once, not at every change";
    EXPECT_TRUE(controller.adjustWindowSizeToTargetScreen());
    EXPECT_FALSE(controller.autoCheckForUpdatesEnabled());

    platform.settings.setWriteFailure({});
    controller.setAdjustWindowSizeToTargetScreen(false);
    EXPECT_TRUE(controller.unsavedPreferencesNotice().isEmpty());
    EXPECT_EQ(notice.count(), 2);
}

TEST_F(AppControllerPreferencesTest, StoredFalseForUpdateChecksSurvivesARestart) {
    {
        AppController first;
        first.setAutoCheckForUpdatesEnabled(false);
    }
    AppController second;
    EXPECT_FALSE(second.autoCheckForUpdatesEnabled());
    EXPECT_EQ(platform.settings.value(QStringLiteral("autoCheckForUpdatesOnLaunch")), SettingValue(false));
}

TEST_F(AppControllerPreferencesTest, ExistingValueOfAnotherTypeCountsAsPresent) {
    platform.settings.setString(QStringLiteral("dockIconVisible"), QStringLiteral("YES"));
    platform.settings.setInteger(QStringLiteral("adjustWindowSizeToTargetScreen"), 1);
    AppController controller;
    EXPECT_EQ(platform.settings.value(QStringLiteral("dockIconVisible")), SettingValue(QStringLiteral("YES")));
    EXPECT_TRUE(controller.dockIconVisible());
    EXPECT_TRUE(controller.adjustWindowSizeToTargetScreen());
}

TEST_F(AppControllerPreferencesTest, UpdaterFollowsThePreferenceFromConstructionOn) {
    platform.settings.setBool(QStringLiteral("autoCheckForUpdatesOnLaunch"), false);
    AppController controller;
    Updater* updater = controller.updater();
    EXPECT_FALSE(updater->automaticallyChecksForUpdates());
    controller.setAutoCheckForUpdatesEnabled(true);
    EXPECT_TRUE(updater->automaticallyChecksForUpdates());
    controller.setAutoCheckForUpdatesEnabled(false);
    EXPECT_FALSE(updater->automaticallyChecksForUpdates());
}

TEST_F(AppControllerPreferencesTest, DockIconSetterStoresAndSetsTheTaskbarPresence) {
    AppController controller;
    controller.setDockIconVisible(true);
    EXPECT_TRUE(controller.dockIconVisible());
    EXPECT_EQ(platform.settings.value(QStringLiteral("dockIconVisible")), SettingValue(true));
    EXPECT_TRUE(platform.taskbarPresence.shown);
    controller.setDockIconVisible(false);
    EXPECT_FALSE(platform.taskbarPresence.shown);
}

TEST_F(AppControllerPreferencesTest, LaunchAtLoginReadsTheLoginItemService) {
    platform.autostart.currentStatus = AutostartStatus::Enabled;
    AppController controller;
    EXPECT_TRUE(controller.launchAtLoginEnabled());
}

TEST_F(AppControllerPreferencesTest, RefusedLoginItemGivesStatusMessageAndFalse) {
    platform.autostart.refusal = QStringLiteral("Permission denied");
    AppController controller;
    controller.setLaunchAtLogin(true);
    EXPECT_FALSE(controller.launchAtLoginEnabled());
    EXPECT_TRUE(controller.statusMessage().startsWith(QStringLiteral("Unable to update login item: ")));
    EXPECT_EQ(controller.statusMessage(), QStringLiteral("Unable to update login item: Permission denied"));
}

TEST_F(AppControllerPreferencesTest, RequiresApprovalGivesFalse) {
    platform.autostart.statusAfterEnable = AutostartStatus::RequiresApproval;
    AppController controller;
    controller.setLaunchAtLogin(true);
    EXPECT_FALSE(controller.launchAtLoginEnabled());
    EXPECT_TRUE(controller.statusMessage().isEmpty());
}

TEST_F(AppControllerPreferencesTest, LaunchAtLoginCanBeTurnedOnAndOff) {
    AppController controller;
    controller.setLaunchAtLogin(true);
    EXPECT_TRUE(controller.launchAtLoginEnabled());
    controller.setLaunchAtLogin(false);
    EXPECT_FALSE(controller.launchAtLoginEnabled());
}

TEST_F(AppControllerPreferencesTest, PublishedChangesAreAnnouncedBeforeTheyAreStored) {
    AppController controller;
    bool valueWhenAnnounced = true;
    bool changedAfterwards = false;
    QObject::connect(&controller, &AppController::objectWillChange,
                     [&] { valueWhenAnnounced = controller.dockIconVisible(); });
    QObject::connect(&controller, &AppController::dockIconVisibleChanged,
                     [&] { changedAfterwards = controller.dockIconVisible(); });
    controller.setDockIconVisible(true);
    EXPECT_FALSE(valueWhenAnnounced);
    EXPECT_TRUE(changedAfterwards);
}

TEST_F(AppControllerPreferencesTest, PermissionStateIsReadAtConstruction) {
    platform.sessionCheck.screenCaptureAvailable = true;
    platform.sessionCheck.windowControlAvailable = false;
    AppController controller;
    EXPECT_TRUE(controller.permissionState().screenRecordingGranted);
    EXPECT_FALSE(controller.permissionState().accessibilityGranted);
}

}  // namespace
