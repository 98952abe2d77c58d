// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QSignalSpy>

#include "app/displays/ScreenSnapshotService.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Monitors.h"
#include "platform/x11/X11Platform.h"
#include "tests/support/VirtualDesktop.h"

namespace {

class X11MonitorsDesktopTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_platform = X11Platform::connect();
        ASSERT_NE(m_platform, nullptr) << "no X server on DISPLAY";
        m_platform->install();
    }
    void TearDown() override {
        // Put the layout back the way the desktop started, for the next test.
        const QList<QRect> monitors = VirtualDesktop::layout();
        for (int i = 0; i < monitors.size(); ++i) {
            VirtualDesktop::run(QStringLiteral("xrandr"),
                                {QStringLiteral("--delmonitor"), QStringLiteral("VIRTUAL-%1").arg(i + 1)});
        }
        for (int i = 0; i < monitors.size(); ++i) {
            defineMonitor(i, i == 0);
        }
        Platform::install({});
    }

    static void defineMonitor(int i, bool primary) {
        const QRect rect = VirtualDesktop::layout().at(i);
        const QString name = (primary ? QStringLiteral("*") : QString()) + QStringLiteral("VIRTUAL-%1").arg(i + 1);
        const QString geometry = VirtualDesktop::monitorGeometry(rect);
        ASSERT_EQ(
            VirtualDesktop::run(QStringLiteral("xrandr"), {QStringLiteral("--setmonitor"), name, geometry,
                                                           i == 0 ? QStringLiteral("screen") : QStringLiteral("none")}),
            0);
    }

    Monitors* monitors() const { return m_platform->services().monitors; }

    std::unique_ptr<X11Platform> m_platform;
};

TEST_F(X11MonitorsDesktopTest, DescriptorsListMonitorsInScreenOrderWithIndexesNamesAndBounds) {
    const QList<QRect> layout = VirtualDesktop::layout();
    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();
    ASSERT_EQ(descriptors.size(), layout.size());
    for (int i = 0; i < descriptors.size(); ++i) {
        EXPECT_EQ(descriptors[i].index, i + 1);
        EXPECT_EQ(descriptors[i].bounds, QRectF(layout[i]));
        EXPECT_FALSE(descriptors[i].persistentID.isEmpty());
    }
    // The first monitor carries the output "screen"; the others are named after themselves.
    EXPECT_EQ(descriptors[0].name, QStringLiteral("screen"));
    EXPECT_EQ(descriptors[1].name, QStringLiteral("VIRTUAL-2"));
    // Virtual monitors report no EDID, so they are told apart by their display number.
    EXPECT_EQ(descriptors[1].persistentID, QStringLiteral("display-%1").arg(descriptors[1].id));
}

TEST_F(X11MonitorsDesktopTest, MakingAnotherMonitorPrimaryChangesOrderAndOrigin) {
    const QList<QRect> layout = VirtualDesktop::layout();
    ASSERT_GE(layout.size(), 2);
    ASSERT_EQ(
        VirtualDesktop::run(QStringLiteral("xrandr"), {QStringLiteral("--delmonitor"), QStringLiteral("VIRTUAL-2")}),
        0);
    defineMonitor(1, true);
    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();
    ASSERT_EQ(descriptors.size(), layout.size());
    EXPECT_EQ(descriptors[0].name, QStringLiteral("VIRTUAL-2"));
    EXPECT_EQ(descriptors[0].index, 1);
    EXPECT_EQ(descriptors[0].bounds, QRectF(0, 0, layout[1].width(), layout[1].height()));
    // The former main monitor now lies to the left of the origin.
    EXPECT_EQ(descriptors[1].name, QStringLiteral("screen"));
    EXPECT_EQ(descriptors[1].bounds, QRectF(-layout[1].x(), 0, layout[0].width(), layout[0].height()));
}

TEST_F(X11MonitorsDesktopTest, AddingAndRemovingAMonitorSignalsOncePerChange) {
    QSignalSpy spy(monitors(), &Monitors::changed);
    const int count = VirtualDesktop::layout().size();
    ASSERT_EQ(VirtualDesktop::run(QStringLiteral("xrandr"),
                                  {QStringLiteral("--delmonitor"), QStringLiteral("VIRTUAL-%1").arg(count)}),
              0);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return spy.count() >= 1; }));
    // Let any late events of the same change arrive; they must not be announced again.
    VirtualDesktop::waitUntil([] { return false; }, 300);
    EXPECT_EQ(spy.count(), 1);
    EXPECT_EQ(ScreenSnapshotService::currentDisplayDescriptors().size(), count - 1);

    defineMonitor(count - 1, false);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return spy.count() >= 2; }));
    VirtualDesktop::waitUntil([] { return false; }, 300);
    EXPECT_EQ(spy.count(), 2);
    EXPECT_EQ(ScreenSnapshotService::currentDisplayDescriptors().size(), count);
}

TEST_F(X11MonitorsDesktopTest, CaptureOfAMonitorHasItsSize) {
    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();
    ASSERT_FALSE(descriptors.isEmpty());
    const QImage image = monitors()->capture(descriptors.last().id);
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(image.size(), descriptors.last().bounds.size().toSize());
}

TEST_F(X11MonitorsDesktopTest, UnknownDisplayIsNotListedAndHasNoPicture) {
    for (const Monitor& monitor : monitors()->monitors()) {
        EXPECT_NE(monitor.id, 0xdeadbeefu);
    }
    EXPECT_TRUE(monitors()->capture(0xdeadbeef).isNull());
}

TEST_F(X11MonitorsDesktopTest, OnlyThePrimaryMonitorIsMarkedPrimaryAndItComesFirst) {
    const QList<Monitor> listed = monitors()->monitors();
    ASSERT_EQ(listed.size(), VirtualDesktop::layout().size());
    EXPECT_TRUE(listed[0].primary);
    EXPECT_EQ(listed[0].bounds.topLeft(), QPointF(0, 0));
    for (qsizetype i = 1; i < listed.size(); ++i) {
        EXPECT_FALSE(listed[i].primary);
        EXPECT_NE(listed[i].id, 0u);
    }
}

}  // namespace
