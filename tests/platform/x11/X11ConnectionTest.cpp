// SPDX-License-Identifier: MIT
// The connection's error reporting, the EWMH check and the platform's lifetime, on the virtual desktop.
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QLoggingCategory>
#include <QStringList>

#include "platform/HotKeys.h"
#include "platform/Monitors.h"
#include "platform/Platform.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Ewmh.h"
#include "platform/x11/X11Platform.h"
#include "platform/x11/XcbReply.h"

namespace {

// Carbon codes: the A key with control and option.
constexpr quint32 kKeyA = 0;
constexpr quint32 kControlOption = 0x1000 | 0x800;

QStringList g_connectionLog;

void recordConnectionLog(QtMsgType, const QMessageLogContext& context, const QString& message) {
    if (context.category != nullptr && QByteArray(context.category) == "lattica.x11.connection") {
        g_connectionLog.append(message);
    }
}

bool windowManagerExpected() {
    return qEnvironmentVariable("LATTICA_TEST_WM") != QLatin1String("none");
}

void roundTrip(X11Connection& connection) {
    xcb_connection_t* xcb = connection.xcb();
    XcbReply<xcb_get_input_focus_reply_t>(xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
}

void setWindowProperty(X11Connection& connection, xcb_window_t window, xcb_window_t value) {
    xcb_change_property(connection.xcb(), XCB_PROP_MODE_REPLACE, window, connection.atom("_NET_SUPPORTING_WM_CHECK"),
                        XCB_ATOM_WINDOW, 32, 1, &value);
    roundTrip(connection);
}

TEST(X11ConnectionTest, ErrorsOfUncheckedRequestsAreLoggedOncePerKind) {
    std::unique_ptr<X11Connection> connection = X11Connection::open();
    ASSERT_TRUE(connection);
    g_connectionLog.clear();
    const QtMessageHandler previous = qInstallMessageHandler(recordConnectionLog);
    // A window id nobody created: mapping it fails with BadWindow, three times.
    const xcb_window_t absent = xcb_generate_id(connection->xcb());
    for (int i = 0; i < 3; ++i) {
        xcb_map_window(connection->xcb(), absent);
    }
    roundTrip(*connection);
    connection->dispatchPendingEvents();
    xcb_unmap_window(connection->xcb(), absent);
    roundTrip(*connection);
    connection->dispatchPendingEvents();
    qInstallMessageHandler(previous);

    ASSERT_EQ(g_connectionLog.size(), 2) << g_connectionLog.join(QLatin1Char('\n')).toStdString();
    EXPECT_TRUE(g_connectionLog[0].contains(QLatin1String("BadWindow"))) << g_connectionLog[0].toStdString();
    EXPECT_TRUE(g_connectionLog[0].contains(QStringLiteral("request %1.0").arg(XCB_MAP_WINDOW)))
        << g_connectionLog[0].toStdString();
    EXPECT_TRUE(g_connectionLog[1].contains(QStringLiteral("request %1.0").arg(XCB_UNMAP_WINDOW)))
        << g_connectionLog[1].toStdString();
}

TEST(X11ConnectionTest, EwmhCheckFollowsTheWindowManager) {
    std::unique_ptr<X11Connection> connection = X11Connection::open();
    ASSERT_TRUE(connection);
    EXPECT_EQ(X11Ewmh::windowManagerPresent(*connection), windowManagerExpected());
}

TEST(X11ConnectionTest, EwmhCheckIgnoresAStaleCheckWindow) {
    if (windowManagerExpected()) {
        GTEST_SKIP() << "needs a desktop without a window manager";
    }
    std::unique_ptr<X11Connection> connection = X11Connection::open();
    ASSERT_TRUE(connection);
    xcb_connection_t* xcb = connection->xcb();
    const xcb_window_t check = xcb_generate_id(xcb);
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, check, connection->root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    // The root names a window that does not name itself: what a window manager that died leaves.
    setWindowProperty(*connection, connection->root(), check);
    EXPECT_FALSE(X11Ewmh::windowManagerPresent(*connection));
    setWindowProperty(*connection, check, check);
    EXPECT_TRUE(X11Ewmh::windowManagerPresent(*connection));
    xcb_delete_property(xcb, connection->root(), connection->atom("_NET_SUPPORTING_WM_CHECK"));
    xcb_destroy_window(xcb, check);
    roundTrip(*connection);
    EXPECT_FALSE(X11Ewmh::windowManagerPresent(*connection));
}

TEST(X11PlatformTest, BuildingAndDestroyingTwiceOnOneConnectionLeavesNothingBehind) {
    std::unique_ptr<X11Connection> connection = X11Connection::open();
    ASSERT_TRUE(connection);
    std::unique_ptr<X11Platform> observer = X11Platform::connect();
    ASSERT_TRUE(observer);
    const qsizetype handlersBefore = connection->eventHandlerCount();
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        std::unique_ptr<X11Platform> platform = X11Platform::on(*connection);
        ASSERT_TRUE(platform);
        platform->install();
        EXPECT_EQ(Platform::services().monitors, platform->services().monitors);
        EXPECT_GT(connection->eventHandlerCount(), handlersBefore);
        const HotKeys::Registration registration = platform->services().hotKeys->registerHotKey(kKeyA, kControlOption);
        ASSERT_TRUE(std::holds_alternative<HotKeys::RegistrationId>(registration));
        EXPECT_TRUE(observer->services().hotKeys->isHeldByAnotherClient(kKeyA, kControlOption));

        platform.reset();
        EXPECT_EQ(Platform::services().monitors, nullptr);
        EXPECT_EQ(Platform::services().hotKeys, nullptr);
        EXPECT_EQ(connection->eventHandlerCount(), handlersBefore);
        EXPECT_FALSE(connection->hasError());
        EXPECT_FALSE(observer->services().hotKeys->isHeldByAnotherClient(kKeyA, kControlOption));
    }
}

TEST(X11PlatformTest, DestroyingAPlatformThatIsNotInstalledKeepsTheInstalledOne) {
    std::unique_ptr<X11Platform> installed = X11Platform::connect();
    ASSERT_TRUE(installed);
    installed->install();
    X11Platform::connect().reset();
    EXPECT_EQ(Platform::services().monitors, installed->services().monitors);
    installed.reset();
    EXPECT_EQ(Platform::services().monitors, nullptr);
}

}  // namespace
