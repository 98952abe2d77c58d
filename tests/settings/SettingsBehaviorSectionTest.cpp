#include <QLabel>

#include "app/views/SettingsBehaviorSection.h"
#include "app/views/SettingsToggle.h"
#include "tests/settings/SettingsFixture.h"

namespace {

class SettingsBehaviorSectionTest : public SettingsFixture {
protected:
    SettingsBehaviorSection* behavior() {
        makeView();
        view->setSelectedSection(SettingsSection::Behavior);
        return view->findChild<SettingsBehaviorSection*>();
    }
};

TEST_F(SettingsBehaviorSectionTest, TogglesShowTheStoredPreferences) {
    platform.userDefaults.setObject(QStringLiteral("dockIconVisible"), true);
    platform.userDefaults.setObject(QStringLiteral("adjustWindowSizeToTargetScreen"), false);
    platform.loginItems.currentStatus = LoginItemStatus::Enabled;
    SettingsBehaviorSection* section = behavior();
    ASSERT_NE(section, nullptr);
    EXPECT_TRUE(section->launchAtLoginToggle()->isChecked());
    EXPECT_TRUE(section->dockIconToggle()->isChecked());
    EXPECT_FALSE(section->adjustWindowSizeToggle()->isChecked());
}

TEST_F(SettingsBehaviorSectionTest, ShowsThePreviewNote) {
    behavior();
    EXPECT_EQ(find<QLabel>(QStringLiteral("previewNote"))->text(),
              QStringLiteral("Previews are refreshed only when you click the tray icon."));
}

TEST_F(SettingsBehaviorSectionTest, TurningShowDockIconOnShowsTheDockIconAtOnce) {
    platform.taskbarPresence.shown = false;
    SettingsBehaviorSection* section = behavior();
    QTest::mouseClick(section->dockIconToggle(), Qt::LeftButton);
    EXPECT_TRUE(section->dockIconToggle()->isChecked());
    EXPECT_TRUE(controller->dockIconVisible());
    EXPECT_TRUE(platform.taskbarPresence.shown);
    EXPECT_TRUE(platform.userDefaults.boolForKey(QStringLiteral("dockIconVisible")));

    QTest::mouseClick(section->dockIconToggle(), Qt::LeftButton);
    EXPECT_FALSE(platform.taskbarPresence.shown);
    EXPECT_FALSE(controller->dockIconVisible());
}

TEST_F(SettingsBehaviorSectionTest, ShowDockIconSurvivesARestart) {
    platform.userDefaults.setObject(QStringLiteral("autoCheckForUpdatesOnLaunch"), false);
    SettingsBehaviorSection* section = behavior();
    QTest::mouseClick(section->dockIconToggle(), Qt::LeftButton);
    ASSERT_TRUE(controller->dockIconVisible());

    // A new run: a new controller and window on the same store.
    view.reset();
    controller.reset();
    platform.taskbarPresence.shown = false;
    SettingsBehaviorSection* again = behavior();
    EXPECT_TRUE(controller->dockIconVisible());
    EXPECT_TRUE(again->dockIconToggle()->isChecked());
    controller->applicationDidFinishLaunching();
    EXPECT_TRUE(platform.taskbarPresence.shown);
}

TEST_F(SettingsBehaviorSectionTest, AdjustWindowSizeAssignsThePropertyAndStoresTheBool) {
    SettingsBehaviorSection* section = behavior();
    QTest::mouseClick(section->adjustWindowSizeToggle(), Qt::LeftButton);
    EXPECT_TRUE(controller->adjustWindowSizeToTargetScreen());
    const QVariant stored = platform.userDefaults.object(QStringLiteral("adjustWindowSizeToTargetScreen"));
    EXPECT_EQ(stored.typeId(), QMetaType::Bool);
    EXPECT_TRUE(stored.toBool());
    QTest::mouseClick(section->adjustWindowSizeToggle(), Qt::LeftButton);
    EXPECT_FALSE(controller->adjustWindowSizeToTargetScreen());
    EXPECT_FALSE(platform.userDefaults.object(QStringLiteral("adjustWindowSizeToTargetScreen")).toBool());
}

TEST_F(SettingsBehaviorSectionTest, LaunchAtLoginRegistersTheLoginItem) {
    SettingsBehaviorSection* section = behavior();
    QTest::mouseClick(section->launchAtLoginToggle(), Qt::LeftButton);
    EXPECT_EQ(platform.loginItems.currentStatus, LoginItemStatus::Enabled);
    EXPECT_TRUE(controller->launchAtLoginEnabled());
    EXPECT_TRUE(section->launchAtLoginToggle()->isChecked());
    QTest::mouseClick(section->launchAtLoginToggle(), Qt::LeftButton);
    EXPECT_EQ(platform.loginItems.currentStatus, LoginItemStatus::NotRegistered);
    EXPECT_FALSE(section->launchAtLoginToggle()->isChecked());
}

TEST_F(SettingsBehaviorSectionTest, RefusedLaunchAtLoginFallsBackAndReportsWhy) {
    platform.loginItems.refusal = QStringLiteral("The autostart folder is read-only.");
    SettingsBehaviorSection* section = behavior();
    QTest::mouseClick(section->launchAtLoginToggle(), Qt::LeftButton);
    EXPECT_FALSE(section->launchAtLoginToggle()->isChecked());
    EXPECT_FALSE(controller->launchAtLoginEnabled());
    EXPECT_EQ(view->statusText(), QStringLiteral("Unable to update login item: The autostart folder is read-only."));
}

TEST_F(SettingsBehaviorSectionTest, LoginItemNeedingApprovalLeavesTheToggleOff) {
    platform.loginItems.statusAfterRegister = LoginItemStatus::RequiresApproval;
    SettingsBehaviorSection* section = behavior();
    QTest::mouseClick(section->launchAtLoginToggle(), Qt::LeftButton);
    EXPECT_FALSE(section->launchAtLoginToggle()->isChecked());
}

TEST_F(SettingsBehaviorSectionTest, TogglesFollowChangesMadeElsewhere) {
    SettingsBehaviorSection* section = behavior();
    controller->setDockIconVisible(true);
    controller->setAdjustWindowSizeToTargetScreen(true);
    EXPECT_TRUE(section->dockIconToggle()->isChecked());
    EXPECT_TRUE(section->adjustWindowSizeToggle()->isChecked());
}

TEST_F(SettingsBehaviorSectionTest, KeyboardSpaceTogglesASwitch) {
    SettingsBehaviorSection* section = behavior();
    section->adjustWindowSizeToggle()->setFocus();
    QTest::keyClick(section->adjustWindowSizeToggle(), Qt::Key_Space);
    EXPECT_TRUE(controller->adjustWindowSizeToTargetScreen());
}

}  // namespace
