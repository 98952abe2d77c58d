// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/displays/ScreenSnapshotService.h"
#include "platform/fake/FakePlatform.h"

namespace {

QualifiedWindow window(pid_t pid, const QString& name, bool onScreen = true) {
    return {QRectF(0, 0, 800, 600), onScreen, pid, name};
}

QStringList names(const QList<DisplayAppGroup>& groups) {
    QStringList result;
    for (const DisplayAppGroup& group : groups) {
        result.append(group.name);
    }
    return result;
}

TEST(GroupedApplications, NamesSortWithoutRegardToCase) {
    const QList<DisplayAppGroup> groups = ScreenSnapshotService::groupedApplications(
        {window(3, QStringLiteral("gamma")), window(2, QStringLiteral("Beta")), window(1, QStringLiteral("alpha"))});
    EXPECT_EQ(names(groups), (QStringList{QStringLiteral("alpha"), QStringLiteral("Beta"), QStringLiteral("gamma")}));
}

TEST(GroupedApplications, TwoProcessesWithTheSameNameGiveTwoGroups) {
    const QList<DisplayAppGroup> groups = ScreenSnapshotService::groupedApplications(
        {window(1, QStringLiteral("Terminal")), window(2, QStringLiteral("Terminal")),
         window(1, QStringLiteral("Terminal"))});
    ASSERT_EQ(groups.size(), 2);
    EXPECT_EQ(groups[0].name, groups[1].name);
    EXPECT_NE(groups[0].pid, groups[1].pid);
    EXPECT_EQ(groups[0].windowCount + groups[1].windowCount, 3);
}

TEST(GroupedApplications, ProcessKeepsFirstNameAndCountsEveryWindow) {
    const QList<DisplayAppGroup> groups = ScreenSnapshotService::groupedApplications(
        {window(1, QStringLiteral("Browser")), window(1, QStringLiteral("Browser Helper"), false),
         window(1, QStringLiteral("Other"))});
    ASSERT_EQ(groups.size(), 1);
    EXPECT_EQ(groups[0], (DisplayAppGroup{1, QStringLiteral("Browser"), 3}));
}

TEST(GroupedApplications, NoWindowsGiveNoGroups) {
    EXPECT_TRUE(ScreenSnapshotService::groupedApplications({}).isEmpty());
}

class CaptureDisplaySnapshots : public ::testing::Test {
protected:
    void SetUp() override {
        QImage picture(16, 9, QImage::Format_RGB32);
        picture.fill(Qt::darkCyan);
        platform.monitors.setMonitors({
            {.id = 1, .name = QStringLiteral("Left"), .bounds = QRectF(0, 0, 1920, 1080)},
            {.id = 2, .name = QStringLiteral("Right"), .bounds = QRectF(1920, 0, 2560, 1440)},
        });
        platform.monitors.setPicture(1, picture);
        platform.monitors.setPicture(2, picture);
        platform.runningApplications.addApplication(100, QStringLiteral("Editor"));
        platform.runningApplications.addApplication(200, QStringLiteral("Mail"));
    }
    QList<DisplaySnapshot> capture() {
        return ScreenSnapshotService::captureDisplaySnapshots(ScreenSnapshotService::currentDisplayDescriptors());
    }

