// SPDX-License-Identifier: MIT
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
    EXPECT_TRUE(report().windows.isEmpty());
    EXPECT_FALSE(WindowMover::focusedWindowContext().has_value());
}

// The only tests of the trace's wording for the focused window; the others read the report.
TEST_F(MoveFocusedWindow, TraceTellsWhyNoWindowHasTheFocus) {
    moveTo(right);
    EXPECT_EQ(trace.lines(),
              (QStringList{
                  QStringLiteral("moveFocusedWindow: systemWide attribute AXFocusedWindow error=noValue"),
                  QStringLiteral("moveFocusedWindow: systemWide attribute AXFocusedApplication error=noValue"),
              }));
}

TEST_F(MoveFocusedWindow, TraceTellsAFocusedWindowWithoutADisplay) {
    focus(kCentred);
    WindowMover::moveFocusedWindow(right, {}, false);
    EXPECT_EQ(trace.lines(), (QStringList{QStringLiteral("moveFocusedWindow: unable to determine source display for "
                                                         "frame=(480.0, 270.0, 960.0, 540.0)")}));
}

TEST_F(MoveFocusedWindow, KeepSizeMovesFocusedWindowToSameRelativeCentre) {
    focus(kCentred);
    EXPECT_EQ(moveTo(right), (WindowMoveResult{1, 1}));
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(2720, 450, 960, 540));
    EXPECT_EQ(platform.windowControl.requests().size(), 1);
}

TEST_F(MoveFocusedWindow, ReportRecordsTheFocusedWindowAndItsWrite) {
    focus(kCentred);
    moveTo(right);
    ASSERT_EQ(report().windows.size(), 1);
    const WindowMoveRecord& record = report().windows[0];
    EXPECT_EQ(record.window, 11);
    EXPECT_EQ(record.outcome, WindowMoveOutcome::Moved);
    EXPECT_EQ(record.frameSource, FrameSource::WindowControl);
    EXPECT_EQ(record.frameBefore, kCentred);
    EXPECT_EQ(record.targetOrigin, QPointF(2720, 450));
    EXPECT_EQ(record.targetSize, QSizeF(960, 540));
    EXPECT_EQ(record.writes, (WindowMoveWrites{Result::Ok, std::nullopt, std::nullopt}));
    EXPECT_FALSE(record.frameAfter.has_value());  // not read back
    EXPECT_TRUE(report().skippedApplications.isEmpty());
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
    ASSERT_EQ(report().windows.size(), 1);
    EXPECT_EQ(report().windows[0].window, 11);
    EXPECT_EQ(report().windows[0].outcome, WindowMoveOutcome::Moved);
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
    ASSERT_EQ(report().windows.size(), 1);
    EXPECT_EQ(report().windows[0].outcome, WindowMoveOutcome::AlreadyOnTargetDisplay);
    EXPECT_EQ(report().windows[0].frameBefore, kCentred);
    EXPECT_EQ(report().windows[0].writes, WindowMoveWrites{});
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
    ASSERT_EQ(report().windows.size(), 1);
    EXPECT_EQ(report().windows[0].outcome, WindowMoveOutcome::AlreadyOnTargetDisplay);
}

TEST_F(MoveFocusedWindow, NoDisplaysGiveZeroZero) {
    focus(kCentred);
    const WindowMoveReport report = WindowMover::moveFocusedWindow(right, {}, false);
    EXPECT_EQ(report.counts, (WindowMoveResult{0, 0}));
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
    ASSERT_EQ(report.windows.size(), 1);
    EXPECT_EQ(report.windows[0].window, 11);
    EXPECT_EQ(report.windows[0].outcome, WindowMoveOutcome::NoSourceDisplay);
    EXPECT_EQ(report.windows[0].frameBefore, kCentred);
}

TEST_F(MoveFocusedWindow, AdjustSizeResizesAndPlacesByNewSize) {
    focus(kCentred);
    EXPECT_EQ(moveTo(right, true), (WindowMoveResult{1, 1}));
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(2560, 360, 1280, 720));
    EXPECT_EQ(platform.windowControl.requests().size(), 3);
    ASSERT_EQ(report().windows.size(), 1);
    EXPECT_EQ(report().windows[0].writes, (WindowMoveWrites{Result::Ok, Result::Ok, Result::Ok}));
    EXPECT_EQ(report().windows[0].targetSize, QSizeF(1280, 720));
    EXPECT_EQ(report().windows[0].targetOrigin, QPointF(2560, 360));
}

