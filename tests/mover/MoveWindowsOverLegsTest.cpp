// SPDX-License-Identifier: MIT
// Moves over several source and destination pairs in one pass: swapping two displays, gathering from many.
#include "tests/mover/MoverFixture.h"

namespace {

class MoveWindowsOverLegs : public MoverTest {
protected:
    WindowMoveResult move(const QList<WindowMover::MoveLeg>& legs, bool adjust = false) {
        return WindowMover::moveWindows(legs, adjust, std::nullopt, false).counts;
    }
    int moves(qint64 window) {
        return static_cast<int>(platform.windowControl.requests(window, FakeWindowControl::Change::Move).size());
    }

    const DisplaySnapshot far = display(3, QStringLiteral("Far"), 3, QRectF(4480, 0, 1280, 1024));
};

TEST_F(MoveWindowsOverLegs, SwappingExchangesTheWindowsAndMovesEachOnce) {
    addWindow(100, 11, QRectF(480, 270, 960, 540));                                    // centred on the left display
    addWindow(200, 21, QRectF(1920 + 640, 360, 1280, 720), QStringLiteral("Viewer"));  // centred on the right one
    EXPECT_EQ(move({{left, right}, {right, left}}), (WindowMoveResult{2, 2}));
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(2720, 450, 960, 540));
    EXPECT_EQ(platform.windowControl.currentFrame(21), QRectF(320, 180, 1280, 720));
    EXPECT_EQ(moves(11), 1) << "moved to the right display and not back";
    EXPECT_EQ(moves(21), 1);
}

TEST_F(MoveWindowsOverLegs, SwappingWithAdjustedSizesKeepsEachWindowsShare) {
    addWindow(100, 11, QRectF(480, 270, 960, 540));
    addWindow(200, 21, QRectF(1920 + 640, 360, 1280, 720), QStringLiteral("Viewer"));
    EXPECT_EQ(move({{left, right}, {right, left}}, true), (WindowMoveResult{2, 2}));
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(2560, 360, 1280, 720));
    EXPECT_EQ(platform.windowControl.currentFrame(21), QRectF(480, 270, 960, 540));
}

TEST_F(MoveWindowsOverLegs, OneApplicationsWindowsOnBothSidesAreSwappedToo) {
    addWindow(100, 11, QRectF(100, 100, 400, 300));
    addWindow(100, 12, QRectF(2000, 100, 400, 300));
    EXPECT_EQ(move({{left, right}, {right, left}}), (WindowMoveResult{2, 2}));
    EXPECT_TRUE(right.bounds.contains(platform.windowControl.currentFrame(11)));
    EXPECT_TRUE(left.bounds.contains(platform.windowControl.currentFrame(12)));
    EXPECT_EQ(moves(11) + moves(12), 2);
}

TEST_F(MoveWindowsOverLegs, GatheringFromSeveralDisplaysReadsTheWindowListOnce) {
    addWindow(100, 11, QRectF(100, 100, 400, 300));
    addWindow(100, 13, QRectF(4600, 100, 400, 300));
    addWindow(100, 12, QRectF(2000, 100, 400, 300));  // already on the destination
    const int queries = platform.windowList.queryCount();
    EXPECT_EQ(move({{left, right}, {far, right}}), (WindowMoveResult{2, 2}));
    EXPECT_EQ(platform.windowList.queryCount(), queries + 1);
    EXPECT_TRUE(right.bounds.contains(platform.windowControl.currentFrame(11)));
    EXPECT_TRUE(right.bounds.contains(platform.windowControl.currentFrame(13)));
    EXPECT_EQ(moves(12), 0);
}

TEST_F(MoveWindowsOverLegs, NoLegsMoveNothingAndReadNothing) {
    addWindow(100, 11, QRectF(100, 100, 400, 300));
    const int queries = platform.windowList.queryCount();
    EXPECT_EQ(move({}), (WindowMoveResult{0, 0}));
    EXPECT_EQ(platform.windowList.queryCount(), queries);
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
}

}  // namespace
