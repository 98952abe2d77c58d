// SPDX-License-Identifier: MIT
#include <cmath>

#include "tests/mover/MoverFixture.h"

namespace {

class MoveAllWindows : public MoverTest {
protected:
    // Moves from m_source to m_destination and returns the counts; report() holds the rest.
    WindowMoveResult moveAll(bool adjust = false, const std::optional<QSet<pid_t>>& pids = std::nullopt,
                             bool reveal = false) {
        m_diagnostics = diagnosticLines(
            [&] { m_report = WindowMover::moveWindows(m_source, m_destination, adjust, pids, reveal); });
        return m_report.counts;
    }
    const QStringList& diagnostics() const { return m_diagnostics; }
    const WindowMoveReport& report() const { return m_report; }

    DisplaySnapshot m_source = left;
    DisplaySnapshot m_destination = right;

private:
    QStringList m_diagnostics;
    WindowMoveReport m_report;
};

const QRectF kCentred(480, 270, 960, 540);  // centred on the left display, half its width and height

TEST_F(MoveAllWindows, KeepSizeMovesWindowToSameRelativeCentre) {
    addWindow(100, 11, kCentred);
    EXPECT_EQ(moveAll(), (WindowMoveResult{1, 1}));
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(2720, 450, 960, 540));
    EXPECT_TRUE(platform.windowControl.requests(11, FakeWindowControl::Change::Resize).isEmpty());
}

TEST_F(MoveAllWindows, ReportRecordsAMovedWindowWithItsFramesAndTheOneWrite) {
    addWindow(100, 11, kCentred);
    moveAll();
    ASSERT_EQ(report().windows.size(), 1);
    const WindowMoveRecord& record = report().windows[0];
    EXPECT_EQ(record.pid, 100);
    EXPECT_EQ(record.window, 11);
    EXPECT_EQ(record.outcome, WindowMoveOutcome::Moved);
    EXPECT_EQ(record.frameSource, FrameSource::WindowControl);
    EXPECT_EQ(record.frameBefore, kCentred);
    EXPECT_EQ(record.targetOrigin, QPointF(2720, 450));
    EXPECT_EQ(record.targetSize, QSizeF(960, 540));
    EXPECT_EQ(record.frameAfter, QRectF(2720, 450, 960, 540));
    EXPECT_EQ(record.writes, (WindowMoveWrites{Result::Ok, std::nullopt, std::nullopt}));
    EXPECT_TRUE(report().skippedApplications.isEmpty());
}

TEST_F(MoveAllWindows, AdjustSizeKeepsShareOfDisplayWithThreeWrites) {
    addWindow(100, 11, kCentred);
    EXPECT_EQ(moveAll(true), (WindowMoveResult{1, 1}));
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(2560, 360, 1280, 720));
    const QList<FakeWindowControl::Request> writes = platform.windowControl.requests();
    ASSERT_EQ(writes.size(), 3);
    EXPECT_EQ(writes[0].change, FakeWindowControl::Change::Move);
    EXPECT_EQ(writes[1].change, FakeWindowControl::Change::Resize);
    EXPECT_EQ(writes[1].size, QSizeF(1280, 720));
    EXPECT_EQ(writes[2].change, FakeWindowControl::Change::Move);
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->outcome, WindowMoveOutcome::Moved);
    EXPECT_EQ(record->writes, (WindowMoveWrites{Result::Ok, Result::Ok, Result::Ok}));
    EXPECT_EQ(record->targetSize, QSizeF(1280, 720));
    EXPECT_EQ(record->targetOrigin, QPointF(2560, 360));
    EXPECT_EQ(record->frameAfter, QRectF(2560, 360, 1280, 720));
}