TEST_F(MoveFocusedWindow, AdjustSizeAsksForWholePixelsAndTheFinalWriteGoesWhereTheFirstDid) {
    // 1000 / 1920 * 2560 = 1333.3 and 701 / 1080 * 1440 = 934.7.
    focus(QRectF(100, 100, 1000, 701));
    EXPECT_EQ(moveTo(right, true), (WindowMoveResult{1, 1}));
    const QList<FakeWindowControl::Request> moves =
        platform.windowControl.requests(11, FakeWindowControl::Change::Move);
    const QList<FakeWindowControl::Request> resizes =
        platform.windowControl.requests(11, FakeWindowControl::Change::Resize);
    ASSERT_EQ(moves.size(), 2);
    ASSERT_EQ(resizes.size(), 1);
    EXPECT_EQ(resizes[0].size, QSizeF(1333, 935));
    EXPECT_EQ(moves[1].point, moves[0].point);
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(moves[0].point, QSizeF(1333, 935)));
    EXPECT_EQ(report().windows[0].targetSize, QSizeF(1333, 935));
    EXPECT_EQ(report().windows[0].writes, (WindowMoveWrites{Result::Ok, Result::Ok, Result::Ok}));
}

TEST_F(MoveFocusedWindow, AdjustSizeWithRefusedSizeIsPlacedByActualSizeAndCountsMoved) {
    focus(kCentred);
    platform.windowControl.setChangeResult(11, FakeWindowControl::Change::Resize, Result::CannotComplete);
    EXPECT_EQ(moveTo(right, true), (WindowMoveResult{1, 1}));
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(2720, 450, 960, 540));
    ASSERT_EQ(report().windows.size(), 1);
    EXPECT_EQ(report().windows[0].writes, (WindowMoveWrites{Result::Ok, Result::CannotComplete, Result::Ok}));
    EXPECT_EQ(report().windows[0].targetOrigin, QPointF(2720, 450));
}

TEST_F(MoveFocusedWindow, AdjustSizeIgnoresFirstPositionErrorWhenFinalWriteSucceeds) {
    focus(kCentred);
    platform.windowControl.failNextChange(11, FakeWindowControl::Change::Move, Result::Failure);
    EXPECT_EQ(moveTo(right, true), (WindowMoveResult{1, 1}));
    ASSERT_EQ(report().windows.size(), 1);
    EXPECT_EQ(report().windows[0].outcome, WindowMoveOutcome::Moved);
    EXPECT_EQ(report().windows[0].writes, (WindowMoveWrites{Result::Failure, Result::Ok, Result::Ok}));
}

TEST_F(MoveFocusedWindow, FailedDecidingWriteGivesZeroOne) {
    focus(kCentred);
    platform.windowControl.setChangeResult(11, FakeWindowControl::Change::Move, Result::CannotComplete);
    EXPECT_EQ(moveTo(right), (WindowMoveResult{0, 1}));
    ASSERT_EQ(report().windows.size(), 1);
    EXPECT_EQ(report().windows[0].outcome, WindowMoveOutcome::NotMoved);
    EXPECT_EQ(report().windows[0].writes, (WindowMoveWrites{Result::CannotComplete, std::nullopt, std::nullopt}));
    EXPECT_EQ(moveTo(right, true), (WindowMoveResult{0, 1}));
    ASSERT_EQ(report().windows.size(), 1);
    EXPECT_EQ(report().windows[0].outcome, WindowMoveOutcome::NotMoved);
    EXPECT_EQ(report().windows[0].writes,
              (WindowMoveWrites{Result::CannotComplete, Result::Ok, Result::CannotComplete}));
}

TEST_F(MoveFocusedWindow, PositionThatCannotBeMadeIntoAValueIsNotWritten) {
    focus(kCentred);
    DisplaySnapshot broken = right;
    broken.bounds = QRectF(1920, qQNaN(), 2560, 1440);
    const WindowMoveReport report = WindowMover::moveFocusedWindow(broken, {left, broken}, false);
    EXPECT_EQ(report.counts, (WindowMoveResult{0, 1}));
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
    ASSERT_EQ(report.windows.size(), 1);
    EXPECT_EQ(report.windows[0].outcome, WindowMoveOutcome::NotMoved);
    EXPECT_EQ(report.windows[0].writes.position, Result::Failure);
}

}  // namespace
