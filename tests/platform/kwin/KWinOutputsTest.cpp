// SPDX-License-Identifier: MIT
#include <QImage>
#include <QProcess>

#include "platform/Monitors.h"
#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "platform/kwin/KWinMonitorList.h"
#include "platform/kwin/KWinOutputDevices.h"
#include "tests/platform/kwin/KWinSessionFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

using KWinOutputsTest = KWinSessionFixture;

// The colour of the picture at a point of the global display space on that monitor.
QColor colourAt(const QImage& picture, const Monitor& monitor, const QPointF& point) {
    const double scale = picture.width() / monitor.bounds.width();
    return QColor(picture.pixel(((point - monitor.bounds.topLeft()) * scale).toPoint()));
}

// Turns an output of the session on or off (scripts/virtual-kwin.sh output).
bool switchOutput(const QString& name, bool on) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(QStringLiteral("bash"), {QStringLiteral(LATTICA_VIRTUAL_KWIN_SCRIPT), QStringLiteral("output"), name,
                                           on ? QStringLiteral("enable") : QStringLiteral("disable")});
    return process.waitForFinished(30000) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

TEST_F(KWinOutputsTest, EachOutputsCaptureShowsWhatTheClientsDrewThere) {
    const QList<QColor> colours{QColor(0xe0, 0x20, 0x20), QColor(0x20, 0xc0, 0x40), QColor(0x20, 0x40, 0xe0)};
    const QList<Monitor> monitors = Platform::services().monitors->monitors();
    ASSERT_EQ(monitors.size(), colours.size());
    WindowControl& control = *Platform::services().windowControl;
    QList<QRectF> frames;
    for (qsizetype i = 0; i < monitors.size(); ++i) {
        const QString title = QStringLiteral("painted-%1").arg(i);
        ASSERT_TRUE(wayland.open(QStringLiteral("p%1").arg(i),
                                 QStringLiteral("title=%1 w=240 h=160 color=%2").arg(title, colours[i].name())));
        const auto entry = waitForWindow(title);
        ASSERT_TRUE(entry);
        // A different place on each output, so that a capture of the wrong output cannot match.
        const QPointF place = monitors[i].bounds.topLeft() + QPointF(60 + 150 * i, 80 + 90 * i);
        ASSERT_EQ(control.move(entry->id, place), Result::Ok);
        frames.append(*control.frame(entry->id).value);
        ASSERT_TRUE(monitors[i].bounds.contains(frames.last())) << i;
    }

    for (qsizetype i = 0; i < monitors.size(); ++i) {
        QImage picture;
        // KWin shows a window's new place from its next frame on.
        const bool matched = VirtualDesktop::waitUntil([&] {
            picture = Platform::services().monitors->capture(monitors[i].id);
            return !picture.isNull() && colourAt(picture, monitors[i], frames[i].center()) == colours[i];
        });
        ASSERT_TRUE(matched) << "output " << i << " capture " << picture.width() << "x" << picture.height();
        // The picture covers the whole output at its own resolution.
        EXPECT_NEAR(picture.width() / monitors[i].bounds.width(), picture.height() / monitors[i].bounds.height(), 0.01);
        // Inside the window near each corner the client's colour; well outside it something else.
        const QRectF inner = frames[i].adjusted(30, 40, -30, -30);
        for (const QPointF& point : {inner.topLeft(), inner.topRight(), inner.bottomLeft(), inner.bottomRight()}) {
            EXPECT_EQ(colourAt(picture, monitors[i], point), colours[i]) << "output " << i;
        }
        const QPointF outside = frames[i].bottomRight() + QPointF(100, 100);
        ASSERT_TRUE(monitors[i].bounds.contains(outside));
        for (const QColor& colour : colours) {
            EXPECT_NE(colourAt(picture, monitors[i], outside), colour) << "output " << i;
        }
    }
}