TEST_F(MoveAllWindows, AdjustSizeAsksForWholePixelsAndPlacesEachWindowTwiceAtTheSameOrigin) {
    // Shares of the left display that give fractional sizes on the right one (1000 / 1920 * 2560 =
    // 1333.3, 701 / 1920 * 2560 = 934.7).
    addWindow(100, 11, QRectF(100, 100, 1000, 600));
    addWindow(101, 12, QRectF(700, 500, 701, 333));
    addWindow(102, 13, QRectF(1, 3, 517, 461));
    EXPECT_EQ(moveAll(true), (WindowMoveResult{3, 3}));
    for (WindowId window : {11, 12, 13}) {
        SCOPED_TRACE(window);
        const QList<FakeWindowControl::Request> moves =
            platform.windowControl.requests(window, FakeWindowControl::Change::Move);
        const QList<FakeWindowControl::Request> resizes =
            platform.windowControl.requests(window, FakeWindowControl::Change::Resize);
        // Still three writes: position, size, final position.
        ASSERT_EQ(moves.size(), 2);
        ASSERT_EQ(resizes.size(), 1);
        const QSizeF asked = resizes[0].size;
        EXPECT_EQ(asked, QSizeF(std::round(asked.width()), std::round(asked.height())));
        // The window took the whole-pixel size, so the final origin computed from it is the first one.
        EXPECT_EQ(moves[1].point, moves[0].point);
        const WindowMoveRecord* record = report().window(window);
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(record->outcome, WindowMoveOutcome::Moved);
        EXPECT_EQ(record->writes, (WindowMoveWrites{Result::Ok, Result::Ok, Result::Ok}));
        EXPECT_EQ(record->targetSize, asked);
        EXPECT_EQ(record->targetOrigin, moves[0].point);
        EXPECT_EQ(record->frameAfter, QRectF(moves[0].point, asked));
        EXPECT_EQ(platform.windowControl.currentFrame(window), QRectF(moves[0].point, asked));
    }
    EXPECT_EQ(platform.windowControl.requests(11, FakeWindowControl::Change::Resize)[0].size, QSizeF(1333, 800));
    EXPECT_EQ(platform.windowControl.requests(12, FakeWindowControl::Change::Resize)[0].size, QSizeF(935, 444));
}

TEST_F(MoveAllWindows, RefusedSizeKeepsSizeAndIsCentredByActualSize) {
    addWindow(100, 11, kCentred);
    platform.windowControl.ignoreChanges(11, FakeWindowControl::Change::Resize);
    EXPECT_EQ(moveAll(true), (WindowMoveResult{1, 1}));
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(2720, 450, 960, 540));
    // The size write reported success, but the window kept its size and was placed by it.
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->outcome, WindowMoveOutcome::Moved);
    EXPECT_EQ(record->writes, (WindowMoveWrites{Result::Ok, Result::Ok, Result::Ok}));
    EXPECT_EQ(record->targetSize, QSizeF(1280, 720));
    EXPECT_EQ(record->targetOrigin, QPointF(2720, 450));
    EXPECT_EQ(record->frameAfter, QRectF(2720, 450, 960, 540));
}

TEST_F(MoveAllWindows, FailedSizeWriteIsRecordedAndTheWindowStillMoves) {
    addWindow(100, 11, kCentred);
    platform.windowControl.setChangeResult(11, FakeWindowControl::Change::Resize, Result::CannotComplete);
    EXPECT_EQ(moveAll(true), (WindowMoveResult{1, 1}));
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->outcome, WindowMoveOutcome::Moved);
    EXPECT_EQ(record->writes, (WindowMoveWrites{Result::Ok, Result::CannotComplete, Result::Ok}));
    EXPECT_EQ(record->frameAfter, QRectF(2720, 450, 960, 540));
}

TEST_F(MoveAllWindows, WindowListIsReadOncePerMove) {
    addWindow(100, 11, kCentred);
    const int queries = platform.windowList.queryCount();
    moveAll();
    EXPECT_EQ(platform.windowList.queryCount(), queries + 1);
    EXPECT_EQ(platform.windowList.lastDesktopWindows(), DesktopWindows::Exclude);
}

TEST_F(MoveAllWindows, WindowsOfEveryApplicationAreReadInOneBatchAndTheirFactsInAnother) {
    addWindow(100, 11, kCentred);
    addWindow(100, 12, QRectF(10, 10, 300, 200));
    addWindow(101, 21, QRectF(600, 300, 400, 300));
    addWindow(102, 31, QRectF(1000, 500, 500, 400));
    const int batches = platform.windowControl.batchCount();
    const int reads = platform.windowControl.readCount();
    EXPECT_EQ(moveAll(), (WindowMoveResult{4, 4}));
    // The lists of all three applications, the facts of all four windows, and the read-back after the
    // moves; no window or list is read on its own.
    EXPECT_EQ(platform.windowControl.batchCount(), batches + 3);
    EXPECT_EQ(platform.windowControl.readCount(), reads);
}

TEST_F(MoveAllWindows, UnavailableWindowListStillMovesWindowsOnTheSourceByFrame) {
    addWindow(100, 11, kCentred);
    platform.windowList.setWindowList(std::nullopt);
    EXPECT_EQ(moveAll(), (WindowMoveResult{1, 1}));
}

