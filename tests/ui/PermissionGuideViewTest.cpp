// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <QEvent>
#include <QPushButton>

#include "app/permissions/PermissionService.h"
#include "app/ui/guide/PermissionGuideView.h"
#include "tests/ui/UiFixture.h"

namespace {

class PermissionGuide : public UiTest {
protected:
    // The guide in its window, as the launch sequence opens it.
    QWidget& openGuide() {
        windows().showPermissionGuideWindow();
        QWidget* window = windows().permissionWindow();
        EXPECT_NE(window, nullptr);
        EXPECT_TRUE(waitUntil([&] { return window->isVisible(); }));
        return *window;
    }
    static QString grantState(QWidget& window, const char* step) {
        QWidget* row = window.findChild<QWidget*>(QLatin1String(step));
        return row ? row->findChild<QLabel*>(QStringLiteral("grantState"))->text() : QString();
    }
    static QPushButton* button(QWidget& window, const char* step, const char* name) {
        QWidget* row = window.findChild<QWidget*>(QLatin1String(step));
        return row ? row->findChild<QPushButton*>(QLatin1String(name)) : nullptr;
    }
    // Lets the rows rebuilt after a state change replace the old ones.
    static void settle() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }
};

TEST_F(PermissionGuide, ShowsItsTextsAndBothStepsInOrder) {
    platform.sessionCheck.windowControlAvailable = false;
    makeController();
    QWidget& window = openGuide();
    for (const char* text : {"Enable Required Permissions",
                             "Lattica needs screen capture for previews and window control to move windows between "
                             "displays.",
                             "Screen Capture", "Window Control",
                             "When your session changes, check again: Lattica picks it up without a restart."}) {
        EXPECT_NE(labelWithText(window, QString::fromLatin1(text)), nullptr) << text;
    }
    QList<QLabel*> numbers = window.findChildren<QLabel*>(QStringLiteral("stepNumber"));
    ASSERT_EQ(numbers.size(), 2);
    EXPECT_EQ(numbers[0]->text(), QStringLiteral("1"));
    EXPECT_EQ(numbers[1]->text(), QStringLiteral("2"));
    EXPECT_NE(buttonWithText(window, QStringLiteral("Re-check Permissions")), nullptr);
    EXPECT_NE(buttonWithText(window, QStringLiteral("Continue")), nullptr);
    EXPECT_EQ(button(window, "screenRecordingStep", "requestButton")->text(), QStringLiteral("Check Screen Capture"));
    EXPECT_EQ(button(window, "accessibilityStep", "requestButton")->text(), QStringLiteral("Check Window Control"));
    EXPECT_EQ(button(window, "screenRecordingStep", "openSettingsButton")->text(), QStringLiteral("Open Help"));
    EXPECT_EQ(button(window, "accessibilityStep", "openSettingsButton")->text(), QStringLiteral("Open Help"));
}

TEST_F(PermissionGuide, EachStepReadsGrantedOrMissing) {
    platform.sessionCheck.windowControlAvailable = false;
    makeController();
    QWidget& window = openGuide();
    EXPECT_EQ(grantState(window, "screenRecordingStep"), QStringLiteral("Granted"));
    EXPECT_EQ(grantState(window, "accessibilityStep"), QStringLiteral("Missing"));
}

TEST_F(PermissionGuide, ContinueWithOneGrantLeavesTheWindowOpen) {
    platform.sessionCheck.windowControlAvailable = false;
    makeController();
    QWidget& window = openGuide();
    platform.sessionCheck.screenCaptureAvailable = false;  // the re-read sees this change
    buttonWithText(window, QStringLiteral("Continue"))->click();
    settle();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(grantState(window, "screenRecordingStep"), QStringLiteral("Missing"));
    EXPECT_TRUE(controller().displays().isEmpty());
    EXPECT_FALSE(controller().isLoadingPreviews());
}

TEST_F(PermissionGuide, ContinueWithBothGrantsClosesTheWindowAndRefreshesTheDisplays) {
    platform.sessionCheck.windowControlAvailable = false;
    makeController();
    QWidget& window = openGuide();
    platform.sessionCheck.windowControlAvailable = true;
    buttonWithText(window, QStringLiteral("Continue"))->click();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(controller().displays().size(), 2);
    EXPECT_TRUE(controller().isLoadingPreviews());
    EXPECT_TRUE(waitUntil([&] { return !controller().isLoadingPreviews(); }));
    // Kept for later: the same window object still exists.
    EXPECT_EQ(windows().permissionWindow(), &window);
}

