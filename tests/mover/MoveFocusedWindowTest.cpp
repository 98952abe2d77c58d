#include "tests/mover/MoverFixture.h"

namespace {

const QRectF kCentred(480, 270, 960, 540);

class MoveFocusedWindow : public MoverTest {
protected:
    // Window 11 of application 100 has the system's keyboard focus.
    void focus(const QRectF& frame) {
        platform.runningApplications.addApplication(100, QStringLiteral("Editor"));
        platform.windowControl.addWindow(100, {.id = 11, .frame = frame});
        platform.windowControl.setFocusedWindow(Reading<WindowId>{Result::Ok, 11});
    }
    WindowMoveResult moveTo(const DisplaySnapshot& target, bool adjust = false) {
        m_report = WindowMover::moveFocusedWindow(target, {left, right}, adjust);
        return m_report.counts;
    }
    const WindowMoveReport& report() const { return m_report; }

private:
    WindowMoveReport m_report;
};

TEST_F(MoveFocusedWindow, NoFocusAndNoFrontmostApplicationGiveZeroZero) {
    EXPECT_EQ(moveTo(right), (WindowMoveResult{0, 0}));
    EXPECT_FALSE(WindowMover::focusedWindowContext().has_value());
    EXPECT_TRUE(
        trace.contains(QStringLiteral("moveFocusedWindow: systemWide attribute AXFocusedWindow error=noValue")));
    EXPECT_TRUE(
        trace.contains(QStringLiteral("moveFocusedWindow: systemWide attribute AXFocusedApplication error=noValue")));
}

TEST_F(MoveFocusedWindow, KeepSizeMovesFocusedWindowToSameRelativeCentre) {
    focus(kCentred);
    EXPECT_EQ(moveTo(right), (WindowMoveResult{1, 1}));
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(2720, 450, 960, 540));
    EXPECT_EQ(platform.windowControl.requests().size(), 1);
}

TEST_F(MoveFocusedWindow, MovesNoDiagnosticLines) {
    focus(kCentred);
    EXPECT_TRUE(diagnosticLines([&] { moveTo(right); }).isEmpty());
}

TEST_F(MoveFocusedWindow, OnePointFocusedWindowIsPassedOverForFocusedApplication) {
    focus(kCentred);
    platform.windowControl.addWindow(300, {.id = 5, .frame = QRectF(100, 100, 1, 1)});
    platform.windowControl.setFocusedWindow(Reading<WindowId>{Result::Ok, 5});
    platform.windowControl.setFocusedApplication(Reading<pid_t>{Result::Ok, 100});
    const std::optional<FocusedWindowContext> context = WindowMover::focusedWindowContext();
    ASSERT_TRUE(context.has_value());
    EXPECT_EQ(context->window, 11);
    EXPECT_EQ(moveTo(right), (WindowMoveResult{1, 1}));
    EXPECT_TRUE(platform.windowControl.requests(5, FakeWindowControl::Change::Move).isEmpty());
}

TEST_F(MoveFocusedWindow, FrontmostApplicationIsTheLastResort) {
    platform.runningApplications.addApplication(100, QStringLiteral("Editor"));
    platform.windowControl.addWindow(100, {.id = 11, .frame = kCentred});
    platform.runningApplications.frontmost = platform.runningApplications.applications[0];
    EXPECT_EQ(moveTo(right), (WindowMoveResult{1, 1}));
    EXPECT_TRUE(trace.contains(
        QStringLiteral("moveFocusedWindow: frontmostApplication[100] attribute AXFocusedWindow error=noValue")));
}

TEST_F(MoveFocusedWindow, FrontmostApplicationWithoutValidPidIsIgnored) {
    platform.windowControl.addWindow(0, {.id = 11, .frame = kCentred});
    RunningApplication application;
    application.pid = 0;
    application.policy = ApplicationPolicy::Regular;
    platform.runningApplications.frontmost = application;
    EXPECT_EQ(moveTo(right), (WindowMoveResult{0, 0}));
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
}

TEST_F(MoveFocusedWindow, WindowAlreadyOnTargetDisplayIsReportedNotMoved) {
    focus(kCentred);
    EXPECT_EQ(moveTo(left), (WindowMoveResult{0, 1}));
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
}

TEST_F(MoveFocusedWindow, WindowOutsideEveryDisplayIsMovedFromFirstDisplay) {
    focus(QRectF(-3000, -3000, 400, 300));
    EXPECT_EQ(moveTo(right), (WindowMoveResult{1, 1}));
    // Measured on the first display its centre lies beyond the top-left corner: clamped into the target.
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(1920, 0, 400, 300));
}

TEST_F(MoveFocusedWindow, WindowOutsideEveryDisplayTargetingFirstDisplayIsNotMoved) {
    focus(QRectF(-3000, -3000, 400, 300));
    EXPECT_EQ(moveTo(left), (WindowMoveResult{0, 1}));
}

TEST_F(MoveFocusedWindow, NoDisplaysGiveZeroZero) {
    focus(kCentred);
    EXPECT_EQ(WindowMover::moveFocusedWindow(right, {}, false).counts, (WindowMoveResult{0, 0}));
    EXPECT_TRUE(trace.contains(QStringLiteral(
        "moveFocusedWindow: unable to determine source display for frame=(480.0, 270.0, 960.0, 540.0)")));
}

TEST_F(MoveFocusedWindow, AdjustSizeResizesAndPlacesByNewSize) {
    focus(kCentred);
    EXPECT_EQ(moveTo(right, true), (WindowMoveResult{1, 1}));
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(2560, 360, 1280, 720));
    EXPECT_EQ(platform.windowControl.requests().size(), 3);
}

TEST_F(MoveFocusedWindow, AdjustSizeWithRefusedSizeIsPlacedByActualSizeAndCountsMoved) {
    focus(kCentred);
    platform.windowControl.setChangeResult(11, FakeWindowControl::Change::Resize, Result::CannotComplete);
    EXPECT_EQ(moveTo(right, true), (WindowMoveResult{1, 1}));
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(2720, 450, 960, 540));
}

TEST_F(MoveFocusedWindow, AdjustSizeIgnoresFirstPositionErrorWhenFinalWriteSucceeds) {
    focus(kCentred);
    platform.windowControl.failNextChange(11, FakeWindowControl::Change::Move, Result::Failure);
    EXPECT_EQ(moveTo(right, true), (WindowMoveResult{1, 1}));
}

TEST_F(MoveFocusedWindow, FailedDecidingWriteGivesZeroOne) {
    focus(kCentred);
    platform.windowControl.setChangeResult(11, FakeWindowControl::Change::Move, Result::CannotComplete);
    EXPECT_EQ(moveTo(right), (WindowMoveResult{0, 1}));
    EXPECT_EQ(moveTo(right, true), (WindowMoveResult{0, 1}));
}

TEST_F(MoveFocusedWindow, PositionThatCannotBeMadeIntoAValueIsNotWritten) {
    focus(kCentred);
    DisplaySnapshot broken = right;
    broken.bounds = QRectF(1920, qQNaN(), 2560, 1440);
    EXPECT_EQ(WindowMover::moveFocusedWindow(broken, {left, broken}, false).counts, (WindowMoveResult{0, 1}));
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
}

}  // namespace
