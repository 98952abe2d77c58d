// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/displays/ScreenSnapshotService.h"
#include "platform/fake/FakePlatform.h"

namespace {

class DisplayDescriptorsTest : public ::testing::Test {
protected:
    FakePlatform platform;
};

TEST_F(DisplayDescriptorsTest, NoScreensGiveAnEmptyList) {
    EXPECT_TRUE(ScreenSnapshotService::currentDisplayDescriptors().isEmpty());
}

TEST_F(DisplayDescriptorsTest, ListsScreensInPlatformOrderWithOneBasedIndexes) {
    platform.monitors.setMonitors({
        {.id = 7,
         .name = QStringLiteral("Main"),
         .bounds = QRectF(0, 0, 1920, 1080),
         .vendor = 16,
         .model = 32,
         .serial = 5},
        {.id = 3, .name = QStringLiteral("Side"), .bounds = QRectF(1920, 0, 2560, 1440)},
    });
    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();
    ASSERT_EQ(descriptors.size(), 2);
    EXPECT_EQ(descriptors[0].id, 7u);
    EXPECT_EQ(descriptors[0].index, 1);
    EXPECT_EQ(descriptors[0].name, QStringLiteral("Main"));
    EXPECT_EQ(descriptors[0].persistentID, QStringLiteral("v16-m32-s5"));
    EXPECT_EQ(descriptors[0].bounds, QRectF(0, 0, 1920, 1080));
    EXPECT_EQ(descriptors[1].id, 3u);
    EXPECT_EQ(descriptors[1].index, 2);
    EXPECT_EQ(descriptors[1].bounds, QRectF(1920, 0, 2560, 1440));
}

TEST_F(DisplayDescriptorsTest, MonitorWithoutNumberIsSkippedAndIndexesStayContiguous) {
    platform.monitors.setMonitors({
        {.id = 1, .name = QStringLiteral("A")},
        {.id = 0, .name = QStringLiteral("B"), .bounds = QRectF(0, 0, 800, 600), .serial = 4},
        {.id = 3, .name = QStringLiteral("C")},
    });
    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();
    ASSERT_EQ(descriptors.size(), 2);
    EXPECT_EQ(descriptors[0].name, QStringLiteral("A"));
    EXPECT_EQ(descriptors[0].index, 1);
    EXPECT_EQ(descriptors[1].name, QStringLiteral("C"));
    EXPECT_EQ(descriptors[1].index, 2);
}

TEST_F(DisplayDescriptorsTest, OnlyMonitorsWithoutNumberGiveAnEmptyList) {
    platform.monitors.setMonitors({{.id = 0, .name = QStringLiteral("A"), .bounds = QRectF(0, 0, 800, 600)}});
    EXPECT_TRUE(ScreenSnapshotService::currentDisplayDescriptors().isEmpty());
}

TEST_F(DisplayDescriptorsTest, AllZeroHardwareNumbersGiveDisplayForm) {
    EXPECT_EQ(ScreenSnapshotService::stableDisplayIdentifier({.id = 3}), QStringLiteral("display-3"));
}

TEST_F(DisplayDescriptorsTest, ZeroSerialWithVendorGivesUnitForm) {
    EXPECT_EQ(
        ScreenSnapshotService::stableDisplayIdentifier({.id = 9, .vendor = 16, .model = 0, .serial = 0, .unit = 1}),
        QStringLiteral("v16-m0-u1"));
}

TEST_F(DisplayDescriptorsTest, ZeroSerialWithModelOnlyGivesUnitForm) {
    EXPECT_EQ(
        ScreenSnapshotService::stableDisplayIdentifier({.id = 9, .vendor = 0, .model = 32, .serial = 0, .unit = 2}),
        QStringLiteral("v0-m32-u2"));
}

TEST_F(DisplayDescriptorsTest, SerialFormWinsOverUnit) {
    EXPECT_EQ(
        ScreenSnapshotService::stableDisplayIdentifier({.id = 9, .vendor = 16, .model = 32, .serial = 7, .unit = 4}),
        QStringLiteral("v16-m32-s7"));
}

TEST_F(DisplayDescriptorsTest, NumbersArePrintedUnsigned) {
    EXPECT_EQ(ScreenSnapshotService::stableDisplayIdentifier(
                  {.id = 4294967295u, .vendor = 4294967295u, .model = 4294967295u, .serial = 4294967295u}),
              QStringLiteral("v4294967295-m4294967295-s4294967295"));
    EXPECT_EQ(ScreenSnapshotService::stableDisplayIdentifier({.id = 4294967295u}),
              QStringLiteral("display-4294967295"));
}

TEST_F(DisplayDescriptorsTest, ListedDescriptorsCarryTheIdentifierOfTheirMonitor) {
    platform.monitors.setMonitors({{.id = 9, .vendor = 16, .model = 32, .serial = 0, .unit = 2}, {.id = 4}});
    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();
    ASSERT_EQ(descriptors.size(), 2);
    EXPECT_EQ(descriptors[0].persistentID, QStringLiteral("v16-m32-u2"));
    EXPECT_EQ(descriptors[1].persistentID, QStringLiteral("display-4"));
}

TEST_F(DisplayDescriptorsTest, AMonitorKnownByAFormerNumberCarriesThatIdentifierBeside) {
    platform.monitors.setMonitors(
        {{.id = 9, .vendor = 16, .model = 32, .serial = 3, .formerId = 9}, {.id = 4, .formerId = 4}, {.id = 5}});
    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();
    ASSERT_EQ(descriptors.size(), 3);
    EXPECT_EQ(descriptors[0].persistentID, QStringLiteral("v16-m32-s3"));
    EXPECT_EQ(descriptors[0].formerPersistentID, QStringLiteral("display-9"));
    // Without EDID numbers the identifier is the former one: nothing to carry.
    EXPECT_EQ(descriptors[1].persistentID, QStringLiteral("display-4"));
    EXPECT_TRUE(descriptors[1].formerPersistentID.isEmpty());
    EXPECT_TRUE(descriptors[2].formerPersistentID.isEmpty());
}

}  // namespace