TEST_F(MoveAllWindows, WindowListedByBothListsIsProcessedOnce) {
    addWindow(100, 11, kCentred);  // listed by "AXWindows" and "AXAllWindows"
    EXPECT_EQ(moveAll(), (WindowMoveResult{1, 1}));
    EXPECT_EQ(platform.windowControl.requests(11, FakeWindowControl::Change::Move).size(), 1);
}

// Windows the window list does not place on the source display qualify by their frame alone.
TEST_F(MoveAllWindows, WindowOutsideTheSourceListOverlappingSourceByOnePointIsAttempted) {
    platform.runningApplications.addApplication(100, QStringLiteral("Editor"));
    platform.windowControl.addWindow(100, {.id = 11, .frame = QRectF(1919, 100, 800, 600)});
    EXPECT_EQ(moveAll(), (WindowMoveResult{1, 1}));
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->outcome, WindowMoveOutcome::Moved);
    EXPECT_EQ(record->frameSource, FrameSource::WindowControl);
    EXPECT_EQ(record->frameBefore, QRectF(1919, 100, 800, 600));
}

TEST_F(MoveAllWindows, WindowOutsideTheSourceListTouchingSourceEdgeIsNotCounted) {
    platform.runningApplications.addApplication(100, QStringLiteral("Editor"));
    platform.windowControl.addWindow(100, {.id = 11, .frame = QRectF(1920, 100, 800, 600)});
    EXPECT_EQ(moveAll(), (WindowMoveResult{0, 0}));
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->outcome, WindowMoveOutcome::NotOnSourceDisplay);
    EXPECT_EQ(record->frameBefore, QRectF(1920, 100, 800, 600));
    EXPECT_EQ(record->writes, WindowMoveWrites{});
}

TEST_F(MoveAllWindows, WindowInSourceWindowListIsAttemptedEvenWhenAccessibilityFrameIsElsewhere) {
    addWindow(100, 11, QRectF(100, 100, 800, 600));
    platform.windowControl.setFrame(11, QRectF(2500, 100, 800, 600));
    EXPECT_EQ(moveAll(), (WindowMoveResult{1, 1}));
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->outcome, WindowMoveOutcome::Moved);
    EXPECT_EQ(record->frameBefore, QRectF(2500, 100, 800, 600));
}

TEST_F(MoveAllWindows, WindowOnAnotherDisplayIsNeitherAttemptedNorMoved) {
    addWindow(100, 11, QRectF(2500, 100, 800, 600));
    EXPECT_EQ(moveAll(), (WindowMoveResult{0, 0}));
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->outcome, WindowMoveOutcome::NotOnSourceDisplay);
    EXPECT_FALSE(record->frameAfter.has_value());
}

TEST_F(MoveAllWindows, ReportKeepsEveryWindowOfAnApplicationInTheOrderLookedAt) {
    addWindow(100, 11, kCentred);
    addWindow(100, 12, QRectF(2500, 100, 800, 600));
    addWindow(100, 13, QRectF(100, 100, 400, 300));
    platform.windowControl.setChangeResult(13, FakeWindowControl::Change::Move, Result::Gone);
    EXPECT_EQ(moveAll(), (WindowMoveResult{1, 2}));
    ASSERT_EQ(report().windows.size(), 3);
    EXPECT_EQ(report().windows[0].window, 11);
    EXPECT_EQ(report().windows[0].outcome, WindowMoveOutcome::Moved);
    EXPECT_EQ(report().windows[1].window, 12);
    EXPECT_EQ(report().windows[1].outcome, WindowMoveOutcome::NotOnSourceDisplay);
    EXPECT_EQ(report().windows[2].window, 13);
    EXPECT_EQ(report().windows[2].outcome, WindowMoveOutcome::NotMoved);
    EXPECT_EQ(report().windows[2].writes.position, Result::Gone);
}

