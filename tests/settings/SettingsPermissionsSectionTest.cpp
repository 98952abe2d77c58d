#include <QLabel>
#include <QPushButton>

#include "app/PermissionService.h"
#include "tests/settings/SettingsFixture.h"

namespace {

using SettingsPermissionsSectionTest = SettingsFixture;

TEST_F(SettingsPermissionsSectionTest, BadgesShowGrantedAndMissing) {
    platform.permissions.screenCaptureGranted = false;
    platform.permissions.trusted = true;
    makeView();
    EXPECT_EQ(find<QLabel>(QStringLiteral("badge.screenRecording"))->text(), QStringLiteral("Missing"));
    EXPECT_EQ(find<QLabel>(QStringLiteral("badge.accessibility"))->text(), QStringLiteral("Granted"));
}

TEST_F(SettingsPermissionsSectionTest, BadgesFollowThePermissionState) {
    platform.permissions.screenCaptureGranted = false;
    makeView();
    platform.permissions.screenCaptureGranted = true;
    platform.permissions.trusted = false;
    controller->refreshPermissions();
    EXPECT_EQ(find<QLabel>(QStringLiteral("badge.screenRecording"))->text(), QStringLiteral("Granted"));
    EXPECT_EQ(find<QLabel>(QStringLiteral("badge.accessibility"))->text(), QStringLiteral("Missing"));
}

TEST_F(SettingsPermissionsSectionTest, ButtonsAreLabelled) {
    makeView();
    EXPECT_EQ(find<QPushButton>(QStringLiteral("request.screenRecording"))->text(), QStringLiteral("Request Access"));
    EXPECT_EQ(find<QPushButton>(QStringLiteral("request.accessibility"))->text(), QStringLiteral("Request Access"));
    EXPECT_EQ(find<QPushButton>(QStringLiteral("settings.screenRecording"))->text(),
              QStringLiteral("Open System Settings"));
    EXPECT_EQ(find<QPushButton>(QStringLiteral("settings.accessibility"))->text(),
              QStringLiteral("Open System Settings"));
}

TEST_F(SettingsPermissionsSectionTest, ScreenRecordingRequestAsksReportsAndRereads) {
    platform.permissions.screenCaptureGranted = false;
    makeView();
    // The system grants it while the request is made; the badge shows it after the re-read.
    platform.permissions.screenCaptureGranted = true;
    QTest::mouseClick(find<QPushButton>(QStringLiteral("request.screenRecording")), Qt::LeftButton);
    EXPECT_EQ(platform.permissions.screenCaptureRequests, 1);
    EXPECT_EQ(controller->statusMessage(),
              QStringLiteral("Requested Screen Recording permission. macOS may require app restart."));
    EXPECT_EQ(view->statusText(), controller->statusMessage());
    EXPECT_EQ(find<QLabel>(QStringLiteral("badge.screenRecording"))->text(), QStringLiteral("Granted"));
}

TEST_F(SettingsPermissionsSectionTest, ScreenRecordingRequestReportsEvenWhenRefused) {
    platform.permissions.screenCaptureGranted = false;
    makeView();
    QTest::mouseClick(find<QPushButton>(QStringLiteral("request.screenRecording")), Qt::LeftButton);
    EXPECT_EQ(platform.permissions.screenCaptureRequests, 1);
    EXPECT_EQ(controller->statusMessage(),
              QStringLiteral("Requested Screen Recording permission. macOS may require app restart."));
    EXPECT_EQ(find<QLabel>(QStringLiteral("badge.screenRecording"))->text(), QStringLiteral("Missing"));
}

TEST_F(SettingsPermissionsSectionTest, AccessibilityRequestPromptsThroughTheController) {
    platform.permissions.trusted = false;
    platform.permissions.promptGrantsTrust = true;
    makeView();
    QTest::mouseClick(find<QPushButton>(QStringLiteral("request.accessibility")), Qt::LeftButton);
    EXPECT_EQ(platform.permissions.trustPrompts, 1);
    EXPECT_TRUE(controller->permissionState().accessibilityGranted);
    EXPECT_EQ(find<QLabel>(QStringLiteral("badge.accessibility"))->text(), QStringLiteral("Granted"));
}

TEST_F(SettingsPermissionsSectionTest, OpenSystemSettingsOpensEachPage) {
    makeView();
    QTest::mouseClick(find<QPushButton>(QStringLiteral("settings.screenRecording")), Qt::LeftButton);
    QTest::mouseClick(find<QPushButton>(QStringLiteral("settings.accessibility")), Qt::LeftButton);
    EXPECT_EQ(platform.permissions.openedSettingsPages,
              (QStringList{QString::fromLatin1(PermissionService::kScreenRecordingSettingsURL),
                           QString::fromLatin1(PermissionService::kAccessibilitySettingsURL)}));
}

}  // namespace
