// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "app/permissions/PermissionService.h"
#include "platform/x11/X11Platform.h"
#include "tests/support/VirtualDesktop.h"
#include "tests/testclient/TestClient.h"

namespace {

class DesktopFailuresTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_platform = X11Platform::connect();
        ASSERT_NE(m_platform, nullptr);
        m_platform->install();
    }
    void TearDown() override { Platform::install({}); }

    std::unique_ptr<X11Platform> m_platform;
};

// Runs only on a desktop started without a window manager.
TEST_F(DesktopFailuresTest, WithoutWindowManagerMovesAskForThePermission) {
    if (qEnvironmentVariable("LATTICA_TEST_WM") != QLatin1String("none")) {
        GTEST_SKIP() << "needs a desktop without a window manager";
    }
    const PermissionState state = PermissionService::currentState();
    EXPECT_TRUE(state.screenRecordingGranted);
    EXPECT_FALSE(state.accessibilityGranted);
    AppController controller;
    EXPECT_FALSE(controller.permissionState().accessibilityGranted);
    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();
    ASSERT_GE(descriptors.size(), 2);
    controller.moveWindows(DisplaySnapshot::placeholder(descriptors[0]), DisplaySnapshot::placeholder(descriptors[1]));
    EXPECT_EQ(controller.statusMessage(), QStringLiteral("Window control is required to move windows."));
    controller.setStatusMessage({});
    controller.moveFocusedWindow(descriptors[1].persistentID);
    EXPECT_EQ(controller.statusMessage(), QStringLiteral("Window control is required to move windows."));
    // The panel asks for the permission instead of showing cards.
    controller.refreshForMenuOpen();
    EXPECT_TRUE(controller.displays().isEmpty());
    EXPECT_FALSE(controller.isLoadingPreviews());
}

TEST_F(DesktopFailuresTest, MonitorRemovedBetweenListingAndCaptureStillGivesOneSnapshotPerDisplay) {
    if (qEnvironmentVariable("LATTICA_TEST_WM") == QLatin1String("none")) {
        GTEST_SKIP() << "needs a window manager";
    }
    TestClient client;
    ASSERT_TRUE(client.start());
    const QList<QRect> layout = VirtualDesktop::layout();
    const QRect last = layout.last();
    ASSERT_NE(client.open(QStringLiteral("a"), QStringLiteral("x=%1 y=100 w=400 h=300").arg(last.x() + 100)), 0u);
    ASSERT_NE(client.open(QStringLiteral("b"), QStringLiteral("x=100 y=100 w=400 h=300")), 0u);

    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();
    ASSERT_EQ(descriptors.size(), layout.size());
    ASSERT_EQ(VirtualDesktop::run(QStringLiteral("xrandr"),
                                  {QStringLiteral("--delmonitor"), QStringLiteral("VIRTUAL-%1").arg(layout.size())}),
              0);
    const QList<DisplaySnapshot> snapshots = ScreenSnapshotService::captureDisplaySnapshots(descriptors);
    ASSERT_EQ(snapshots.size(), descriptors.size());
    for (int i = 0; i < snapshots.size(); ++i) {
        EXPECT_EQ(snapshots[i].persistentID, descriptors[i].persistentID);
        ASSERT_TRUE(snapshots[i].visibleWindowCount.has_value());
        ASSERT_TRUE(snapshots[i].invisibleWindowCount.has_value());
    }
    // Both windows are counted once: the one on the removed monitor's area either stays there or is
    // pulled onto the first monitor by the window manager, as on a real unplug.
    EXPECT_EQ(*snapshots.first().visibleWindowCount + *snapshots.last().visibleWindowCount, 2);
    EXPECT_GE(*snapshots.first().visibleWindowCount, 1);
    client.exit();
    ASSERT_EQ(VirtualDesktop::run(QStringLiteral("xrandr"),
                                  {QStringLiteral("--setmonitor"), QStringLiteral("VIRTUAL-%1").arg(layout.size()),
                                   VirtualDesktop::monitorGeometry(last), QStringLiteral("none")}),
              0);
}

}  // namespace