TEST_F(MoveAllWindows, WindowOnlyInFullListIsMovedThenUnminimised) {
    platform.runningApplications.addApplication(100, QStringLiteral("Editor"));
    platform.windowList.setWindows(
        {{.id = 12, .pid = 100, .ownerName = QStringLiteral("Editor"), .frame = kCentred, .onScreen = false}});
    platform.windowControl.addWindow(100, {.id = 12, .frame = kCentred, .inVisible = false});
    EXPECT_EQ(moveAll(false, QSet<pid_t>{100}, true), (WindowMoveResult{1, 1}));
    const QList<FakeWindowControl::Request> writes = platform.windowControl.requests();
    ASSERT_EQ(writes.size(), 3);
    EXPECT_EQ(writes[0].target, 12);
    EXPECT_EQ(writes[0].change, FakeWindowControl::Change::Move);
    EXPECT_EQ(writes[1].target, 100);
    EXPECT_EQ(writes[1].change, FakeWindowControl::Change::Unhide);
    EXPECT_EQ(writes[2].target, 12);
    EXPECT_EQ(writes[2].change, FakeWindowControl::Change::Unminimise);
}

TEST_F(MoveAllWindows, NothingIsRevealedWithoutTheRevealFlagOrWithoutAMovedWindow) {
    addWindow(100, 11, kCentred);
    moveAll(false, std::nullopt, false);
    EXPECT_TRUE(platform.windowControl.requests(100, FakeWindowControl::Change::Unhide).isEmpty());

    platform.windowControl.clearRequests();
    platform.windowControl.setChangeResult(11, FakeWindowControl::Change::Move, Result::Failure);
    platform.windowControl.setFrame(11, kCentred);
    EXPECT_EQ(moveAll(false, std::nullopt, true), (WindowMoveResult{0, 1}));
    EXPECT_TRUE(platform.windowControl.requests(100, FakeWindowControl::Change::Unhide).isEmpty());
    ASSERT_NE(report().window(11), nullptr);
    EXPECT_EQ(report().window(11)->outcome, WindowMoveOutcome::NotMoved);
}

TEST_F(MoveAllWindows, EmptyTargetSetMovesNothing) {
    addWindow(100, 11, kCentred);
    EXPECT_EQ(moveAll(false, QSet<pid_t>{}), (WindowMoveResult{0, 0}));
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
    EXPECT_TRUE(report().windows.isEmpty());
    EXPECT_EQ(report().skippedApplications, (QList<ApplicationSkip>{{100, ApplicationSkipReason::NotTargeted}}));
}

TEST_F(MoveAllWindows, TargetSetLimitsMoveToThoseApplications) {
    addWindow(100, 11, kCentred);
    addWindow(200, 21, QRectF(100, 100, 400, 300), QStringLiteral("Mail"));
    EXPECT_EQ(moveAll(false, QSet<pid_t>{200}), (WindowMoveResult{1, 1}));
    EXPECT_TRUE(platform.windowControl.requests(11, FakeWindowControl::Change::Move).isEmpty());
    EXPECT_EQ(platform.windowControl.requests(21, FakeWindowControl::Change::Move).size(), 1);
    EXPECT_EQ(report().skippedApplications, (QList<ApplicationSkip>{{100, ApplicationSkipReason::NotTargeted}}));
    EXPECT_EQ(report().window(11), nullptr);
    ASSERT_NE(report().window(21), nullptr);
    EXPECT_EQ(report().window(21)->pid, 200);
}

TEST_F(MoveAllWindows, OnlyRegularRunningApplicationsWithValidPidAreMoved) {
    addWindow(100, 11, kCentred);
    platform.runningApplications.applications[0].policy = ApplicationPolicy::Accessory;
    addWindow(200, 21, kCentred);
    platform.runningApplications.applications[1].terminated = true;
    addWindow(0, 31, kCentred);
    EXPECT_EQ(moveAll(), (WindowMoveResult{0, 0}));
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
    EXPECT_TRUE(report().windows.isEmpty());
    EXPECT_EQ(report().skippedApplications, (QList<ApplicationSkip>{{100, ApplicationSkipReason::NotRegular},
                                                                    {200, ApplicationSkipReason::Terminated},
                                                                    {0, ApplicationSkipReason::InvalidPid}}));
}

TEST_F(MoveAllWindows, ApplicationLeftAloneForSeveralReasonsIsReportedByTheFirstChecked) {
    addWindow(100, 11, kCentred);
    platform.runningApplications.applications[0].terminated = true;
    moveAll(false, QSet<pid_t>{200});
    EXPECT_EQ(report().skipReason(100), ApplicationSkipReason::Terminated);
    platform.runningApplications.applications[0].policy = ApplicationPolicy::Prohibited;
    moveAll(false, QSet<pid_t>{200});
    EXPECT_EQ(report().skipReason(100), ApplicationSkipReason::NotRegular);
}

