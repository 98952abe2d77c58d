// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cmath>

#include "app/model/Geometry.h"
#include "app/mover/WindowMoveLog.h"
#include "app/mover/WindowMover.h"

namespace {

DisplaySnapshot display(MonitorId id, const QRectF& bounds) {
    DisplaySnapshot snapshot;
    snapshot.id = id;
    snapshot.bounds = bounds;
    return snapshot;
}

const QRectF kMain(0, 0, 1920, 1080);
const QRectF kWide(1920, 0, 2560, 1440);

TEST(MoverGeometry, NormalizedRectIsFractionOfContainer) {
    const NormalizedRect n = WindowMover::normalizedRect(QRectF(2400, 360, 1280, 720), kWide);
    EXPECT_DOUBLE_EQ(n.x, 480.0 / 2560);
    EXPECT_DOUBLE_EQ(n.y, 0.25);
    EXPECT_DOUBLE_EQ(n.width, 0.5);
    EXPECT_DOUBLE_EQ(n.height, 0.5);
}

TEST(MoverGeometry, ContainerWithZeroWidthOrHeightGivesZeroRectAndCentredCentre) {
    for (const QRectF& empty : {QRectF(0, 0, 0, 1080), QRectF(0, 0, 1920, 0), QRectF()}) {
        EXPECT_EQ(WindowMover::normalizedRect(QRectF(10, 10, 100, 100), empty), (NormalizedRect{0, 0, 0, 0}));
        EXPECT_EQ(WindowMover::normalizedCenter(QRectF(10, 10, 100, 100), empty), QPointF(0.5, 0.5));
    }
}

TEST(MoverGeometry, NormalizedCenterIsWindowMidpointAsFractions) {
    EXPECT_EQ(WindowMover::normalizedCenter(QRectF(480, 270, 960, 540), kMain), QPointF(0.5, 0.5));
    EXPECT_EQ(WindowMover::normalizedCenter(QRectF(1920, 0, 640, 360), kWide), QPointF(0.125, 0.125));
}

TEST(MoverGeometry, CenterLikeMeansWithinFifteenHundredthsOfTheMiddle) {
    EXPECT_TRUE(WindowMover::isCenterLike(QPointF(0.64, 0.36)));
    EXPECT_FALSE(WindowMover::isCenterLike(QPointF(0.66, 0.5)));
    EXPECT_FALSE(WindowMover::isCenterLike(QPointF(0.5, 0.34)));
    EXPECT_TRUE(WindowMover::isCenterLike(QPointF(0.5, 0.5)));
}

TEST(MoverGeometry, WindowWiderThanDisplayIsClampedToLeftEdgeWhateverTheDesiredOrigin) {
    const QRectF destination(1920, 0, 1920, 1080);
    for (double desiredX : {-5000.0, 0.0, 1900.0, 2500.0, 9000.0}) {
        const QPointF origin = WindowMover::clampedOrigin(QPointF(desiredX, 100), QSizeF(2000, 500), destination);
        EXPECT_EQ(origin.x(), 1920.0) << desiredX;
        EXPECT_EQ(origin.y(), 100.0);
    }
}

TEST(MoverGeometry, WindowAsTallAsDisplayIsAlignedWithTopEdge) {
    const QPointF origin = WindowMover::clampedOrigin(QPointF(100, 300), QSizeF(500, 1080), kMain);
    EXPECT_EQ(origin, QPointF(100, 0));
}

TEST(MoverGeometry, ClampKeepsWindowInsideDisplay) {
    EXPECT_EQ(WindowMover::clampedOrigin(QPointF(4400, -20), QSizeF(200, 100), kWide), QPointF(4480 - 200, 0));
    EXPECT_EQ(WindowMover::clampedOrigin(QPointF(1000, 1400), QSizeF(200, 100), kWide), QPointF(1920, 1340));
    EXPECT_EQ(WindowMover::clampedOrigin(QPointF(2000, 500), QSizeF(200, 100), kWide), QPointF(2000, 500));
}

TEST(MoverGeometry, AdjustSizeKeepsShareOfSourceWidth) {
    const QRectF source(0, 0, 1440, 900);
    const QSizeF size = WindowMover::adjustedSize(QRectF(100, 100, 720, 450), source, QRectF(1440, 0, 2560, 1440));
    EXPECT_DOUBLE_EQ(size.width(), 1280.0);
    EXPECT_DOUBLE_EQ(size.height(), 720.0);
}

TEST(MoverGeometry, AdjustSizeCapsWindowWiderThanSourceAtDestinationWidth) {
    const QSizeF size =
        WindowMover::adjustedSize(QRectF(-100, 0, 1600, 1000), QRectF(0, 0, 1440, 900), QRectF(0, 0, 1280, 1024));
    EXPECT_EQ(size, QSizeF(1280, 1024));
}

TEST(MoverGeometry, AdjustSizeIsNeverSmallerThanOnePoint) {
    const QSizeF size = WindowMover::adjustedSize(QRectF(0, 0, 0.1, 0.1), kMain, kWide);
    EXPECT_EQ(size, QSizeF(1, 1));
}

TEST(MoverGeometry, WholePixelSizeRoundsToTheNearestPixel) {
    EXPECT_EQ(WindowMover::wholePixelSize(QSizeF(1333.33, 934.5), kWide), QSizeF(1333, 935));
    EXPECT_EQ(WindowMover::wholePixelSize(QSizeF(0.2, 1.4), kWide), QSizeF(1, 1));
}

TEST(MoverGeometry, WholePixelSizeStaysInsideAFractionalDestination) {
    EXPECT_EQ(WindowMover::wholePixelSize(QSizeF(1280.6, 720.6), QRectF(0, 0, 1280.6, 720.4)), QSizeF(1280, 720));
}

TEST(MoverGeometry, WholePixelSizeKeepsAValueThatIsNotFinite) {
    const QSizeF size = WindowMover::wholePixelSize(QSizeF(qQNaN(), 10), kWide);
    EXPECT_TRUE(std::isnan(size.width()));
    EXPECT_EQ(size.height(), 10);
}

TEST(MoverGeometry, DestinationOriginKeepsRelativeCentre) {
    // Centre at (0.25, 0.5) of the destination, minus half the size.
    const QPointF origin = WindowMover::destinationOrigin(QPointF(0.25, 0.5), QSizeF(400, 200), kWide);
    EXPECT_EQ(origin, QPointF(1920 + 640 - 200, 720 - 100));
}

TEST(MoverGeometry, WindowListFrameIsMirroredVerticallyInsideSourceDisplay) {
    // 100 points high, top edge 50 points below the top of a 900-point display: 750 from the top.
    const QRectF frame = WindowMover::convertedWindowListFrame(QRectF(100, 50, 400, 100), QRectF(0, 0, 1440, 900));
    EXPECT_DOUBLE_EQ(frame.y(), 750.0);
    EXPECT_DOUBLE_EQ(frame.x(), 100.0);
    EXPECT_DOUBLE_EQ(frame.width(), 400.0);
    EXPECT_DOUBLE_EQ(frame.height(), 100.0);
}

TEST(MoverGeometry, WindowListFrameMirrorsInsideAnOffsetDisplay) {
    const QRectF frame = WindowMover::convertedWindowListFrame(QRectF(2000, 100, 300, 200), kWide);
    EXPECT_DOUBLE_EQ(frame.x(), 2000.0);
    EXPECT_DOUBLE_EQ(frame.y(), 1440.0 - 200 - 100);
}

TEST(MoverGeometry, WindowListFrameIsAtLeastOnePoint) {
    const QRectF frame = WindowMover::convertedWindowListFrame(QRectF(10, 10, 0.5, 0), kMain);
    EXPECT_EQ(frame.size(), QSizeF(1, 1));
}

TEST(MoverGeometry, WindowListFrameIsUnchangedInsideEmptySourceDisplay) {
    const QRectF bounds(100, 50, 400, 100);
    EXPECT_EQ(WindowMover::convertedWindowListFrame(bounds, QRectF(0, 0, 0, 900)), bounds);
}

TEST(MoverGeometry, CentreOnSharedBorderBelongsToDisplayThatContainsItHalfOpen) {
    // Centre x = 1920: the right edge of the main display, the left edge of the wide one.
    const QRectF frame(1820, 100, 200, 100);
    const QList<DisplaySnapshot> displays = {display(1, kMain), display(2, kWide)};
    EXPECT_EQ(WindowMover::bestSourceDisplay(frame, displays)->id, 2u);
    const QList<DisplaySnapshot> reversed = {display(2, kWide), display(1, kMain)};
    EXPECT_EQ(WindowMover::bestSourceDisplay(frame, reversed)->id, 2u);
}

TEST(MoverGeometry, CentreInsideTwoOverlappingDisplaysGoesToFirstInListOrder) {
    const QList<DisplaySnapshot> mirrored = {display(7, kMain), display(8, kMain)};
    EXPECT_EQ(WindowMover::bestSourceDisplay(QRectF(100, 100, 200, 200), mirrored)->id, 7u);
}

TEST(MoverGeometry, FrameTouchingNoDisplayGivesFirstDisplay) {
    const QList<DisplaySnapshot> displays = {display(1, kMain), display(2, kWide)};
    EXPECT_EQ(WindowMover::bestSourceDisplay(QRectF(-5000, -5000, 100, 100), displays)->id, 1u);
}

TEST(MoverGeometry, FrameWithCentreOutsideGoesToLargestOverlap) {
    // Centre below both displays; overlaps the wide one more.
    const QList<DisplaySnapshot> displays = {display(1, kMain), display(2, kWide)};
    EXPECT_EQ(WindowMover::bestSourceDisplay(QRectF(1800, 1400, 1000, 100), displays)->id, 2u);
}

TEST(MoverGeometry, EqualOverlapGoesToEarlierDisplay) {
    const QList<DisplaySnapshot> displays = {display(1, QRectF(0, 0, 100, 100)), display(2, QRectF(100, 0, 100, 100))};
    // Centre (100, 150) lies below both; overlap 50x50 with each.
    EXPECT_EQ(WindowMover::bestSourceDisplay(QRectF(50, 50, 100, 200), displays)->id, 1u);
}

TEST(MoverGeometry, NoDisplaysGiveNoSourceDisplay) {
    EXPECT_FALSE(WindowMover::bestSourceDisplay(QRectF(0, 0, 100, 100), {}).has_value());
}

TEST(RectangleTests, ContainmentIsHalfOpen) {
    EXPECT_TRUE(Geometry::containsPoint(kMain, QPointF(0, 0)));
    EXPECT_TRUE(Geometry::containsPoint(kMain, QPointF(1919.999, 1079.999)));
    EXPECT_FALSE(Geometry::containsPoint(kMain, QPointF(1920, 500)));
    EXPECT_FALSE(Geometry::containsPoint(kMain, QPointF(500, 1080)));
    EXPECT_FALSE(Geometry::containsPoint(QRectF(10, 10, 0, 0), QPointF(10, 10)));
}

TEST(RectangleTests, TouchingEdgesDoNotIntersect) {
    EXPECT_FALSE(Geometry::intersects(kMain, kWide));
    EXPECT_FALSE(Geometry::intersects(QRectF(0, 1080, 100, 100), kMain));
    EXPECT_TRUE(Geometry::intersects(QRectF(1919, 0, 2, 2), kMain));
    EXPECT_TRUE(Geometry::intersects(QRectF(1919, 0, 2, 2), kWide));
}

TEST(RectangleTests, EmptyRectangleIntersectsNothing) {
    EXPECT_FALSE(Geometry::intersects(QRectF(100, 100, 0, 0), kMain));
    EXPECT_FALSE(Geometry::intersects(kMain, QRectF(100, 100, 0, 50)));
    EXPECT_EQ(Geometry::intersectionArea(QRectF(100, 100, 0, 50), kMain), 0.0);
}

TEST(RectangleTests, IntersectionAreaIsCommonWidthTimesHeight) {
    EXPECT_EQ(Geometry::intersectionArea(QRectF(1900, 1000, 100, 100), kMain), 20.0 * 80.0);
}

TEST(MoverTrace, IsOnByDefaultOnlyInDebugBuilds) {
    if (qEnvironmentVariableIsSet("QT_LOGGING_RULES")) {
        GTEST_SKIP() << "QT_LOGGING_RULES decides the trace level";
    }
    QLoggingCategory::setFilterRules(QString());
    EXPECT_EQ(lcMover().isDebugEnabled(), LATTICA_EXPECT_TRACE_BY_DEFAULT != 0);
    EXPECT_TRUE(lcMover().isWarningEnabled());
}

TEST(MoverTrace, NumbersAreWrittenLikeTheGraphicsDebugDescription) {
    EXPECT_EQ(WindowMoveLog::describe(QRectF(0, -20, 1920, 1080.5)), QStringLiteral("(0.0, -20.0, 1920.0, 1080.5)"));
    EXPECT_EQ(WindowMoveLog::describe(QPointF(2226.666666666667, 0.1)), QStringLiteral("(2226.666666666667, 0.1)"));
    EXPECT_EQ(WindowMoveLog::describe(QSizeF(1e20, 3)), QStringLiteral("(1e+20, 3.0)"));
    EXPECT_EQ(WindowMoveLog::fraction(0.123456), QStringLiteral("0.1235"));
}

}  // namespace
