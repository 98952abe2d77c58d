// SPDX-License-Identifier: MIT
// With a single desktop every window is on it, and the window list does not read which desktop each
// window names; with more than one it does, also for windows read while there was one.
#include <xcb/xcb.h>

#include <cstdlib>

#include "platform/Platform.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11WindowCache.h"
#include "platform/x11/XcbReply.h"
#include "tests/platform/x11/X11DesktopFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

class X11DesktopCountTest : public X11DesktopFixture {
protected:
    void SetUp() override {
        X11DesktopFixture::SetUp();
        cache = platform->windowCache();
        ASSERT_NE(cache, nullptr);
        original = desktopCount();
        ASSERT_TRUE(original.has_value()) << "the window manager keeps no _NET_NUMBER_OF_DESKTOPS";
    }
    void TearDown() override {
        if (original) {
            EXPECT_TRUE(setDesktopCount(*original));
        }
        X11DesktopFixture::TearDown();
    }

    std::optional<quint32> desktopCount() {
        const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            xcb(),
            xcb_get_property(xcb(), 0, platform->connection().root(),
                             platform->connection().atom("_NET_NUMBER_OF_DESKTOPS"), XCB_ATOM_CARDINAL, 0, 1),
            nullptr));
        if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) < 4) {
            return std::nullopt;
        }
        return *static_cast<const quint32*>(xcb_get_property_value(reply.get()));
    }
    // Asks the window manager for that many desktops (wmctrl -n) and waits until it has them.
    bool setDesktopCount(quint32 count) {
        if (VirtualDesktop::run(QStringLiteral("wmctrl"), {QStringLiteral("-n"), QString::number(count)}) != 0) {
            return false;
        }
        return VirtualDesktop::waitUntil([&] { return desktopCount() == count; });
    }
    // The sequence number of the next request on the cache's connection.
    quint32 nextSequence() {
        xcb_connection_t* c = cache->connection().xcb();
        const xcb_get_input_focus_cookie_t cookie = xcb_get_input_focus(c);
        std::free(xcb_get_input_focus_reply(c, cookie, nullptr));
        return cookie.sequence + 1;
    }
    // Requests of a read of the window list with nothing known of any window.
    quint32 coldRequests() {
        cache->clear();
        const quint32 before = nextSequence();
        EXPECT_TRUE(Platform::services().windowList->windowsWithoutTitles(DesktopWindows::Include).has_value());
        return nextSequence() - before - 1;
    }

    X11WindowCache* cache = nullptr;
    std::optional<quint32> original;
};

TEST_F(X11DesktopCountTest, SingleDesktopListsEveryWindowOnScreenWithoutReadingItsDesktop) {
    ASSERT_TRUE(setDesktopCount(2));
    const QList<quint32> windows = client.openMany(QStringLiteral("w"), 10, placement(0, 100, 100, 300, 200));
    ASSERT_EQ(windows.size(), 10);
    coldRequests();  // every window watched once, so that only reads are counted below
    const quint32 withTwo = coldRequests();
    ASSERT_TRUE(setDesktopCount(1));
    const quint32 withOne = coldRequests();
    // One _NET_WM_DESKTOP read less per listed window (ours and the desktop's own); nothing else changes.
    const auto listed = Platform::services().windowList->windowsWithoutTitles(DesktopWindows::Include);
    ASSERT_TRUE(listed.has_value());
    EXPECT_GE(listed->size(), 10);
    EXPECT_EQ(withTwo - withOne, static_cast<quint32>(listed->size())) << withTwo << " against " << withOne;
    for (quint32 window : windows) {
        EXPECT_TRUE(isOnScreen(window)) << window;
    }
}

TEST_F(X11DesktopCountTest, DesktopsAddedOrRemovedAfterAReadShowInTheNextRead) {
    ASSERT_TRUE(setDesktopCount(1));
    const quint32 window = client.open(QStringLiteral("travelling"), placement(1, 100, 100, 300, 200));
    const quint32 staying = client.open(QStringLiteral("staying"), placement(1, 500, 300, 300, 200));
    ASSERT_NE(window, 0u);
    ASSERT_NE(staying, 0u);
    ASSERT_TRUE(isOnScreen(window));
    ASSERT_TRUE(isOnScreen(staying));
    // Read (and known to the cache) while there was one desktop: the window's desktop is read now.
    ASSERT_TRUE(setDesktopCount(2));
    ASSERT_TRUE(sendToDesktop(window, 1));
    EXPECT_FALSE(isOnScreen(window));
    EXPECT_TRUE(isOnScreen(staying));
    // Back to one desktop: the window manager brings the window to it.
    ASSERT_TRUE(setDesktopCount(1));
    EXPECT_TRUE(isOnScreen(window));
    EXPECT_TRUE(isOnScreen(staying));
    ASSERT_TRUE(setDesktopCount(2));
    EXPECT_TRUE(isOnScreen(window));
    ASSERT_TRUE(sendToDesktop(staying, 1));
    EXPECT_FALSE(isOnScreen(staying));
    EXPECT_TRUE(isOnScreen(window));
}

}  // namespace