TEST_F(MoveAllWindows, ApplicationsAreVisitedInRunningApplicationsOrder) {
    addWindow(200, 21, QRectF(100, 100, 400, 300), QStringLiteral("Mail"));
    addWindow(100, 11, kCentred);
    moveAll();
    const QList<FakeWindowControl::Request> writes = platform.windowControl.requests();
    ASSERT_EQ(writes.size(), 2);
    EXPECT_EQ(writes[0].target, 21);
    EXPECT_EQ(writes[1].target, 11);
}

TEST_F(MoveAllWindows, ApplicationWithoutAccessibleWindowsIsSkipped) {
    platform.runningApplications.addApplication(100, QStringLiteral("Editor"));
    platform.windowList.setWindows({{.id = 11, .pid = 100, .frame = kCentred}});
    EXPECT_EQ(moveAll(), (WindowMoveResult{0, 0}));
    EXPECT_TRUE(report().windows.isEmpty());
    // The window list knows the window, but the window control lists none.
    EXPECT_EQ(report().skippedApplications,
              (QList<ApplicationSkip>{{100, ApplicationSkipReason::NoWindows, Result::NoValue, Result::NoValue}}));
}

TEST_F(MoveAllWindows, WithoutAccessibilityTrustNothingIsMoved) {
    addWindow(100, 11, kCentred);
    platform.windowControl.setWindowsError(100, WindowScope::Visible, Result::NotPermitted);
    platform.windowControl.setWindowsError(100, WindowScope::IncludingMinimised, Result::NotPermitted);
    EXPECT_EQ(moveAll(), (WindowMoveResult{0, 0}));
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
    EXPECT_EQ(
        report().skippedApplications,
        (QList<ApplicationSkip>{{100, ApplicationSkipReason::NoWindows, Result::NotPermitted, Result::NotPermitted}}));
}

TEST_F(MoveAllWindows, FrameFromWindowListIsUsedMirroredWhenAccessibilityHasNone) {
    addWindow(100, 11, QRectF(100, 50, 400, 100));
    platform.windowControl.setFrameError(11, Result::CannotComplete);
    EXPECT_EQ(moveAll(), (WindowMoveResult{1, 1}));
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->frameSource, FrameSource::WindowList);
    EXPECT_EQ(record->frameBefore, QRectF(100, 930, 400, 100));
    EXPECT_EQ(record->outcome, WindowMoveOutcome::Moved);
}

TEST_F(MoveAllWindows, OnePointAccessibilityFrameFallsBackToWindowList) {
    addWindow(100, 11, QRectF(100, 50, 400, 100));
    platform.windowControl.setFrame(11, QRectF(100, 50, 1, 100));
    moveAll();
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->frameSource, FrameSource::WindowList);
    EXPECT_EQ(record->frameBefore, QRectF(100, 930, 400, 100));
}

TEST_F(MoveAllWindows, WindowWithoutAnyFrameIsSkippedAndNotCounted) {
    platform.runningApplications.addApplication(100, QStringLiteral("Editor"));
    platform.windowControl.addWindow(100, {.id = 11, .frame = kCentred});  // not in the window list
    platform.windowControl.setFrameError(11, Result::NoValue);
    EXPECT_EQ(moveAll(), (WindowMoveResult{0, 0}));
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->outcome, WindowMoveOutcome::SkippedWithoutFrame);
    EXPECT_FALSE(record->frameSource.has_value());
    EXPECT_FALSE(record->frameBefore.has_value());
}

TEST_F(MoveAllWindows, WindowWithoutFrameIsSkippedWhateverTheDisplays) {
    platform.runningApplications.addApplication(100, QStringLiteral("Editor"));
    platform.windowControl.addWindow(100, {.id = 11, .frame = kCentred});
    platform.windowControl.setFrameError(11, Result::Gone);
    m_source.bounds = QRectF(0, 0, 0, 0);
    moveAll();
    ASSERT_NE(report().window(11), nullptr);
    EXPECT_EQ(report().window(11)->outcome, WindowMoveOutcome::SkippedWithoutFrame);
}

TEST_F(MoveAllWindows, FailedPositionWriteCountsAsAttemptedNotMoved) {
    addWindow(100, 11, kCentred);
    platform.windowControl.setChangeResult(11, FakeWindowControl::Change::Move, Result::CannotComplete);
    EXPECT_EQ(moveAll(), (WindowMoveResult{0, 1}));
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->outcome, WindowMoveOutcome::NotMoved);
    EXPECT_EQ(record->writes, (WindowMoveWrites{Result::CannotComplete, std::nullopt, std::nullopt}));
    EXPECT_EQ(record->targetOrigin, QPointF(2720, 450));
    EXPECT_EQ(record->frameAfter, kCentred);  // read back where it was
}

