// SPDX-License-Identifier: MIT
// Built against the configuration of a build without update checks (see CMakeLists.txt): the sections
// list is compiled as such a build compiles it.
#include <QPushButton>

#include "BuildConfig.h"
#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/ui/settings/SettingsSectionPage.h"
#include "app/ui/settings/SettingsSidebar.h"
#include "app/ui/settings/SettingsUpdatesSection.h"
#include "tests/ui/settings/SettingsFixture.h"

namespace {

using SettingsWithoutUpdateCheck = SettingsFixture;

TEST_F(SettingsWithoutUpdateCheck, TheBuildHasNoFeed) {
    EXPECT_FALSE(BuildConfig::kUpdateCheck);
    EXPECT_STREQ(BuildConfig::kAppcastUrl, "");
}

TEST_F(SettingsWithoutUpdateCheck, SectionsListsLackTheUpdatesSection) {
    EXPECT_EQ(SettingsSections::allCases(),
              (QList<SettingsSection>{SettingsSection::Permissions, SettingsSection::Behavior,
                                      SettingsSection::Shortcuts, SettingsSection::About, SettingsSection::Debug}));
    EXPECT_EQ(SettingsSections::sidebarSections(),
              (QList<SettingsSection>{SettingsSection::Permissions, SettingsSection::Behavior,
                                      SettingsSection::Shortcuts, SettingsSection::About}));
}

TEST_F(SettingsWithoutUpdateCheck, SettingsWindowHasNoUpdatesPageOrButton) {
    // As the program builds its controller when it has no updater.
    KeyboardShortcuts::ActionShortcuts shortcuts;
    controller = std::make_unique<AppController>(shortcuts, nullptr);
    EXPECT_EQ(controller->updater(), nullptr);
    view = std::make_unique<SettingsView>(*controller);
    view->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(view.get()));

    EXPECT_EQ(view->findChild<SettingsUpdatesSection*>(), nullptr);
    EXPECT_EQ(view->findChild<QPushButton*>(QStringLiteral("checkForUpdates")), nullptr);
    EXPECT_EQ(view->sidebar()->buttonFor(SettingsSection::Updates), nullptr);
    EXPECT_FALSE(view->sidebar()->listedSections().contains(SettingsSection::Updates));
    // Every other section still has its page.
    for (const SettingsSection section : SettingsSections::allCases()) {
        ASSERT_NE(view->pageFor(section), nullptr);
        EXPECT_EQ(view->pageFor(section)->section(), section);
    }
    view->setSelectedSection(SettingsSection::About);
    EXPECT_EQ(view->currentPage()->section(), SettingsSection::About);
    view.reset();
    controller.reset();
}

}  // namespace
