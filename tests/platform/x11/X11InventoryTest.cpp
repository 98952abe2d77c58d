// SPDX-License-Identifier: MIT
// The core's inventory (qualifying windows, snapshots per display) on the real X11 services.
#include <QPointF>
#include <atomic>
#include <thread>

#include "app/displays/ScreenSnapshotService.h"
#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "tests/platform/x11/X11DesktopFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

class X11InventoryTest : public X11DesktopFixture {
protected:
    QList<QualifiedWindow> ours() {
        QList<QualifiedWindow> windows;
        for (const QualifiedWindow& window : ScreenSnapshotService::qualifyingWindows()) {
            if (window.ownerPID == client.pid()) {
                windows.append(window);
            }
        }
        return windows;
    }
};

TEST_F(X11InventoryTest, OnlyUserWindowsQualify) {
    const quint32 first = client.open(QStringLiteral("first"), placement(0, 100, 100, 500, 400));
    const quint32 second = client.open(QStringLiteral("second"), placement(1, 100, 100, 600, 400));
    const quint32 dialog =
        client.open(QStringLiteral("dialog"), placement(2, 100, 100, 300, 200) + QStringLiteral(" type=dialog"));
    // (A window with opacity 0 counts unless a compositing manager runs: X11CompositorOpacityTest.)
    for (const QString& other :
         {QStringLiteral("type=dock"), QStringLiteral("type=desktop"), QStringLiteral("type=override"),
          QStringLiteral("states=above"), QStringLiteral("type=menu")}) {
        ASSERT_NE(client.open(other.section(QLatin1Char('='), 1),
                              placement(0, 300, 300, 300, 200) + QLatin1Char(' ') + other),
                  0u)
            << other.toStdString();
    }
    // Too small to count, even with its decorations (the frame stays under 120 points wide).
    ASSERT_NE(client.open(QStringLiteral("tiny"), placement(0, 600, 600, 60, 40)), 0u);
    ASSERT_NE(first, 0u);
    ASSERT_NE(second, 0u);
    ASSERT_NE(dialog, 0u);
    const QList<QualifiedWindow> windows = ours();
    ASSERT_EQ(windows.size(), 3);
    QList<QRectF> bounds;
    for (const QualifiedWindow& window : windows) {
        bounds.append(window.bounds);
        EXPECT_TRUE(window.isOnScreen);
        EXPECT_FALSE(window.ownerName.isEmpty());
    }
    for (quint32 window : {first, second, dialog}) {
        EXPECT_TRUE(bounds.contains(QRectF(frameFromTree(window)))) << window;
    }
    // Nothing of the tray host's qualifies.
    for (const QualifiedWindow& window : ScreenSnapshotService::qualifyingWindows()) {
        EXPECT_NE(window.ownerName.toLower(), QStringLiteral("trayer"));
    }
}

TEST_F(X11InventoryTest, SnapshotsCountVisibleAndMinimisedWindowsPerDisplayAndCarryPictures) {
    ASSERT_NE(client.open(QStringLiteral("a"), placement(0, 100, 100, 500, 400)), 0u);
    ASSERT_NE(client.open(QStringLiteral("b"), placement(0, 700, 300, 500, 400)), 0u);
    ASSERT_NE(client.open(QStringLiteral("c"), placement(0, 300, 500, 500, 300) + QStringLiteral(" states=minimized")),
              0u);
    ASSERT_NE(client.open(QStringLiteral("d"), placement(1, 100, 100, 500, 400)), 0u);
    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();
    ASSERT_EQ(descriptors.size(), monitors().size());
    const QList<DisplaySnapshot> snapshots = ScreenSnapshotService::captureDisplaySnapshots(descriptors);
    ASSERT_EQ(snapshots.size(), descriptors.size());
    for (const DisplaySnapshot& snapshot : snapshots) {
        ASSERT_TRUE(snapshot.previewImage.has_value());
        EXPECT_EQ(snapshot.previewImage->size(), snapshot.bounds.size().toSize());
        const int monitor = static_cast<int>(monitors().indexOf(snapshot.bounds.toRect()));
        ASSERT_GE(monitor, 0);
        const int visible = monitor == 0 ? 2 : (monitor == 1 ? 1 : 0);
        const int invisible = monitor == 0 ? 1 : 0;
        EXPECT_EQ(snapshot.visibleWindowCount, visible) << monitor;
        EXPECT_EQ(snapshot.invisibleWindowCount, invisible) << monitor;
        if (visible + invisible > 0) {
            ASSERT_EQ(snapshot.appGroups.size(), 1) << monitor;
            EXPECT_EQ(snapshot.appGroups[0].pid, client.pid());
            EXPECT_EQ(snapshot.appGroups[0].windowCount, visible + invisible);
        } else {
            EXPECT_TRUE(snapshot.appGroups.isEmpty());
        }
    }
}

TEST_F(X11InventoryTest, WindowAcrossTwoMonitorsCountsOnBoth) {
    const QRect first = VirtualDesktop::layout().value(0);
    ASSERT_NE(client.open(QStringLiteral("across"), QStringLiteral("x=%1 y=200 w=600 h=400").arg(first.right() - 300)),
              0u);
    const QList<DisplaySnapshot> snapshots =
        ScreenSnapshotService::captureDisplaySnapshots(ScreenSnapshotService::currentDisplayDescriptors());
    for (const DisplaySnapshot& snapshot : snapshots) {
        const int monitor = static_cast<int>(monitors().indexOf(snapshot.bounds.toRect()));
        const int expected = monitor <= 1 ? 1 : 0;
        EXPECT_EQ(snapshot.visibleWindowCount, expected) << monitor;
        EXPECT_EQ(snapshot.appGroups.size(), expected) << monitor;
    }
}

TEST_F(X11InventoryTest, SnapshotsOnABackgroundThreadWhileTheMainThreadMovesWindows) {
    const quint32 moving = client.open(QStringLiteral("moving"), placement(0, 100, 100, 400, 300));
    ASSERT_NE(client.open(QStringLiteral("still"), placement(1, 100, 100, 400, 300)), 0u);
    ASSERT_NE(moving, 0u);
    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();
    std::atomic<bool> stop{false};
    std::atomic<int> rounds{0};
    std::atomic<int> incomplete{0};
    // The preview capture runs off the main thread while moves use the shared connection on it.
    std::thread capture([&] {
        while (!stop) {
            const QList<DisplaySnapshot> snapshots = ScreenSnapshotService::captureDisplaySnapshots(descriptors);
            int windows = 0;
            for (const DisplaySnapshot& snapshot : snapshots) {
                if (!snapshot.previewImage) {
                    ++incomplete;
                }
                windows += snapshot.visibleWindowCount.value_or(0) + snapshot.invisibleWindowCount.value_or(0);
            }
            if (windows < 2) {
                ++incomplete;
            }
            ++rounds;
        }
    });
    WindowControl& control = *Platform::services().windowControl;
    int moves = 0;
    for (int i = 0; i < 20; ++i) {
        const QPointF target = monitors().value(i % 2).topLeft() + QPointF(100 + 10 * i, 100);
        if (control.move(moving, target) == Result::Ok) {
            ++moves;
        }
    }
    VirtualDesktop::waitUntil([&] { return rounds >= 3; }, 10000);
    stop = true;
    capture.join();
    EXPECT_EQ(moves, 20);
    EXPECT_GE(rounds, 3);
    EXPECT_EQ(incomplete, 0);
}

}  // namespace