TEST_F(MoveAllWindows, FrameAfterIsThePlannedFrameWhenItDoesNotReadBack) {
    addWindow(100, 11, kCentred);
    platform.windowControl.setFrameError(11, Result::Gone);  // the list still gives its frame
    EXPECT_EQ(moveAll(), (WindowMoveResult{1, 1}));
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->frameSource, FrameSource::WindowList);
    EXPECT_EQ(record->frameAfter, QRectF(2720, 450, 960, 540));
}

TEST_F(MoveAllWindows, EmptySourceBoundsMoveNothing) {
    addWindow(100, 11, kCentred);
    m_source.bounds = QRectF(0, 0, 0, 0);
    EXPECT_EQ(moveAll(), (WindowMoveResult{0, 0}));
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
    ASSERT_NE(report().window(11), nullptr);
    EXPECT_EQ(report().window(11)->outcome, WindowMoveOutcome::NotOnSourceDisplay);
}

TEST_F(MoveAllWindows, SourceWithoutPositiveSizeCountsWindowsButDoesNotMoveThem) {
    addWindow(100, 11, kCentred);
    m_source.bounds = QRectF(1920, 0, -1920, 1080);  // covers the left display, but its width is negative
    EXPECT_EQ(moveAll(), (WindowMoveResult{0, 1}));
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->outcome, WindowMoveOutcome::SkippedInvalidSourceBounds);
    EXPECT_EQ(record->frameBefore, kCentred);
    EXPECT_EQ(record->writes, WindowMoveWrites{});
    EXPECT_FALSE(record->targetOrigin.has_value());
}

// Two displays showing the same area: a window keeps its origin unless the clamp moves it.
class MoveBetweenMirroredDisplays : public MoveAllWindows {
protected:
    void SetUp() override { m_destination = display(2, QStringLiteral("Mirror"), 2, left.bounds); }
    void addStuckWindow(const QRectF& frame) {
        addWindow(100, 11, frame);
        platform.windowControl.setChangeResult(11, FakeWindowControl::Change::Move, Result::Failure);
    }
};

TEST_F(MoveBetweenMirroredDisplays, WindowWithinOneAndAHalfPointsOfTargetCountsAsMovedDespiteErrors) {
    addStuckWindow(QRectF(-1.5, 270, 960, 540));  // the clamp puts it at x = 0
    EXPECT_EQ(moveAll(true), (WindowMoveResult{1, 1}));
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->outcome, WindowMoveOutcome::Moved);
    EXPECT_EQ(record->writes, (WindowMoveWrites{Result::Failure, Result::Ok, Result::Failure}));
}

TEST_F(MoveBetweenMirroredDisplays, WindowFartherThanOneAndAHalfPointsFromTargetIsNotMoved) {
    addStuckWindow(QRectF(-1.6, 270, 960, 540));
    EXPECT_EQ(moveAll(true), (WindowMoveResult{0, 1}));
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->outcome, WindowMoveOutcome::NotMoved);
    EXPECT_EQ(record->writes, (WindowMoveWrites{Result::Failure, Result::Ok, Result::Failure}));
    EXPECT_EQ(record->targetOrigin, QPointF(0, 270));
    EXPECT_EQ(record->frameAfter, QRectF(-1.6, 270, 960, 540));
}

TEST_F(MoveAllWindows, AdjustSizeCountsMovedWhenOnlyFinalPositionWriteSucceeds) {
    addWindow(100, 11, kCentred);
    platform.windowControl.failNextChange(11, FakeWindowControl::Change::Move, Result::CannotComplete);
    EXPECT_EQ(moveAll(true), (WindowMoveResult{1, 1}));
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(2560, 360, 1280, 720));
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->outcome, WindowMoveOutcome::Moved);
    EXPECT_EQ(record->writes, (WindowMoveWrites{Result::CannotComplete, Result::Ok, Result::Ok}));
}

TEST_F(MoveAllWindows, AdjustSizeWithBothPositionWritesFailingFarFromTargetIsNotMoved) {
    addWindow(100, 11, kCentred);
    platform.windowControl.setChangeResult(11, FakeWindowControl::Change::Move, Result::CannotComplete);
    EXPECT_EQ(moveAll(true), (WindowMoveResult{0, 1}));
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->outcome, WindowMoveOutcome::NotMoved);
    EXPECT_EQ(record->writes, (WindowMoveWrites{Result::CannotComplete, Result::Ok, Result::CannotComplete}));
}