TEST_F(PermissionGuide, RecheckRereadsTheState) {
    platform.sessionCheck.windowControlAvailable = false;
    makeController();
    QWidget& window = openGuide();
    platform.sessionCheck.windowControlAvailable = true;
    buttonWithText(window, QStringLiteral("Re-check Permissions"))->click();
    settle();
    EXPECT_TRUE(controller().permissionState().accessibilityGranted);
    EXPECT_EQ(grantState(window, "accessibilityStep"), QStringLiteral("Granted"));
    EXPECT_TRUE(window.isVisible());
}

TEST_F(PermissionGuide, RequestScreenRecordingAsksReportsAndRereads) {
    platform.sessionCheck.screenCaptureAvailable = false;
    makeController();
    QWidget& window = openGuide();
    const int checks = platform.sessionCheck.screenCaptureChecks;
    button(window, "screenRecordingStep", "requestButton")->click();
    settle();
    EXPECT_GT(platform.sessionCheck.screenCaptureChecks, checks);
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Checked screen capture again."));
    QLabel* status = window.findChild<QLabel*>(QStringLiteral("statusMessage"));
    EXPECT_TRUE(status->isVisible());
    EXPECT_EQ(status->text(), controller().statusMessage());
}

TEST_F(PermissionGuide, RequestAccessibilityGoesThroughTheController) {
    platform.sessionCheck.windowControlAvailable = false;
    makeController();
    QWidget& window = openGuide();
    const int checks = platform.sessionCheck.windowControlChecks;
    button(window, "accessibilityStep", "requestButton")->click();
    settle();
    EXPECT_GT(platform.sessionCheck.windowControlChecks, checks);
    EXPECT_EQ(controller().statusMessage(),
              QStringLiteral("Window control is still not available. Click Open Help to see why."));
}

TEST_F(PermissionGuide, HelpButtonsOpenEachStepsHelpPage) {
    platform.sessionCheck.windowControlAvailable = false;
    makeController();
    QWidget& window = openGuide();
    button(window, "screenRecordingStep", "openSettingsButton")->click();
    button(window, "accessibilityStep", "openSettingsButton")->click();
    EXPECT_EQ(platform.desktopLauncher.openedURLs,
              (QList<QUrl>{FakeSessionCheck::helpPageUrl(Capability::ScreenCapture),
                           FakeSessionCheck::helpPageUrl(Capability::WindowControl)}));
}

TEST_F(PermissionGuide, EachStepShowsWhyItIsMissingOrLimited) {
    platform.sessionCheck.screenCaptureAvailable = false;
    platform.sessionCheck.windowControlLimit = QStringLiteral("Only X11 applications are seen and moved.");
    makeController();
    QWidget& window = openGuide();
    EXPECT_EQ(grantState(window, "screenRecordingStep"), QStringLiteral("Missing"));
    EXPECT_EQ(grantState(window, "accessibilityStep"), QStringLiteral("Limited"));
    auto explanation = [&](const char* step) {
        return window.findChild<QWidget*>(QLatin1String(step))->findChild<QLabel*>(QStringLiteral("explanation"));
    };
    EXPECT_EQ(explanation("screenRecordingStep")->text(), platform.sessionCheck.screenCaptureReason);
    EXPECT_TRUE(explanation("screenRecordingStep")->isVisible());
    EXPECT_EQ(explanation("accessibilityStep")->text(), QStringLiteral("Only X11 applications are seen and moved."));
    EXPECT_TRUE(explanation("accessibilityStep")->isVisible());
}

TEST_F(PermissionGuide, AvailableStepsShowNoExplanation) {
    platform.sessionCheck.windowControlAvailable = false;
    makeController();
    QWidget& window = openGuide();
    QLabel* explanation = window.findChild<QWidget*>(QStringLiteral("screenRecordingStep"))
                              ->findChild<QLabel*>(QStringLiteral("explanation"));
    EXPECT_FALSE(explanation->isVisible());
}

}  // namespace