TEST_F(KWinOutputsTest, AnOutputTurnedOffLeavesTheListAndComesBackWithItsIdentity) {
    Monitors& monitors = *Platform::services().monitors;
    const QList<Monitor> before = monitors.monitors();
    ASSERT_EQ(before.size(), 3);
    int changes = 0;
    QObject::connect(&monitors, &Monitors::changed, [&changes] { ++changes; });

    ASSERT_TRUE(wayland.open(QStringLiteral("stray"), QStringLiteral("title=stranded-window w=300 h=200")));
    const auto entry = waitForWindow(QStringLiteral("stranded-window"));
    ASSERT_TRUE(entry);
    WindowControl& control = *Platform::services().windowControl;
    ASSERT_EQ(control.move(entry->id, before[2].bounds.topLeft() + QPointF(40, 40)), Result::Ok);

    ASSERT_TRUE(switchOutput(before[2].name, false));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return changes > 0 && monitors.monitors().size() == 2; }))
        << monitors.monitors().size() << " monitors after " << changes << " changes";
    const QList<Monitor> without = monitors.monitors();
    if (const std::unique_ptr<KWinOutputDevices> reader = KWinOutputDevices::connect()) {
        for (const KWinOutputDevice& device : reader->devices()) {
            EXPECT_EQ(device.enabled, device.name != before[2].name) << device.name.toStdString();
        }
    } else {
        ADD_FAILURE() << "no output devices";
    }
    EXPECT_EQ(without[0].id, before[0].id);
    EXPECT_EQ(without[1].id, before[1].id);
    EXPECT_TRUE(near(without[1].bounds, before[1].bounds));
    // KWin takes the window of the output that went away onto one that is left.
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        const Reading<QRectF> frame = control.frame(entry->id);
        return frame.result == Result::Ok &&
               (without[0].bounds.intersects(*frame.value) || without[1].bounds.intersects(*frame.value));
    }));
    // It still moves.
    const QPointF onFirst = without[0].bounds.topLeft() + QPointF(100, 100);
    ASSERT_EQ(control.move(entry->id, onFirst), Result::Ok);
    EXPECT_EQ(control.frame(entry->id).value->topLeft(), onFirst);

    const int changesBefore = changes;
    ASSERT_TRUE(switchOutput(before[2].name, true));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return changes > changesBefore && monitors.monitors().size() == 3; }));
    const QList<Monitor> after = monitors.monitors();
    for (qsizetype i = 0; i < after.size(); ++i) {
        EXPECT_EQ(after[i].id, before[i].id) << i;
        EXPECT_EQ(after[i].name, before[i].name) << i;
    }
    EXPECT_EQ(after[2].bounds.size(), before[2].bounds.size());
}

TEST_F(KWinOutputsTest, OutputDevicesDescribeEachVirtualOutputWithoutEdid) {
    const std::unique_ptr<KWinOutputDevices> reader = KWinOutputDevices::connect();
    ASSERT_TRUE(reader);
    const QList<KWinOutputDevice> devices = reader->devices();
    const QList<QRect> wanted = layout();
    ASSERT_EQ(devices.size(), wanted.size());
    for (qsizetype i = 0; i < devices.size(); ++i) {
        // KWin's virtual outputs have no EDID; their connectors are their only identity.
        EXPECT_EQ(devices[i].name, QStringLiteral("Virtual-%1").arg(i));
        EXPECT_TRUE(devices[i].enabled);
        EXPECT_TRUE(devices[i].edid.isEmpty());
        EXPECT_FALSE(devices[i].uuid.isEmpty());
        EXPECT_TRUE(near(devices[i].geometry(), wanted[i], 3)) << i;
    }
    // So each monitor keeps the number of its connector, as before EDIDs were read.
    const QList<Monitor> monitors = Platform::services().monitors->monitors();
    ASSERT_EQ(monitors.size(), wanted.size());
    for (const Monitor& monitor : monitors) {
        EXPECT_EQ(monitor.id, KWinMonitorList::idForConnector(monitor.name));
        EXPECT_EQ(monitor.vendor, 0u);
        EXPECT_EQ(monitor.serial, 0u);
        EXPECT_EQ(monitor.formerId, 0u);
    }
}

}  // namespace