TEST_F(MoveAllWindows, DestinationThatGivesNoFiniteOriginFailsWithoutWriting) {
    addWindow(100, 11, kCentred);
    m_destination.bounds = QRectF(qQNaN(), 0, 2560, 1440);
    EXPECT_EQ(moveAll(), (WindowMoveResult{0, 1}));
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
    const WindowMoveRecord* record = report().window(11);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->outcome, WindowMoveOutcome::NotMoved);
    EXPECT_EQ(record->writes, (WindowMoveWrites{Result::Failure, std::nullopt, std::nullopt}));
}

// The lines users and support read. These are the only tests of their exact wording; every other test
// reads the outcome from the report.
class MoveDiagnosticLines : public MoveAllWindows {};

TEST_F(MoveDiagnosticLines, KeepSizeMoveWritesBeginStartAndResult) {
    addWindow(100, 11, kCentred);
    moveAll();
    EXPECT_EQ(diagnostics(),
              (QStringList{
                  QStringLiteral("[WindowMoveDiag] BEGIN source=Left#1 sourceAX=(0.0, 0.0, 1920.0, 1080.0) "
                                 "sourceCG=(0.0, 0.0, 1920.0, 1080.0) destination=Right#2 "
                                 "destAX=(1920.0, 0.0, 2560.0, 1440.0) destCG=(1920.0, 0.0, 2560.0, 1440.0) "
                                 "targetPIDs=all"),
                  QStringLiteral("[WindowMoveDiag] START app=Editor [pid:100], windowID=11, frameSource=AX, "
                                 "centerLike=true, adjustSize=false, frame=(480.0, 270.0, 960.0, 540.0), "
                                 "normalizedCenter=(0.5000,0.5000), normalizedRect=(0.2500,0.2500,0.5000,0.5000)"),
                  QStringLiteral("[WindowMoveDiag] RESULT app=Editor [pid:100], windowID=11, centerLike=true, "
                                 "keepSize=true, posErr=success, targetOrigin=(2720.0, 450.0), "
                                 "postFrame=(2720.0, 450.0, 960.0, 540.0), postNormalizedCenter=(0.5000,0.5000)"),
              }));
}

TEST_F(MoveDiagnosticLines, AdjustSizeMoveWritesBeginStartAndResult) {
    addWindow(100, 11, QRectF(240, 135, 480, 270));  // centred on a quarter of the left display
    platform.windowControl.failNextChange(11, FakeWindowControl::Change::Move, Result::CannotComplete);
    moveAll(true);
    EXPECT_EQ(diagnostics(),
              (QStringList{
                  QStringLiteral("[WindowMoveDiag] BEGIN source=Left#1 sourceAX=(0.0, 0.0, 1920.0, 1080.0) "
                                 "sourceCG=(0.0, 0.0, 1920.0, 1080.0) destination=Right#2 "
                                 "destAX=(1920.0, 0.0, 2560.0, 1440.0) destCG=(1920.0, 0.0, 2560.0, 1440.0) "
                                 "targetPIDs=all"),
                  QStringLiteral("[WindowMoveDiag] START app=Editor [pid:100], windowID=11, frameSource=AX, "
                                 "centerLike=false, adjustSize=true, frame=(240.0, 135.0, 480.0, 270.0), "
                                 "normalizedCenter=(0.2500,0.2500), normalizedRect=(0.1250,0.1250,0.2500,0.2500)"),
                  QStringLiteral("[WindowMoveDiag] RESULT app=Editor [pid:100], windowID=11, centerLike=false, "
                                 "initialPosErr=cannotComplete, sizeErr=success, finalPosErr=success, "
                                 "targetSize=(640.0, 360.0), actualSize=(640.0, 360.0), "
                                 "desiredOrigin=(2240.0, 180.0), finalOrigin=(2240.0, 180.0), "
                                 "postFrame=(2240.0, 180.0, 640.0, 360.0), postNormalizedCenter=(0.2500,0.2500)"),
              }));
}