    FakePlatform platform;
};

TEST_F(CaptureDisplaySnapshots, EmptyInputGivesEmptyOutput) {
    EXPECT_TRUE(ScreenSnapshotService::captureDisplaySnapshots({}).isEmpty());
}

TEST_F(CaptureDisplaySnapshots, DisplayWithoutWindowsHasZeroCountsAndAPicture) {
    const QList<DisplaySnapshot> snapshots = capture();
    ASSERT_EQ(snapshots.size(), 2);
    for (const DisplaySnapshot& snapshot : snapshots) {
        EXPECT_EQ(snapshot.visibleWindowCount, 0);
        EXPECT_EQ(snapshot.invisibleWindowCount, 0);
        EXPECT_TRUE(snapshot.appGroups.isEmpty());
        ASSERT_TRUE(snapshot.previewImage.has_value());
        EXPECT_EQ(snapshot.previewImage->size(), QSize(16, 9));
    }
}

TEST_F(CaptureDisplaySnapshots, SnapshotCopiesTheDescriptorFields) {
    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();
    const QList<DisplaySnapshot> snapshots = ScreenSnapshotService::captureDisplaySnapshots(descriptors);
    ASSERT_EQ(snapshots.size(), descriptors.size());
    for (qsizetype i = 0; i < descriptors.size(); ++i) {
        EXPECT_EQ(snapshots[i].id, descriptors[i].id);
        EXPECT_EQ(snapshots[i].persistentID, descriptors[i].persistentID);
        EXPECT_EQ(snapshots[i].index, descriptors[i].index);
        EXPECT_EQ(snapshots[i].name, descriptors[i].name);
        EXPECT_EQ(snapshots[i].bounds, descriptors[i].bounds);
    }
}

TEST_F(CaptureDisplaySnapshots, WindowAcrossTwoDisplaysCountsOnBoth) {
    platform.windowList.setWindows(
        {{.id = 1, .pid = 100, .ownerName = QStringLiteral("Editor"), .frame = QRectF(1500, 100, 800, 600)}});
    const QList<DisplaySnapshot> snapshots = capture();
    ASSERT_EQ(snapshots.size(), 2);
    for (const DisplaySnapshot& snapshot : snapshots) {
        EXPECT_EQ(snapshot.visibleWindowCount, 1);
        EXPECT_EQ(snapshot.appGroups, (QList<DisplayAppGroup>{{100, QStringLiteral("Editor"), 1}}));
    }
}

TEST_F(CaptureDisplaySnapshots, WindowTouchingAnEdgeBelongsOnlyToItsDisplay) {
    platform.windowList.setWindows(
        {{.id = 1, .pid = 100, .ownerName = QStringLiteral("Editor"), .frame = QRectF(1120, 100, 800, 600)}});
    const QList<DisplaySnapshot> snapshots = capture();
    EXPECT_EQ(snapshots[0].visibleWindowCount, 1);
    EXPECT_EQ(snapshots[1].visibleWindowCount, 0);
    EXPECT_TRUE(snapshots[1].appGroups.isEmpty());
}

TEST_F(CaptureDisplaySnapshots, MinimisedWindowCountsAsInvisibleWhereItsFrameLies) {
    platform.windowList.setWindows({
        {.id = 1, .pid = 100, .ownerName = QStringLiteral("Editor"), .frame = QRectF(100, 100, 800, 600)},
        {.id = 2,
         .pid = 200,
         .ownerName = QStringLiteral("Mail"),
         .frame = QRectF(300, 200, 800, 600),
         .onScreen = false},
    });
    const QList<DisplaySnapshot> snapshots = capture();
    EXPECT_EQ(snapshots[0].visibleWindowCount, 1);
    EXPECT_EQ(snapshots[0].invisibleWindowCount, 1);
    EXPECT_EQ(snapshots[0].appGroups,
              (QList<DisplayAppGroup>{{100, QStringLiteral("Editor"), 1}, {200, QStringLiteral("Mail"), 1}}));
    EXPECT_EQ(snapshots[1].visibleWindowCount, 0);
    EXPECT_EQ(snapshots[1].invisibleWindowCount, 0);
}

TEST_F(CaptureDisplaySnapshots, FailedPictureLeavesPreviewAbsentButCountsFilled) {
    platform.monitors.setPicture(2, QImage());
    platform.windowList.setWindows(
        {{.id = 1, .pid = 100, .ownerName = QStringLiteral("Editor"), .frame = QRectF(2000, 100, 800, 600)}});
    const QList<DisplaySnapshot> snapshots = capture();
    EXPECT_TRUE(snapshots[0].previewImage.has_value());
    EXPECT_FALSE(snapshots[1].previewImage.has_value());
    EXPECT_EQ(snapshots[1].visibleWindowCount, 1);
    EXPECT_EQ(snapshots[1].invisibleWindowCount, 0);
    EXPECT_EQ(snapshots[1].appGroups.size(), 1);
}

TEST_F(CaptureDisplaySnapshots, WindowListIsReadOnceForAllDisplays) {
    capture();
    EXPECT_EQ(platform.windowList.queryCount(), 1);
    EXPECT_EQ(platform.monitors.captureCount(), 2);
}

}  // namespace
