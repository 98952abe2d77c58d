// SPDX-License-Identifier: MIT
#include "tests/controller/ControllerFixture.h"

namespace {

class MoveCommands : public ControllerTest {
protected:
    void SetUp() override {
        ControllerTest::SetUp();
        controller().refreshForMenuOpen();
        ASSERT_TRUE(waitUntil([&] { return !controller().isLoadingPreviews(); }));
        finishBackgroundWork();
        left = controller().displays()[0];
        right = controller().displays()[1];
    }
    // A regular application with windows on the left display, known to both the window list and
    // the window control.
    void addApplication(pid_t pid, const QString& name, const QList<qint64>& numbers) {
        platform.runningApplications.addApplication(pid, name);
        std::optional<QList<WindowEntry>> list = platform.windowList.scriptedList();
        for (qint64 number : numbers) {
            const QRectF frame(100 + number * 10, 100, 800, 600);
            list->append(WindowEntry{.id = number, .pid = pid, .ownerName = name, .frame = frame});
            platform.windowControl.addWindow(pid, {.id = number, .frame = frame});
        }
        platform.windowList.setWindowList(list);
    }
    void focus(qint64 number) { platform.windowControl.setFocusedWindow(Reading<WindowId>{Result::Ok, number}); }
    void revokeAccessibility() {
        platform.sessionCheck.windowControlAvailable = false;
        controller().refreshPermissions();
    }
    bool anyWrites() const { return !platform.windowControl.requests().isEmpty(); }

