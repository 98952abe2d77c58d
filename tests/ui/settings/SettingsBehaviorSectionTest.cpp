// SPDX-License-Identifier: MIT
#include <QLabel>

#include "app/ui/settings/SettingsBehaviorSection.h"
#include "app/ui/settings/SettingsToggle.h"
#include "tests/ui/settings/SettingsFixture.h"

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
    platform.settings.setBool(QStringLiteral("dockIconVisible"), true);
    platform.settings.setBool(QStringLiteral("adjustWindowSizeToTargetScreen"), false);
    platform.autostart.currentStatus = AutostartStatus::Enabled;
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

TEST_F(SettingsBehaviorSectionTest, SaysWhichProgramLaunchAtLoginStarts) {
    platform.autostart.startedProgram = QStringLiteral("lattica");
    behavior();
    QLabel* program = find<QLabel>(QStringLiteral("launchAtLoginProgram"));
    EXPECT_EQ(program->text(), QStringLiteral("Launch at login starts lattica."));
    EXPECT_FALSE(program->isHidden());
}

TEST_F(SettingsBehaviorSectionTest, ProgramLineFollowsTheEntryAfterATurnOn) {
    SettingsBehaviorSection* section = behavior();
    QLabel* program = find<QLabel>(QStringLiteral("launchAtLoginProgram"));
    EXPECT_TRUE(program->isHidden());  // the service does not tell
    platform.autostart.startedProgram = QStringLiteral("/home/someone/build/app/lattica");
    QTest::mouseClick(section->launchAtLoginToggle(), Qt::LeftButton);
    EXPECT_EQ(program->text(), QStringLiteral("Launch at login starts /home/someone/build/app/lattica."));
    EXPECT_FALSE(program->isHidden());
}

TEST_F(SettingsBehaviorSectionTest, TurningShowDockIconOnShowsTheDockIconAtOnce) {
    platform.taskbarPresence.shown = false;
    SettingsBehaviorSection* section = behavior();
    QTest::mouseClick(section->dockIconToggle(), Qt::LeftButton);
    EXPECT_TRUE(section->dockIconToggle()->isChecked());
    EXPECT_TRUE(controller->dockIconVisible());
    EXPECT_TRUE(platform.taskbarPresence.shown);
    EXPECT_TRUE(platform.settings.boolValue(QStringLiteral("dockIconVisible")));

    QTest::mouseClick(section->dockIconToggle(), Qt::LeftButton);
    EXPECT_FALSE(platform.taskbarPresence.shown);
    EXPECT_FALSE(controller->dockIconVisible());
}

TEST_F(SettingsBehaviorSectionTest, ShowDockIconSurvivesARestart) {
    platform.settings.setBool(QStringLiteral("autoCheckForUpdatesOnLaunch"), false);
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
    controller->start();
    EXPECT_TRUE(platform.taskbarPresence.shown);
}

TEST_F(SettingsBehaviorSectionTest, AdjustWindowSizeAssignsThePropertyAndStoresTheBool) {
    SettingsBehaviorSection* section = behavior();
    QTest::mouseClick(section->adjustWindowSizeToggle(), Qt::LeftButton);
    EXPECT_TRUE(controller->adjustWindowSizeToTargetScreen());
    EXPECT_EQ(platform.settings.value(QStringLiteral("adjustWindowSizeToTargetScreen")), SettingValue(true));
    QTest::mouseClick(section->adjustWindowSizeToggle(), Qt::LeftButton);
    EXPECT_FALSE(controller->adjustWindowSizeToTargetScreen());
    EXPECT_EQ(platform.settings.value(QStringLiteral("adjustWindowSizeToTargetScreen")), SettingValue(false));
}

TEST_F(SettingsBehaviorSectionTest, LaunchAtLoginRegistersTheLoginItem) {
    SettingsBehaviorSection* section = behavior();
    QTest::mouseClick(section->launchAtLoginToggle(), Qt::LeftButton);
    EXPECT_EQ(platform.autostart.currentStatus, AutostartStatus::Enabled);
    EXPECT_TRUE(controller->launchAtLoginEnabled());
    EXPECT_TRUE(section->launchAtLoginToggle()->isChecked());
    QTest::mouseClick(section->launchAtLoginToggle(), Qt::LeftButton);
    EXPECT_EQ(platform.autostart.currentStatus, AutostartStatus::Disabled);
    EXPECT_FALSE(section->launchAtLoginToggle()->isChecked());
}

TEST_F(SettingsBehaviorSectionTest, RefusedLaunchAtLoginFallsBackAndReportsWhy) {
    platform.autostart.refusal = QStringLiteral("The autostart folder is read-only.");
    SettingsBehaviorSection* section = behavior();
    QTest::mouseClick(section->launchAtLoginToggle(), Qt::LeftButton);
    EXPECT_FALSE(section->launchAtLoginToggle()->isChecked());
    EXPECT_FALSE(controller->launchAtLoginEnabled());
    EXPECT_EQ(view->statusText(), QStringLiteral("Unable to update login item: The autostart folder is read-only."));
}

TEST_F(SettingsBehaviorSectionTest, LoginItemNeedingApprovalLeavesTheToggleOff) {
    platform.autostart.statusAfterEnable = AutostartStatus::RequiresApproval;
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