TEST_F(MoveDiagnosticLines, BeginLineListsTheTargetApplications) {
    addWindow(100, 11, kCentred);
    moveAll(false, QSet<pid_t>{});
    ASSERT_EQ(diagnostics().size(), 1);
    EXPECT_TRUE(diagnostics()[0].endsWith(QStringLiteral(" destCG=(1920.0, 0.0, 2560.0, 1440.0) targetPIDs=")))
        << diagnostics()[0].toStdString();
    moveAll(false, QSet<pid_t>{100});
    ASSERT_EQ(diagnostics().size(), 3);
    EXPECT_TRUE(diagnostics()[0].endsWith(QStringLiteral(" targetPIDs=100"))) << diagnostics()[0].toStdString();
}

TEST_F(MoveDiagnosticLines, StartLineNamesWindowListFramesAndUnnamedApplications) {
    platform.runningApplications.addApplication(100, std::nullopt);
    addWindow(100, 11, QRectF(100, 50, 400, 100));
    platform.windowControl.setFrameError(11, Result::CannotComplete);
    moveAll();
    ASSERT_EQ(diagnostics().size(), 3);
    EXPECT_EQ(diagnostics()[1], QStringLiteral("[WindowMoveDiag] START app=Unknown App [pid:100], windowID=11, "
                                               "frameSource=CGFallbackConverted, centerLike=false, adjustSize=false, "
                                               "frame=(100.0, 930.0, 400.0, 100.0), normalizedCenter=(0.1563,0.9074), "
                                               "normalizedRect=(0.0521,0.8611,0.2083,0.0926)"));
}

TEST_F(MoveDiagnosticLines, TraceTellsEveryApplicationAndWindowItSkipsOrFailsToMove) {
    addWindow(100, 11, kCentred);
    platform.windowControl.setChangeResult(11, FakeWindowControl::Change::Move, Result::CannotComplete);
    platform.windowControl.addWindow(100, {.id = 12, .frame = kCentred});
    platform.windowControl.setFrameError(12, Result::NoValue);
    platform.runningApplications.addApplication(200, QStringLiteral("Mail"));
    moveAll();
    EXPECT_EQ(trace.lines(),
              (QStringList{
                  QStringLiteral("moveAllWindows start: source=Left#1 -> destination=Right#2, "
                                 "sourceWindowIDsAcrossApps=1"),
                  // Every application's windows are read before the first window moves.
                  QStringLiteral("Mail [pid:200]: AXWindows error=noValue"),
                  QStringLiteral("Mail [pid:200]: AXAllWindows error=noValue"),
                  QStringLiteral("Mail [pid:200]: no movable windows after filtering (primary=0, all=0)"),
                  QStringLiteral("Mail [pid:200]: no accessible windows returned"),
                  QStringLiteral("Editor [pid:100]: mergedAXWindows=2, sourceWindowIDs=1"),
                  // Every window is planned before the moves go out in one batch.
                  QStringLiteral("Editor [pid:100]: skip window without frame, windowID=12"),
                  QStringLiteral("Editor [pid:100]: failed setPosition (keep size) windowID=11, "
                                 "error=cannotComplete, frame=(480.0, 270.0, 960.0, 540.0), target=(2720.0, 450.0)"),
                  QStringLiteral("Editor [pid:100]: attempted=1, moved=0"),
                  QStringLiteral("moveAllWindows done: attempted=1, moved=0"),
              }));
}

TEST_F(MoveDiagnosticLines, TraceTellsFailedAdjustedMovesAndUnusableSources) {
    m_destination = display(2, QStringLiteral("Mirror"), 2, left.bounds);
    addWindow(100, 11, QRectF(-1.6, 270, 960, 540));
    platform.windowControl.setChangeResult(11, FakeWindowControl::Change::Move, Result::Failure);
    moveAll(true);
    EXPECT_TRUE(trace.contains(
        QStringLiteral("Editor [pid:100]: resize status windowID=11, sizeErr=success, sizeChanged=false, "
                       "before=(960.0, 540.0), target=(960.0, 540.0), actual=(960.0, 540.0), "
                       "normalizedSize=(0.5000,0.5000)")))
        << trace.lines().join(QLatin1Char('\n')).toStdString();
    EXPECT_TRUE(
        trace.contains(QStringLiteral("Editor [pid:100]: failed setPosition windowID=11, initialError=failure, "
                                      "finalError=failure, frame=(-1.6, 270.0, 960.0, 540.0), target=(0.0, 270.0)")))
        << trace.lines().join(QLatin1Char('\n')).toStdString();

    m_source.bounds = QRectF(1920, 0, -1920, 1080);
    moveAll();
    EXPECT_TRUE(trace.contains(QStringLiteral("Editor [pid:100]: invalid source bounds, skipping resize/move")));
}

}  // namespace
