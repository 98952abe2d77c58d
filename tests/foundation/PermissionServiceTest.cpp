#include <gtest/gtest.h>

#include "app/PermissionService.h"
#include "platform/fake/FakePlatform.h"
#include "platform/x11/X11Permissions.h"

namespace {

class PermissionServiceTest : public ::testing::Test {
protected:
    FakePlatform platform;
};

TEST_F(PermissionServiceTest, ScreenRecordingGrantedButAccessibilityMissingReadsTrueFalse) {
    platform.permissions.screenCaptureGranted = true;
    platform.permissions.trusted = false;
    EXPECT_EQ(PermissionService::currentState(), (PermissionState{true, false}));
}

TEST_F(PermissionServiceTest, AccessibilityAlreadyGrantedShowsNoPromptAndKeepsTheState) {
    platform.permissions.trusted = true;
    PermissionService::requestAccessibility();
    EXPECT_EQ(platform.permissions.trustPrompts, 0);
    EXPECT_EQ(PermissionService::currentState(), (PermissionState{true, true}));
}

TEST_F(PermissionServiceTest, MissingAccessibilityPromptsOnce) {
    platform.permissions.trusted = false;
    PermissionService::requestAccessibility();
    EXPECT_EQ(platform.permissions.trustPrompts, 1);
}

TEST_F(PermissionServiceTest, SettingsPagesAreOpenedByTheirAddresses) {
    PermissionService::openAccessibilitySettings();
    PermissionService::openScreenRecordingSettings();
    EXPECT_EQ(
        platform.permissions.openedSettingsPages,
        (QStringList{QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility"),
                     QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture")}));
}

TEST_F(PermissionServiceTest, ScreenRecordingRequestIsPassedOn) {
    PermissionService::requestScreenRecording();
    EXPECT_EQ(platform.permissions.screenCaptureRequests, 1);
}

TEST(X11PermissionAnswersTest, X11SessionWithWindowManagerGrantsBoth) {
    const auto answers = X11Permissions::answersFor(true, true);
    EXPECT_TRUE(answers.screenCapture);
    EXPECT_TRUE(answers.accessibility);
}

TEST(X11PermissionAnswersTest, X11SessionWithoutWindowManagerCannotMoveWindows) {
    const auto answers = X11Permissions::answersFor(true, false);
    EXPECT_TRUE(answers.screenCapture);
    EXPECT_FALSE(answers.accessibility);
}

TEST(X11PermissionAnswersTest, WaylandSessionWithoutX11AccessGrantsNeither) {
    const auto answers = X11Permissions::answersFor(false, false);
    EXPECT_FALSE(answers.screenCapture);
    EXPECT_FALSE(answers.accessibility);
}

}  // namespace
