// SPDX-License-Identifier: MIT
#include <QLabel>
#include <QPushButton>

#include "app/permissions/PermissionService.h"
#include "tests/ui/settings/SettingsFixture.h"

namespace {

using SettingsPermissionsSectionTest = SettingsFixture;

TEST_F(SettingsPermissionsSectionTest, BadgesShowGrantedAndMissing) {
    platform.sessionCheck.screenCaptureAvailable = false;
    platform.sessionCheck.windowControlAvailable = true;
    makeView();
    EXPECT_EQ(find<QLabel>(QStringLiteral("badge.screenRecording"))->text(), QStringLiteral("Missing"));
    EXPECT_EQ(find<QLabel>(QStringLiteral("badge.accessibility"))->text(), QStringLiteral("Granted"));
}

TEST_F(SettingsPermissionsSectionTest, BadgesFollowThePermissionState) {
    platform.sessionCheck.screenCaptureAvailable = false;
    makeView();
    platform.sessionCheck.screenCaptureAvailable = true;
    platform.sessionCheck.windowControlAvailable = false;
    controller->refreshPermissions();
    EXPECT_EQ(find<QLabel>(QStringLiteral("badge.screenRecording"))->text(), QStringLiteral("Granted"));
    EXPECT_EQ(find<QLabel>(QStringLiteral("badge.accessibility"))->text(), QStringLiteral("Missing"));
}

TEST_F(SettingsPermissionsSectionTest, ButtonsAreLabelled) {
    makeView();
    EXPECT_EQ(find<QPushButton>(QStringLiteral("request.screenRecording"))->text(), QStringLiteral("Request Access"));
    EXPECT_EQ(find<QPushButton>(QStringLiteral("request.accessibility"))->text(), QStringLiteral("Request Access"));
    EXPECT_EQ(find<QPushButton>(QStringLiteral("settings.screenRecording"))->text(), QStringLiteral("Open Help"));
    EXPECT_EQ(find<QPushButton>(QStringLiteral("settings.accessibility"))->text(), QStringLiteral("Open Help"));
}

TEST_F(SettingsPermissionsSectionTest, ScreenRecordingRequestAsksReportsAndRereads) {
    platform.sessionCheck.screenCaptureAvailable = false;
    makeView();
    // The system grants it while the request is made; the badge shows it after the re-read.
    platform.sessionCheck.screenCaptureAvailable = true;
    const int checks = platform.sessionCheck.screenCaptureChecks;
    QTest::mouseClick(find<QPushButton>(QStringLiteral("request.screenRecording")), Qt::LeftButton);
    EXPECT_GT(platform.sessionCheck.screenCaptureChecks, checks);
    EXPECT_EQ(controller->statusMessage(), QStringLiteral("Checked screen capture again."));
    EXPECT_EQ(view->statusText(), controller->statusMessage());
    EXPECT_EQ(find<QLabel>(QStringLiteral("badge.screenRecording"))->text(), QStringLiteral("Granted"));
}

TEST_F(SettingsPermissionsSectionTest, ScreenRecordingRequestReportsEvenWhenRefused) {
    platform.sessionCheck.screenCaptureAvailable = false;
    makeView();
    const int checks = platform.sessionCheck.screenCaptureChecks;
    QTest::mouseClick(find<QPushButton>(QStringLiteral("request.screenRecording")), Qt::LeftButton);
    EXPECT_GT(platform.sessionCheck.screenCaptureChecks, checks);
    EXPECT_EQ(controller->statusMessage(), QStringLiteral("Checked screen capture again."));
    EXPECT_EQ(find<QLabel>(QStringLiteral("badge.screenRecording"))->text(), QStringLiteral("Missing"));
}

TEST_F(SettingsPermissionsSectionTest, AccessibilityRequestChecksAgainThroughTheController) {
    platform.sessionCheck.windowControlAvailable = false;
    makeView();
    // A window manager was started since the settings opened: the request's check sees it.
    platform.sessionCheck.windowControlAvailable = true;
    QTest::mouseClick(find<QPushButton>(QStringLiteral("request.accessibility")), Qt::LeftButton);
    EXPECT_TRUE(controller->permissionState().accessibilityGranted);
    EXPECT_EQ(find<QLabel>(QStringLiteral("badge.accessibility"))->text(), QStringLiteral("Granted"));
}

TEST_F(SettingsPermissionsSectionTest, HelpButtonsOpenEachHelpPage) {
    makeView();
    QTest::mouseClick(find<QPushButton>(QStringLiteral("settings.screenRecording")), Qt::LeftButton);
    QTest::mouseClick(find<QPushButton>(QStringLiteral("settings.accessibility")), Qt::LeftButton);
    EXPECT_EQ(platform.desktopLauncher.openedURLs,
              (QList<QUrl>{FakeSessionCheck::helpPageUrl(Capability::ScreenCapture),
                           FakeSessionCheck::helpPageUrl(Capability::WindowControl)}));
}

TEST_F(SettingsPermissionsSectionTest, RowsShowWhyACapabilityIsMissingOrLimited) {
    platform.sessionCheck.windowControlAvailable = false;
    makeView();
    QLabel* windowControl = find<QLabel>(QStringLiteral("explanation.accessibility"));
    EXPECT_EQ(windowControl->text(), platform.sessionCheck.windowControlReason);
    EXPECT_FALSE(windowControl->isHidden());
    EXPECT_TRUE(find<QLabel>(QStringLiteral("explanation.screenRecording"))->isHidden());

    platform.sessionCheck.windowControlAvailable = true;
    platform.sessionCheck.windowControlLimit = QStringLiteral("Only X11 applications are seen and moved.");
    controller->refreshPermissions();
    EXPECT_EQ(find<QLabel>(QStringLiteral("badge.accessibility"))->text(), QStringLiteral("Limited"));
    EXPECT_EQ(windowControl->text(), QStringLiteral("Only X11 applications are seen and moved."));
    EXPECT_FALSE(windowControl->isHidden());
}

}  // namespace
