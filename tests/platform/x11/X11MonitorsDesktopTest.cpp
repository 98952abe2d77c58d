// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <cstdlib>

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
    X11Monitors* x11Monitors() const { return static_cast<X11Monitors*>(monitors()); }

    // A round trip: every event the server sent before answering it has been read and handed to the
    // handlers, so the events of every change made so far have reached the monitors.
    void takeInServerEvents() const {
        X11Connection& connection = m_platform->connection();
        std::free(xcb_get_input_focus_reply(connection.xcb(), xcb_get_input_focus(connection.xcb()), nullptr));
        connection.dispatchPendingEvents();
    }
    // Every change made so far has been looked at, and announced if it changed the monitors.
    void settle() const {
        takeInServerEvents();
        ASSERT_TRUE(VirtualDesktop::waitUntil([this] { return !x11Monitors()->isChangePending(); }));
    }

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
    // Any late events of the same change must not announce it again.
    settle();
    EXPECT_EQ(spy.count(), 1);
    EXPECT_EQ(ScreenSnapshotService::currentDisplayDescriptors().size(), count - 1);

    defineMonitor(count - 1, false);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return spy.count() >= 2; }));
    settle();
    EXPECT_EQ(spy.count(), 2);
    EXPECT_EQ(ScreenSnapshotService::currentDisplayDescriptors().size(), count);
}

TEST_F(X11MonitorsDesktopTest, NothingIsLookedAtWhileNothingChanges) {
    settle();
    QSignalSpy spy(monitors(), &Monitors::changed);
    // Other news of the root window is no reason to read the monitors.
    ASSERT_EQ(VirtualDesktop::run(
                  QStringLiteral("xprop"),
                  {QStringLiteral("-root"), QStringLiteral("-f"), QStringLiteral("_LATTICA_TEST"), QStringLiteral("8s"),
                   QStringLiteral("-set"), QStringLiteral("_LATTICA_TEST"), QStringLiteral("x")}),
              0);
    takeInServerEvents();
    EXPECT_FALSE(x11Monitors()->isChangePending());
    EXPECT_EQ(spy.count(), 0);
}

TEST_F(X11MonitorsDesktopTest, NewsOfTheRootThatChangesNoMonitorIsLookedAtButNotAnnounced) {
    settle();
    QSignalSpy spy(monitors(), &Monitors::changed);
    // The server's report that the root window was configured, with nothing changed.
    X11Connection& connection = m_platform->connection();
    const xcb_screen_t* screen = connection.screen();
    xcb_configure_notify_event_t event{};
    event.response_type = XCB_CONFIGURE_NOTIFY;
    event.event = screen->root;
    event.window = screen->root;
    event.width = screen->width_in_pixels;
    event.height = screen->height_in_pixels;
    xcb_send_event(connection.xcb(), 0, screen->root, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    takeInServerEvents();
    EXPECT_TRUE(x11Monitors()->isChangePending());
    settle();
    EXPECT_EQ(spy.count(), 0);
}

TEST_F(X11MonitorsDesktopTest, MovingAMonitorIsAnnouncedWithItsNewBounds) {
    QSignalSpy spy(monitors(), &Monitors::changed);
    const int count = VirtualDesktop::layout().size();
    const QString name = QStringLiteral("VIRTUAL-%1").arg(count);
    ASSERT_EQ(VirtualDesktop::run(QStringLiteral("xrandr"), {QStringLiteral("--delmonitor"), name}), 0);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return spy.count() >= 1; }));
    settle();
    const QRect last = VirtualDesktop::layout().last();
    const QRect lower(last.x(), last.y() + 10, last.width(), last.height() - 10);
    ASSERT_EQ(
        VirtualDesktop::run(QStringLiteral("xrandr"), {QStringLiteral("--setmonitor"), name,
                                                       VirtualDesktop::monitorGeometry(lower), QStringLiteral("none")}),
        0);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return spy.count() >= 2; }));
    settle();
    EXPECT_EQ(spy.count(), 2);
    const QList<Monitor> listed = monitors()->monitors();
    ASSERT_EQ(listed.size(), count);
    EXPECT_EQ(listed.last().bounds.height(), lower.height());
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
