// SPDX-License-Identifier: MIT
#include <QLabel>
#include <QPushButton>

#include "app/ui/settings/SettingsSectionPage.h"
#include "app/ui/settings/SettingsShortcutsSection.h"
#include "app/ui/settings/SettingsSidebar.h"
#include "app/ui/settings/SettingsSidebarButton.h"
#include "app/ui/settings/ShortcutRecorderRow.h"
#include "tests/ui/settings/SettingsFixture.h"

namespace {

using SettingsViewTest = SettingsFixture;

TEST_F(SettingsViewTest, StartsAtPermissions) {
    SettingsView& settings = makeView();
    EXPECT_EQ(settings.selectedSection(), SettingsSection::Permissions);
    ASSERT_NE(settings.currentPage(), nullptr);
    EXPECT_EQ(settings.currentPage()->section(), SettingsSection::Permissions);
    EXPECT_TRUE(settings.sidebar()->buttonFor(SettingsSection::Permissions)->isChecked());
}

TEST_F(SettingsViewTest, SidebarIs210WideAndFillsTheHeight) {
    SettingsView& settings = makeView();
    EXPECT_EQ(settings.sidebar()->width(), 210);
    EXPECT_EQ(settings.sidebar()->height(), settings.height());
    EXPECT_EQ(settings.sidebar()->geometry().left(), 0);
    EXPECT_EQ(settings.sidebar()->backgroundRole(), QPalette::Base);
}

TEST_F(SettingsViewTest, SidebarListsTheFixedSequenceWithoutDebug) {
    SettingsView& settings = makeView();
    QStringList titles;
    int previousTop = -1;
    for (const SettingsSection section : settings.sidebar()->listedSections()) {
        SettingsSidebarButton* button = settings.sidebar()->buttonFor(section);
        ASSERT_NE(button, nullptr);
        EXPECT_GT(button->mapTo(&settings, QPoint(0, 0)).y(), previousTop) << "buttons are stacked in order";
        previousTop = button->mapTo(&settings, QPoint(0, 0)).y();
        EXPECT_FALSE(button->icon().isNull());
        titles.append(button->text());
    }
    EXPECT_EQ(titles, (QStringList{QStringLiteral("Permissions"), QStringLiteral("Behavior"),
                                   QStringLiteral("Shortcuts"), QStringLiteral("Updates"), QStringLiteral("About")}));
    EXPECT_EQ(settings.sidebar()->buttonFor(SettingsSection::Debug), nullptr);
    EXPECT_EQ(settings.sidebar()->findChildren<SettingsSidebarButton*>().size(), 5);
}

TEST_F(SettingsViewTest, ClickingASidebarButtonSelectsItsSection) {
    SettingsView& settings = makeView();
    for (const SettingsSection section : settings.sidebar()->listedSections()) {
        SettingsSidebarButton* button = settings.sidebar()->buttonFor(section);
        QTest::mouseClick(button, Qt::LeftButton);
        EXPECT_EQ(settings.selectedSection(), section);
        EXPECT_EQ(settings.currentPage()->section(), section);
        EXPECT_TRUE(settings.currentPage()->isVisible());
        EXPECT_TRUE(button->isChecked());
        for (const SettingsSection other : settings.sidebar()->listedSections()) {
            if (other != section) {
                EXPECT_FALSE(settings.sidebar()->buttonFor(other)->isChecked());
            }
        }
    }
}

TEST_F(SettingsViewTest, HeaderShowsTitleAndDescription) {
    SettingsView& settings = makeView();
    QTest::mouseClick(settings.sidebar()->buttonFor(SettingsSection::Shortcuts), Qt::LeftButton);
    SettingsSectionPage* page = settings.currentPage();
    EXPECT_EQ(page->titleText(), QStringLiteral("Shortcuts"));
    EXPECT_EQ(page->descriptionText(), SettingsSections::description(SettingsSection::Shortcuts));
    EXPECT_TRUE(page->hasDescriptionLine());
    auto* symbol = page->findChild<QLabel*>(QStringLiteral("headerSymbol"));
    ASSERT_NE(symbol, nullptr);
    EXPECT_FALSE(symbol->pixmap().isNull());
}

TEST_F(SettingsViewTest, AboutHeaderHasNoDescriptionLine) {
    SettingsView& settings = makeView();
    QTest::mouseClick(settings.sidebar()->buttonFor(SettingsSection::About), Qt::LeftButton);
    EXPECT_EQ(settings.currentPage()->titleText(), QStringLiteral("About"));
    EXPECT_FALSE(settings.currentPage()->hasDescriptionLine());
}

TEST_F(SettingsViewTest, DebugSectionExistsWithItsHeaderButIsOnlyReachableInCode) {
    SettingsView& settings = makeView();
    settings.setSelectedSection(SettingsSection::Debug);
    EXPECT_EQ(settings.currentPage()->titleText(), QStringLiteral("Debug"));
    EXPECT_EQ(settings.currentPage()->descriptionText(), SettingsSections::description(SettingsSection::Debug));
    for (const SettingsSection section : settings.sidebar()->listedSections()) {
        EXPECT_FALSE(settings.sidebar()->buttonFor(section)->isChecked());
    }
}

TEST_F(SettingsViewTest, DebugRefreshRereadsThePermissions) {
    SettingsView& settings = makeView();
    settings.setSelectedSection(SettingsSection::Debug);
    platform.sessionCheck.screenCaptureAvailable = false;
    QTest::mouseClick(find<QPushButton>(QStringLiteral("debug.refreshPermissions")), Qt::LeftButton);
    EXPECT_FALSE(controller->permissionState().screenRecordingGranted);
    EXPECT_EQ(find<QLabel>(QStringLiteral("badge.screenRecording"))->text(), QStringLiteral("Missing"));
}

TEST_F(SettingsViewTest, SelectionIsKeptWhileTheWindowIsHiddenAndShownAgain) {
    SettingsView& settings = makeView();
    QTest::mouseClick(settings.sidebar()->buttonFor(SettingsSection::Updates), Qt::LeftButton);
    settings.hide();
    settings.show();
    EXPECT_EQ(settings.selectedSection(), SettingsSection::Updates);
}

TEST_F(SettingsViewTest, StatusMessageIsShownAndFollowsTheController) {
    SettingsView& settings = makeView();
    EXPECT_TRUE(settings.statusText().isEmpty());
    auto* label = find<QLabel>(QStringLiteral("statusMessage"));
    EXPECT_FALSE(label->isVisible());
    controller->setStatusMessage(QStringLiteral("Moved 3 of 4 windows."));
    EXPECT_EQ(settings.statusText(), QStringLiteral("Moved 3 of 4 windows."));
    EXPECT_TRUE(label->isVisible());
    controller->setStatusMessage(QString());
    EXPECT_FALSE(label->isVisible());
}

TEST_F(SettingsViewTest, AppearingRereadsPermissions) {
    SettingsView& settings = makeView(false);
    auto* badge = find<QLabel>(QStringLiteral("badge.accessibility"));
    EXPECT_EQ(badge->text(), QStringLiteral("Granted"));
    platform.sessionCheck.windowControlAvailable = false;
    EXPECT_EQ(badge->text(), QStringLiteral("Granted"));
    settings.show();
    EXPECT_FALSE(controller->permissionState().accessibilityGranted);
    EXPECT_EQ(badge->text(), QStringLiteral("Missing"));
}

TEST_F(SettingsViewTest, AppearingRebuildsTheShortcutRows) {
    SettingsView& settings = makeView(false);
    auto* shortcuts = find<SettingsShortcutsSection>(QString());
    ASSERT_NE(shortcuts, nullptr);
    EXPECT_EQ(shortcuts->connectedRows().size(), 2);
    // A display leaves without the configuration signal; showing the window must notice it.
    platform.monitors.setMonitors({mainDisplay()});
    settings.show();
    EXPECT_EQ(shortcuts->connectedRows().size(), 1);
    ASSERT_EQ(shortcuts->disconnectedRows().size(), 1);
    EXPECT_EQ(shortcuts->disconnectedRows().first()->item().id, studioID());
}

}  // namespace
