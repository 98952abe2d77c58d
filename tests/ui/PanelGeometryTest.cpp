// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/ui/panel/PanelGeometry.h"

namespace {

using PanelGeometry::cardWidth;
using PanelGeometry::panelOrigin;
using PanelGeometry::popupHeight;
using PanelGeometry::popupWidth;
using PanelGeometry::previewHeight;

TEST(PanelSize, ThreeDisplaysMake640PointsWide) {
    EXPECT_DOUBLE_EQ(popupWidth(true, 3), 3 * 200 + 2 * 8 + 24);
    EXPECT_DOUBLE_EQ(popupWidth(true, 3), 640);
}

TEST(PanelSize, OneDisplayKeepsTheMinimumWidthOf460) {
    EXPECT_DOUBLE_EQ(popupWidth(true, 1), 460);
}

TEST(PanelSize, OneDisplayIs420Point4High) {
    // Card 436 wide, preview clamped to 134.4: 24 + 58 + ((134.4 + 56 + 16) + 24 + 108).
    EXPECT_NEAR(popupHeight(true, 1), 420.4, 1e-9);
}

TEST(PanelSize, MissingPermissionsGive460By235WhateverTheDisplays) {
    for (const int displays : {0, 1, 2, 3, 4, 12}) {
        EXPECT_DOUBLE_EQ(popupWidth(false, displays), 460) << displays;
        EXPECT_DOUBLE_EQ(popupHeight(false, displays), 235) << displays;
    }
}

TEST(PanelSize, TwoDisplaysAre460WideWithCardsOf214) {
    EXPECT_DOUBLE_EQ(popupWidth(true, 2), 460);
    // Card (460 - 24 - 8) / 2 = 214, preview 119.84, one target: 32 + 175.84 + 16, + 4 * 8 + 24, + 108.
    EXPECT_NEAR(popupHeight(true, 2), 387.84, 1e-9);
}

TEST(PanelSize, FourDisplaysAre848By444) {
    EXPECT_DOUBLE_EQ(popupWidth(true, 4), 848);
    // Card 200, preview 112, three targets: 216, + 6 * 8 + 72, + 108.
    EXPECT_NEAR(popupHeight(true, 4), 444, 1e-9);
}

TEST(PanelSize, ThreeDisplaysAre412High) {
    EXPECT_NEAR(popupHeight(true, 3), 412, 1e-9);
}

TEST(PanelSize, ZeroDisplaysWithPermissionsGive460By300) {
    EXPECT_DOUBLE_EQ(popupWidth(true, 0), 460);
    EXPECT_DOUBLE_EQ(popupHeight(true, 0), 300);
}

TEST(PanelSize, ManyDisplaysAreCappedAt460High) {
    EXPECT_DOUBLE_EQ(popupWidth(true, 10), 10 * 200 + 9 * 8 + 24);
    EXPECT_DOUBLE_EQ(popupHeight(true, 10), 460);
}

TEST(PanelSize, NegativeCountIsTreatedAsNoDisplays) {
    EXPECT_DOUBLE_EQ(popupWidth(true, -3), 460);
    EXPECT_DOUBLE_EQ(popupHeight(true, -3), 300);
}

TEST(CardSize, FourDisplaysIn600PointsAre144WideWithPreviews80Point64High) {
    EXPECT_DOUBLE_EQ(cardWidth(600, 4), 144);
    EXPECT_NEAR(previewHeight(cardWidth(600, 4)), 80.64, 1e-9);
}

TEST(CardSize, TwoDisplaysIn600PointsAreClampedTo240) {
    EXPECT_DOUBLE_EQ(cardWidth(600, 2), 240);
    EXPECT_NEAR(previewHeight(240), 134.4, 1e-9);
}

TEST(CardSize, NarrowPanelsKeepCardsAt110) {
    EXPECT_DOUBLE_EQ(cardWidth(300, 4), 110);
    EXPECT_DOUBLE_EQ(cardWidth(0, 1), 110);
}

TEST(CardSize, NoDisplaysGiveTheMinimumWidth) {
    EXPECT_DOUBLE_EQ(cardWidth(600, 0), 110);
}

TEST(PanelPlacement, DropsBelowAnIconAtTheTopOfTheScreen) {
    const QRect screen(0, 0, 1920, 1080);
    const QPoint origin = panelOrigin(QSize(460, 400), QRect(1000, 0, 24, 24), QPoint(5, 5), screen);
    EXPECT_EQ(origin, QPoint(1012 - 230, 24));
}

TEST(PanelPlacement, RisesAboveAnIconAtTheBottomOfTheScreen) {
    const QRect screen(0, 0, 1920, 1080);
    const QPoint origin = panelOrigin(QSize(460, 400), QRect(1000, 1056, 24, 24), QPoint(5, 5), screen);
    EXPECT_EQ(origin, QPoint(1012 - 230, 656));
}

TEST(PanelPlacement, StaysInsideTheScreenNextToAnIconInTheCorner) {
    const QRect screen(0, 0, 1920, 1080);
    const QPoint origin = panelOrigin(QSize(640, 412), QRect(1896, 1056, 24, 24), QPoint(5, 5), screen);
    EXPECT_EQ(origin, QPoint(1920 - 640, 1056 - 412));
}

TEST(PanelPlacement, OpensAtThePointerWhenTheTrayGivesNoGeometry) {
    const QRect screen(1920, 0, 2560, 1440);
    const QPoint origin = panelOrigin(QSize(460, 300), QRect(), QPoint(3000, 100), screen);
    EXPECT_EQ(origin, QPoint(3000 - 230, 100));
}

TEST(PanelPlacement, PointerNearTheBottomPutsThePanelAboveIt) {
    const QRect screen(1920, 0, 2560, 1440);
    const QPoint origin = panelOrigin(QSize(460, 300), QRect(), QPoint(3000, 1400), screen);
    EXPECT_EQ(origin, QPoint(3000 - 230, 1100));
}

TEST(PanelPlacement, PanelLargerThanTheScreenKeepsItsTopLeftCornerOnScreen) {
    const QRect screen(0, 0, 400, 300);
    EXPECT_EQ(panelOrigin(QSize(848, 444), QRect(380, 0, 20, 20), QPoint(), screen), QPoint(0, 0));
}

TEST(PanelDisplaySpace, ToolkitAndDisplaySpaceAgreeWithoutScaling) {
    const QRectF area =
        PanelGeometry::displaySpaceArea(QRect(3780, 996, 700, 420), QRect(1920, 0, 2560, 1440), 1.0, QPoint(0, 0));
    EXPECT_EQ(area, QRectF(3780, 996, 700, 420));
}

TEST(PanelDisplaySpace, AScaledScreenKeepsItsCornerAndScalesWhatLiesInside) {
    // The screen starts at 1920 in both spaces; 80 points into it are 160 pixels.
    const QRectF area =
        PanelGeometry::displaySpaceArea(QRect(2000, 500, 400, 300), QRect(1920, 0, 1280, 720), 2.0, QPoint(0, 0));
    EXPECT_EQ(area, QRectF(2080, 1000, 800, 600));
}

TEST(PanelDisplaySpace, TheOriginIsThePrimaryMonitorsCorner) {
    const QRectF area =
        PanelGeometry::displaySpaceArea(QRect(100, 100, 50, 40), QRect(0, 0, 1920, 1080), 1.0, QPoint(-1280, 200));
    EXPECT_EQ(area, QRectF(1380, -100, 50, 40));
}

}  // namespace