    DisplaySnapshot left;
    DisplaySnapshot right;
};

const QString kRequired = QStringLiteral("Window control is required to move windows.");

TEST_F(MoveCommands, EveryMoveWithoutAccessibilityAsksForThePermission) {
    addApplication(100, QStringLiteral("Editor"), {1});
    revokeAccessibility();
    const int reads = platform.windowControl.readCount();

    controller().moveWindows(left, right);
    EXPECT_EQ(controller().statusMessage(), kRequired);
    controller().setStatusMessage({});
    controller().moveWindows(DisplayAppGroup{100, QStringLiteral("Editor"), 1}, left, right);
    EXPECT_EQ(controller().statusMessage(), kRequired);
    controller().setStatusMessage({});
    controller().moveFocusedWindow(right.persistentID);
    EXPECT_EQ(controller().statusMessage(), kRequired);

    EXPECT_EQ(platform.windowControl.readCount(), reads);
    EXPECT_FALSE(anyWrites());
}

TEST_F(MoveCommands, FocusedMoveWithoutAccessibilityReportsThatEvenForAnAbsentDisplay) {
    revokeAccessibility();
    controller().moveFocusedWindow(QStringLiteral("v9-m9-s9"));
    EXPECT_EQ(controller().statusMessage(), kRequired);
}

TEST_F(MoveCommands, WholeDisplayMoveReportsBothCounts) {
    addApplication(100, QStringLiteral("Editor"), {1, 2, 3, 4});
    platform.windowControl.setChangeResult(3, FakeWindowControl::Change::Move, Result::CannotComplete);
    controller().moveWindows(left, right);
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Moved 3 of 4 windows."));
}

TEST_F(MoveCommands, WholeDisplayMessageIsNotPluralised) {
    controller().moveWindows(left, right);
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Moved 0 of 0 windows."));
    addApplication(100, QStringLiteral("Editor"), {1});
    controller().moveWindows(left, right);
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Moved 1 of 1 windows."));
}

TEST_F(MoveCommands, WholeDisplayMoveTakesEveryApplicationAndRevealsNothing) {
    addApplication(100, QStringLiteral("Editor"), {1});
    addApplication(200, QStringLiteral("Mail"), {2});
    controller().moveWindows(left, right);
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Moved 2 of 2 windows."));
    for (const FakeWindowControl::Request& write : platform.windowControl.requests()) {
        EXPECT_NE(write.change, FakeWindowControl::Change::Unhide);
        EXPECT_NE(write.change, FakeWindowControl::Change::Unminimise);
    }
}

TEST_F(MoveCommands, ApplicationMovePassesOnlyItsProcessAndRevealsIt) {
    addApplication(100, QStringLiteral("Editor"), {1});
    addApplication(200, QStringLiteral("Mail"), {2, 3});
    controller().moveWindows(DisplayAppGroup{200, QStringLiteral("Mail"), 2}, left, right);
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Moved 2 of 2 Mail windows."));
    EXPECT_TRUE(platform.windowControl.requests(1, FakeWindowControl::Change::Move).isEmpty());
    EXPECT_EQ(platform.windowControl.requests(200, FakeWindowControl::Change::Unhide).size(), 1);
    EXPECT_EQ(platform.windowControl.requests(2, FakeWindowControl::Change::Unminimise).size(), 1);
    EXPECT_EQ(platform.windowControl.requests(3, FakeWindowControl::Change::Unminimise).size(), 1);
    EXPECT_TRUE(platform.windowControl.requests(100, FakeWindowControl::Change::Unhide).isEmpty());
}

TEST_F(MoveCommands, MovesFollowTheResizePreference) {
    addApplication(100, QStringLiteral("Editor"), {1});
    controller().moveWindows(left, right);
    EXPECT_TRUE(platform.windowControl.requests(1, FakeWindowControl::Change::Resize).isEmpty());
    controller().setAdjustWindowSizeToTargetScreen(true);
    controller().moveWindows(right, left);
    EXPECT_EQ(platform.windowControl.requests(1, FakeWindowControl::Change::Resize).size(), 1);
}

TEST_F(MoveCommands, AfterWholeDisplayMoveCardsAreRebuiltFromPlaceholdersThenRefreshed) {
    addApplication(100, QStringLiteral("Editor"), {1});
    const int captures = platform.monitors.captureCount();
    holdNextCapture();
    controller().moveWindows(left, right);
    ASSERT_EQ(controller().displays().size(), 2);
    EXPECT_FALSE(controller().displays()[0].visibleWindowCount.has_value());
    EXPECT_TRUE(controller().isLoadingPreviews());
    ASSERT_TRUE(heldCaptureStarted());
    release();
    ASSERT_TRUE(waitUntil([&] { return !controller().isLoadingPreviews(); }));
    EXPECT_TRUE(controller().displays()[0].visibleWindowCount.has_value());
    EXPECT_EQ(platform.monitors.captureCount(), captures + 2);
}

TEST_F(MoveCommands, ApplicationMoveAlsoRefreshesThePanel) {
    addApplication(100, QStringLiteral("Editor"), {1});
    const int queries = platform.windowList.queryCount();
    controller().moveWindows(DisplayAppGroup{100, QStringLiteral("Editor"), 1}, left, right);
    EXPECT_TRUE(controller().isLoadingPreviews());
    finishBackgroundWork();
    // One window-list read for the move itself, one for the new capture.
    EXPECT_EQ(platform.windowList.queryCount(), queries + 2);
}

TEST_F(MoveCommands, ShortcutForUnpluggedDisplayReportsItAndNeverCallsTheMover) {
    addApplication(100, QStringLiteral("Editor"), {1});
    focus(1);
    const QString unplugged = right.persistentID;
    platform.monitors.setMonitors({platform.monitors.monitors()[0]});
    const int reads = platform.windowControl.readCount();
    controller().moveFocusedWindow(unplugged);
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Shortcut target display is currently not connected."));
    EXPECT_EQ(platform.windowControl.readCount(), reads);
    EXPECT_FALSE(anyWrites());
}

TEST_F(MoveCommands, ShortcutWithNoDisplaysAtAllReportsNotConnected) {
    platform.monitors.setMonitors({});
    controller().moveFocusedWindow(right.persistentID);
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Shortcut target display is currently not connected."));
}

TEST_F(MoveCommands, FocusedMoveToDisplayReportsSuccessWithoutRefreshingThePanel) {
    addApplication(100, QStringLiteral("Editor"), {1});
    focus(1);
    const int queries = platform.windowList.queryCount();
    signalLog().clear();
    controller().moveFocusedWindow(right.persistentID);
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Moved focused window to Right."));
    EXPECT_GE(platform.windowControl.currentFrame(1).x(), 1920);
    EXPECT_EQ(signalLog(), QStringList{QStringLiteral("statusMessage")});
    finishBackgroundWork();
    EXPECT_EQ(platform.windowList.queryCount(), queries);
}

TEST_F(MoveCommands, FocusedMoveUsesTheNameTheDisplayHasNow) {
    addApplication(100, QStringLiteral("Editor"), {1});
    focus(1);
    QList<Monitor> displays = platform.monitors.monitors();
    displays[1].name = QStringLiteral("Renamed");
    platform.monitors.setMonitors(displays);
    controller().moveFocusedWindow(right.persistentID);
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Moved focused window to Renamed."));
}

TEST_F(MoveCommands, NoFocusedWindowIsReported) {
    controller().moveFocusedWindow(right.persistentID);
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("No focused window was found to move."));
}

