// SPDX-License-Identifier: MIT
#include "tests/mover/MoverFixture.h"

namespace {

using WindowListLookup = MoverTest;

WindowEntry entry(qint64 number, pid_t pid, const QRectF& bounds, const QString& owner = QStringLiteral("Editor")) {
    return {.id = number, .pid = pid, .ownerName = owner, .frame = bounds, .opacity = 1.0};
}

TEST_F(WindowListLookup, FramesAreKeyedByOwnerAndNumber) {
    WindowEntry layered = entry(3, 100, QRectF(0, 0, 300, 300));
    layered.layer = 25;
    WindowEntry noOwner = entry(4, 100, QRectF(0, 0, 300, 300));
    noOwner.pid.reset();
    platform.windowList.setWindows({
        entry(1, 100, QRectF(10, 20, 300, 200)), entry(2, 200, QRectF(0, 0, 1, 200)),  // not larger than one point
        layered, noOwner, entry(6, 100, QRectF(0, 0, 500, 2)),
        entry(6, 100, QRectF(5, 5, 500, 400)),  // a later entry with the same key wins
    });
    const QHash<QString, QRectF> frames = WindowMover::allWindowFramesByOwnerAndWindowID();
    EXPECT_EQ(frames.size(), 2);
    EXPECT_EQ(frames.value(QStringLiteral("100-1")), QRectF(10, 20, 300, 200));
    EXPECT_EQ(frames.value(QStringLiteral("100-6")), QRectF(5, 5, 500, 400));
    EXPECT_EQ(platform.windowList.lastDesktopWindows(), DesktopWindows::Exclude);
}

TEST_F(WindowListLookup, UnavailableWindowListGivesNothing) {
    platform.windowList.setWindowList(std::nullopt);
    EXPECT_TRUE(WindowMover::allWindowFramesByOwnerAndWindowID().isEmpty());
    EXPECT_TRUE(WindowMover::sourceWindowIDsByOwnerPID(left.bounds).isEmpty());
}

TEST_F(WindowListLookup, SourceWindowsExcludeOverlaysTransparentSmallAndDockWindows) {
    platform.runningApplications.addApplication(100, QStringLiteral("Editor"));
    WindowEntry overlay = entry(1, 100, QRectF(0, 0, 500, 500));
    overlay.layer = 8;
    WindowEntry transparent = entry(2, 100, QRectF(0, 0, 500, 500));
    transparent.opacity = 0.0;
    platform.windowList.setWindows({
        overlay,
        transparent,
        entry(3, 100, QRectF(0, 0, 100, 60)),
        entry(4, 100, QRectF(0, 0, 500, 500), QStringLiteral("Dock")),
        entry(5, 100, QRectF(0, 0, 120, 80)),
    });
    const QHash<pid_t, QSet<qint64>> ids = WindowMover::sourceWindowIDsByOwnerPID(left.bounds);
    EXPECT_EQ(ids.size(), 1);
    EXPECT_EQ(ids.value(100), QSet<qint64>{5});
}

TEST_F(WindowListLookup, SourceWindowsMustIntersectSourceAndBelongToRegularApplications) {
    platform.runningApplications.addApplication(100, QStringLiteral("Editor"));
    platform.runningApplications.addApplication(200, QStringLiteral("Helper"), ApplicationPolicy::Accessory);
    RunningApplication gone = platform.runningApplications.addApplication(300, QStringLiteral("Gone"));
    platform.runningApplications.applications.last().terminated = true;
    WindowEntry withoutOpacity = entry(6, 100, QRectF(100, 100, 400, 400));
    withoutOpacity.opacity.reset();
    WindowEntry withoutName = entry(7, 100, QRectF(100, 100, 400, 400));
    withoutName.ownerName.reset();
    WindowEntry withoutOwner = entry(8, 100, QRectF(100, 100, 400, 400));
    withoutOwner.pid.reset();
    platform.windowList.setWindows({
        entry(1, 100, QRectF(1920, 0, 400, 400)),  // touches the source's right edge only
        entry(2, 100, QRectF(1919, 0, 400, 400)),  // overlaps it by one point
        entry(3, 200, QRectF(100, 100, 400, 400)),
        entry(4, gone.pid, QRectF(100, 100, 400, 400)),
        entry(5, 999, QRectF(100, 100, 400, 400)),
        withoutOpacity,
        withoutName,
        withoutOwner,
    });
    const QHash<pid_t, QSet<qint64>> ids = WindowMover::sourceWindowIDsByOwnerPID(left.bounds);
    EXPECT_EQ(ids.size(), 1);
    EXPECT_EQ(ids.value(100), (QSet<qint64>{2, 6, 7}));
}

TEST_F(WindowListLookup, EmptySourceBoundsIntersectNoWindow) {
    platform.runningApplications.addApplication(100, QStringLiteral("Editor"));
    platform.windowList.setWindows({entry(1, 100, QRectF(0, 0, 400, 400))});
    EXPECT_TRUE(WindowMover::sourceWindowIDsByOwnerPID(QRectF(100, 100, 0, 0)).isEmpty());
}

}  // namespace
