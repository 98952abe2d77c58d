#include "tests/mover/MoverFixture.h"

namespace {

using WindowListLookup = MoverTest;

WindowInfo entry(qint64 number, pid_t pid, const QRectF& bounds, const QString& owner = QStringLiteral("Editor")) {
    return FakeWindowServer::entry({.number = number, .pid = pid, .ownerName = owner, .bounds = bounds});
}

TEST_F(WindowListLookup, FramesAreKeyedByOwnerAndNumber) {
    WindowInfo layered = entry(3, 100, QRectF(0, 0, 300, 300));
    layered.insert(QLatin1String(kCGWindowLayer), 25);
    WindowInfo noOwner = entry(4, 100, QRectF(0, 0, 300, 300));
    noOwner.remove(QLatin1String(kCGWindowOwnerPID));
    WindowInfo noNumber = entry(5, 100, QRectF(0, 0, 300, 300));
    noNumber.insert(QLatin1String(kCGWindowNumber), QStringLiteral("5"));
    platform.windowServer.setWindowList(QList<WindowInfo>{
        entry(1, 100, QRectF(10, 20, 300, 200)), entry(2, 200, QRectF(0, 0, 1, 200)),  // not larger than one point
        layered, noOwner, noNumber, entry(6, 100, QRectF(0, 0, 500, 2)),
        entry(6, 100, QRectF(5, 5, 500, 400)),  // a later entry with the same key wins
    });
    const QHash<QString, QRectF> frames = WindowMover::allWindowFramesByOwnerAndWindowID();
    EXPECT_EQ(frames.size(), 2);
    EXPECT_EQ(frames.value(QStringLiteral("100-1")), QRectF(10, 20, 300, 200));
    EXPECT_EQ(frames.value(QStringLiteral("100-6")), QRectF(5, 5, 500, 400));
    EXPECT_EQ(platform.windowServer.lastOptions(), kCGWindowListExcludeDesktopElements);
}

TEST_F(WindowListLookup, UnavailableWindowListGivesNothing) {
    platform.windowServer.setWindowList(std::nullopt);
    EXPECT_TRUE(WindowMover::allWindowFramesByOwnerAndWindowID().isEmpty());
    EXPECT_TRUE(WindowMover::sourceWindowIDsByOwnerPID(left.bounds).isEmpty());
}

TEST_F(WindowListLookup, SourceWindowsExcludeOverlaysTransparentSmallAndDockWindows) {
    platform.workspace.addApplication(100, QStringLiteral("Editor"));
    WindowInfo overlay = entry(1, 100, QRectF(0, 0, 500, 500));
    overlay.insert(QLatin1String(kCGWindowLayer), 8);
    WindowInfo transparent = entry(2, 100, QRectF(0, 0, 500, 500));
    transparent.insert(QLatin1String(kCGWindowAlpha), 0.0);
    platform.windowServer.setWindowList(QList<WindowInfo>{
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
    platform.workspace.addApplication(100, QStringLiteral("Editor"));
    platform.workspace.addApplication(200, QStringLiteral("Helper"), ActivationPolicy::Accessory);
    RunningApplication gone = platform.workspace.addApplication(300, QStringLiteral("Gone"));
    platform.workspace.applications.last().isTerminated = true;
    WindowInfo withoutAlpha = entry(6, 100, QRectF(100, 100, 400, 400));
    withoutAlpha.remove(QLatin1String(kCGWindowAlpha));
    WindowInfo withoutName = entry(7, 100, QRectF(100, 100, 400, 400));
    withoutName.remove(QLatin1String(kCGWindowOwnerName));
    WindowInfo withoutNumber = entry(8, 100, QRectF(100, 100, 400, 400));
    withoutNumber.remove(QLatin1String(kCGWindowNumber));
    platform.windowServer.setWindowList(QList<WindowInfo>{
        entry(1, 100, QRectF(1920, 0, 400, 400)),  // touches the source's right edge only
        entry(2, 100, QRectF(1919, 0, 400, 400)),  // overlaps it by one point
        entry(3, 200, QRectF(100, 100, 400, 400)),
        entry(4, gone.processIdentifier, QRectF(100, 100, 400, 400)),
        entry(5, 999, QRectF(100, 100, 400, 400)),
        withoutAlpha,
        withoutName,
        withoutNumber,
    });
    const QHash<pid_t, QSet<qint64>> ids = WindowMover::sourceWindowIDsByOwnerPID(left.bounds);
    EXPECT_EQ(ids.size(), 1);
    EXPECT_EQ(ids.value(100), (QSet<qint64>{2, 6, 7}));
}

TEST_F(WindowListLookup, EmptySourceBoundsIntersectNoWindow) {
    platform.workspace.addApplication(100, QStringLiteral("Editor"));
    platform.windowServer.setWindowList(QList<WindowInfo>{entry(1, 100, QRectF(0, 0, 400, 400))});
    EXPECT_TRUE(WindowMover::sourceWindowIDsByOwnerPID(QRectF(100, 100, 0, 0)).isEmpty());
}

}  // namespace
