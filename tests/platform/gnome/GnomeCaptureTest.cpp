// SPDX-License-Identifier: MIT
#include "platform/Monitors.h"
#include "platform/Platform.h"
#include "platform/SessionCheck.h"
#include "platform/WindowControl.h"
#include "platform/gnome/GnomeMonitors.h"
#include "platform/gnome/GnomeShellBridge.h"
#include "tests/platform/gnome/GnomeSessionFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

using GnomeCaptureTest = GnomeSessionFixture;

std::optional<Monitor> monitorAt(const QRect& bounds) {
    for (const Monitor& monitor : Platform::services().monitors->monitors()) {
        if (monitor.bounds == QRectF(bounds)) {
            return monitor;
        }
    }
    return std::nullopt;
}

TEST_F(GnomeCaptureTest, AMonitorsPictureShowsWhatAClientDrewWhereItIs) {
    ASSERT_TRUE(wayland.open(QStringLiteral("red"), QStringLiteral("title=red-window w=400 h=300 color=#e01010")));
    const auto entry = waitForWindow(QStringLiteral("red-window"));
    ASSERT_TRUE(entry);
    const QList<QRect> monitors = layout();
    const QPointF place = monitors[1].topLeft() + QPointF(250, 150);
    ASSERT_EQ(Platform::services().windowControl->move(entry->id, place), Result::Ok);
    const QRectF frame = *Platform::services().windowControl->frame(entry->id).value;
    const std::optional<Monitor> second = monitorAt(monitors[1]);
    ASSERT_TRUE(second);

    // The window shows once the Shell has drawn it in its new place.
    const QPoint centre = (frame.center() - QPointF(monitors[1].topLeft())).toPoint();
    QImage picture;
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        picture = Platform::services().monitors->capture(second->id);
        return !picture.isNull() && QColor(picture.pixel(centre)) == QColor(QStringLiteral("#e01010"));
    })) << (picture.isNull() ? std::string("no picture") : QColor(picture.pixel(centre)).name().toStdString());
    EXPECT_EQ(picture.size(), monitors[1].size());
    // Outside the window the picture is the desktop's, not the window's colour.
    const QPoint outside = centre + QPoint(static_cast<int>(frame.width()), 0);
    EXPECT_NE(QColor(picture.pixel(outside)), QColor(QStringLiteral("#e01010")));

    const std::optional<Monitor> first = monitorAt(monitors[0]);
    ASSERT_TRUE(first);
    const QImage other = Platform::services().monitors->capture(first->id);
    ASSERT_FALSE(other.isNull());
    EXPECT_EQ(other.size(), monitors[0].size());
    EXPECT_NE(QColor(other.pixel(centre)), QColor(QStringLiteral("#e01010")));
    EXPECT_EQ(Platform::services().sessionCheck->screenCapture().availability, Availability::Available);
}

TEST_F(GnomeCaptureTest, ACaptureThatFailsSaysWhy) {
    auto& monitors = static_cast<GnomeMonitors&>(*Platform::services().monitors);
    EXPECT_TRUE(monitors.capture(424242).isNull());
    EXPECT_EQ(monitors.lastCaptureProblem(), QStringLiteral("the monitor is not connected"));
    // The Shell's own refusal comes back in its words.
    QString problem;
    EXPECT_FALSE(platform->bridge().captureMonitor(7, &problem));
    EXPECT_TRUE(problem.contains(QLatin1String("no monitor 7"))) << problem.toStdString();
}

}  // namespace
