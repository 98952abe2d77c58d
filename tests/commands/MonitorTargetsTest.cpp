// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/commands/MonitorTargets.h"

namespace {

DisplayDescriptor display(int index, const QString& name, const QRectF& bounds) {
    return {.id = static_cast<MonitorId>(index),
            .persistentID = QStringLiteral("id-%1").arg(index),
            .index = index,
            .name = name,
            .bounds = bounds};
}

// Indexes that do not follow positions: 1 is in the middle, 2 on the right, 3 on the left, 4 below 1.
const QList<DisplayDescriptor> kDisplays = {
    display(1, QStringLiteral("Middle"), QRectF(1280, 0, 1920, 1080)),
    display(2, QStringLiteral("Right"), QRectF(3200, 0, 2560, 1440)),
    display(3, QStringLiteral("Left"), QRectF(0, 0, 1280, 1024)),
    display(4, QStringLiteral("Below"), QRectF(1280, 1080, 1920, 1080)),
};

QString resolvedName(const QString& target, std::optional<DisplayDescriptor> from = std::nullopt) {
    const auto found = MonitorTargets::resolve(target, kDisplays, from);
    if (const auto* display = std::get_if<DisplayDescriptor>(&found)) {
        return display->name;
    }
    return QStringLiteral("error: ") + std::get<MonitorTargets::NoSuchMonitor>(found).message;
}

TEST(MonitorTargets, IndexesAreTheOnesThePanelShows) {
    EXPECT_EQ(resolvedName(QStringLiteral("1")), QStringLiteral("Middle"));
    EXPECT_EQ(resolvedName(QStringLiteral("3")), QStringLiteral("Left"));
    EXPECT_TRUE(resolvedName(QStringLiteral("5")).startsWith(QStringLiteral("error: There is no monitor 5")));
    EXPECT_TRUE(resolvedName(QStringLiteral("0")).startsWith(QStringLiteral("error: ")));
}

TEST(MonitorTargets, NamesMatchInAnyCase) {
    EXPECT_EQ(resolvedName(QStringLiteral("right")), QStringLiteral("error: \"right\" starts from the focused "
                                                                    "window's monitor, and no window has focus."))
        << "a direction word is a direction, not a name";
    EXPECT_EQ(resolvedName(QStringLiteral("below")), QStringLiteral("Below"));
    EXPECT_EQ(resolvedName(QStringLiteral("MIDDLE")), QStringLiteral("Middle"));
    const QString missing = resolvedName(QStringLiteral("Nowhere"));
    EXPECT_TRUE(missing.contains(QStringLiteral("No monitor is called \"Nowhere\""))) << missing.toStdString();
    EXPECT_TRUE(missing.contains(QStringLiteral("1 (Middle)"))) << "the message lists the monitors";
}

TEST(MonitorTargets, PersistentIdentifiersNameTheirMonitor) {
    EXPECT_EQ(resolvedName(QStringLiteral("id-2")), QStringLiteral("Right"));
    EXPECT_EQ(resolvedName(QStringLiteral(" id-4 ")), QStringLiteral("Below"));
}

TEST(MonitorTargets, NextAndPreviousFollowIndexesAndWrap) {
    EXPECT_EQ(resolvedName(QStringLiteral("next"), kDisplays[0]), QStringLiteral("Right"));
    EXPECT_EQ(resolvedName(QStringLiteral("next"), kDisplays[3]), QStringLiteral("Middle")) << "wraps to 1";
    EXPECT_EQ(resolvedName(QStringLiteral("previous"), kDisplays[0]), QStringLiteral("Below")) << "wraps to 4";
    EXPECT_EQ(resolvedName(QStringLiteral("previous"), kDisplays[2]), QStringLiteral("Right"));
}

TEST(MonitorTargets, DirectionsFollowPositionsNotIndexes) {
    EXPECT_EQ(resolvedName(QStringLiteral("left"), kDisplays[0]), QStringLiteral("Left"));
    EXPECT_EQ(resolvedName(QStringLiteral("right"), kDisplays[0]), QStringLiteral("Right"));
    EXPECT_EQ(resolvedName(QStringLiteral("down"), kDisplays[0]), QStringLiteral("Below"));
    EXPECT_EQ(resolvedName(QStringLiteral("up"), kDisplays[3]), QStringLiteral("Middle"));
    EXPECT_EQ(resolvedName(QStringLiteral("Right"), kDisplays[2]), QStringLiteral("Middle"))
        << "the nearest on that side, any case";
}

TEST(MonitorTargets, DirectionsNeverWrap) {
    EXPECT_EQ(resolvedName(QStringLiteral("left"), kDisplays[2]),
              QStringLiteral("error: There is no monitor to the left of Left."));
    EXPECT_EQ(resolvedName(QStringLiteral("up"), kDisplays[0]),
              QStringLiteral("error: There is no monitor above Middle."));
}

TEST(MonitorTargets, NoMonitorsMeansNoTarget) {
    const auto found = MonitorTargets::resolve(QStringLiteral("1"), {}, std::nullopt);
    ASSERT_TRUE(std::holds_alternative<MonitorTargets::NoSuchMonitor>(found));
    EXPECT_EQ(std::get<MonitorTargets::NoSuchMonitor>(found).message, QStringLiteral("No monitor is connected."));
}

}  // namespace