TEST_F(MoveCommands, FocusedWindowThatCouldNotBeMovedIsReportedWithTheDisplayName) {
    addApplication(100, QStringLiteral("Editor"), {1});
    focus(1);
    platform.windowControl.setChangeResult(1, FakeWindowControl::Change::Move, Result::CannotComplete);
    controller().moveFocusedWindow(right.persistentID);
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Focused window could not be moved to Right."));
}

TEST_F(MoveCommands, FocusedWindowAlreadyOnTargetIsReportedAsNotMoved) {
    addApplication(100, QStringLiteral("Editor"), {1});
    focus(1);
    controller().moveFocusedWindow(left.persistentID);
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Focused window could not be moved to Left."));
    EXPECT_FALSE(anyWrites());
}

TEST_F(MoveCommands, AccessibilityRequestWhenAvailableSaysSo) {
    const int activations = platform.foregroundActivation.activations;
    controller().requestAccessibilityPermission();
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Window control is already available."));
    // No prompt exists, so nothing is brought to the front for one.
    EXPECT_EQ(platform.foregroundActivation.activations, activations);
}

TEST_F(MoveCommands, AccessibilityRequestThatFindsNothingPointsToHelp) {
    revokeAccessibility();
    const int activations = platform.foregroundActivation.activations;
    const int checks = platform.sessionCheck.windowControlChecks;
    signalLog().clear();
    controller().requestAccessibilityPermission();
    EXPECT_EQ(controller().statusMessage(),
              QStringLiteral("Window control is still not available. Click Open Help to see why."));
    // The request looks again (and the state is re-read after it).
    EXPECT_EQ(platform.sessionCheck.windowControlChecks, checks + 2);
    EXPECT_EQ(platform.foregroundActivation.activations, activations);
    // The permission state is republished at the end.
    EXPECT_EQ(signalLog().last(), QStringLiteral("isLoadingPreviews=0"));
    EXPECT_TRUE(signalLog().contains(QStringLiteral("permissionState")));
}

TEST_F(MoveCommands, AccessibilityRequestAfterTheDesktopChangedSaysGranted) {
    revokeAccessibility();
    // A window manager was started since the last check.
    platform.sessionCheck.windowControlAvailable = true;
    controller().requestAccessibilityPermission();
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Window control is already available."));
    EXPECT_TRUE(controller().permissionState().accessibilityGranted);
}

TEST_F(MoveCommands, ScreenRecordingRequestAsksAndRefreshesPermissions) {
    platform.sessionCheck.screenCaptureAvailable = false;
    const int checks = platform.sessionCheck.screenCaptureChecks;
    controller().requestScreenRecordingPermission();
    EXPECT_EQ(platform.sessionCheck.screenCaptureChecks, checks + 2);
    EXPECT_EQ(controller().statusMessage(), QStringLiteral("Checked screen capture again."));
    EXPECT_FALSE(controller().permissionState().screenRecordingGranted);
}

}  // namespace
