// SPDX-License-Identifier: MIT
// Reads through the window cache: a second read of an unchanged desktop asks the server nothing per
// window, and every kind of change made after a read shows in the next one.
#include <xcb/xcb.h>

#include <QThreadPool>
#include <cstdlib>
#include <cstring>

#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11WindowCache.h"
#include "platform/x11/X11WindowDesktopEntries.h"
#include "platform/x11/X11WindowList.h"
#include "platform/x11/XcbReply.h"
#include "tests/platform/x11/X11DesktopFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

class X11WindowCacheTest : public X11DesktopFixture {
protected:
    void SetUp() override {
        X11DesktopFixture::SetUp();
        cache = platform->windowCache();
        ASSERT_NE(cache, nullptr);
    }

    QList<WindowEntry> list() {
        return Platform::services().windowList->windows(DesktopWindows::Include).value_or(QList<WindowEntry>{});
    }
    // The window's entry; nothing when it is not listed.
    std::optional<WindowEntry> listed(quint32 window) {
        for (const WindowEntry& entry : list()) {
            if (entry.id == window) {
                return entry;
            }
        }
        return std::nullopt;
    }
    // The window's title; nothing when it is not listed or has none.
    std::optional<QString> titleOf(quint32 window) {
        const std::optional<WindowEntry> entry = listed(window);
        return entry ? entry->title : std::nullopt;
    }
    // The sequence number of the next request on the cache's connection.
    quint32 nextSequence() {
        xcb_connection_t* c = cache->connection().xcb();
        const xcb_get_input_focus_cookie_t cookie = xcb_get_input_focus(c);
        std::free(xcb_get_input_focus_reply(c, cookie, nullptr));
        return cookie.sequence + 1;
    }
    // Waits until the server has carried out everything sent on the main connection.
    void sync() { std::free(xcb_get_input_focus_reply(xcb(), xcb_get_input_focus(xcb()), nullptr)); }
    void setTitle(quint32 window, const QByteArray& title) {
        xcb_change_property(xcb(), XCB_PROP_MODE_REPLACE, window, platform->connection().atom("_NET_WM_NAME"),
                            platform->connection().atom("UTF8_STRING"), 8, static_cast<uint32_t>(title.size()),
                            title.constData());
        sync();
    }

    X11WindowCache* cache = nullptr;
};

TEST_F(X11WindowCacheTest, SecondReadOfUnchangedDesktopAsksNothingPerWindow) {
    const QList<quint32> windows = client.openMany(QStringLiteral("same"), 40, placement(0, 100, 100, 300, 200));
    ASSERT_EQ(windows.size(), 40);
    list();
    const quint32 before = nextSequence();
    const QList<WindowEntry> second = list();
    const quint32 requests = nextSequence() - before - 1;
    EXPECT_GE(second.size(), 40);
    // The root window's facts and one round trip to take in news; reading every window again would be
    // hundreds of requests.
    EXPECT_LT(requests, 20u);
    EXPECT_GE(cache->size(), 40);
}

TEST_F(X11WindowCacheTest, ClearedCacheReadsEveryWindowAgain) {
    const QList<quint32> windows = client.openMany(QStringLiteral("again"), 40, placement(0, 100, 100, 300, 200));
    ASSERT_EQ(windows.size(), 40);
    list();
    cache->clear();
    EXPECT_EQ(cache->size(), 0);
    const quint32 before = nextSequence();
    list();
    EXPECT_GT(nextSequence() - before, 40u * 5);
}

TEST_F(X11WindowCacheTest, ClearedCacheWatchesNoWindowAgain) {
    const QList<quint32> windows = client.openMany(QStringLiteral("few"), 40, placement(0, 100, 100, 300, 200));
    ASSERT_EQ(windows.size(), 40);
    cache->clear();
    quint32 before = nextSequence();
    list();
    const quint32 firstRead = nextSequence() - before;
    cache->clear();
    before = nextSequence();
    list();
    const quint32 secondRead = nextSequence() - before;
    // Each window is watched once; the selection stays with the server until the window ends.
    EXPECT_LE(secondRead + 40, firstRead);
}

TEST_F(X11WindowCacheTest, ColdReadAsksNothingOfFramesAndNoTitlesWhenLeftOut) {
    WindowList& windowList = *Platform::services().windowList;
    // Requests of a read with nothing known, once every window has been watched.
    auto coldRequests = [&](bool withTitles) {
        cache->clear();
        const quint32 before = nextSequence();
        const auto entries = withTitles ? windowList.windows(DesktopWindows::Include)
                                        : windowList.windowsWithoutTitles(DesktopWindows::Include);
        EXPECT_TRUE(entries.has_value());
        return nextSequence() - before - 1;
    };
    ASSERT_EQ(client.openMany(QStringLiteral("first"), 10, placement(0, 100, 100, 300, 200)).size(), 10);
    list();
    const quint32 untitledBefore = coldRequests(false);
    const quint32 titledBefore = coldRequests(true);
    ASSERT_EQ(client.openMany(QStringLiteral("more"), 10, placement(0, 100, 100, 300, 200)).size(), 10);
    list();
    // Each window of the same owner costs its size, root position and frame extents, its type, state and
    // desktop, and its title when asked; the frame the window manager made for it, nothing. No compositing
    // manager runs, so opacity is not read.
    EXPECT_EQ(coldRequests(false) - untitledBefore, 10u * 6);
    EXPECT_EQ(coldRequests(true) - titledBefore, 10u * 7);
}

TEST_F(X11WindowCacheTest, TitleReadAfterAListWithoutTitlesIsTheCurrentOne) {
    const quint32 window = client.open(QStringLiteral("before"), placement(0, 100, 100, 300, 200));
    ASSERT_NE(window, 0u);
    ASSERT_EQ(titleOf(window), QStringLiteral("before"));
    setTitle(window, "after");
    const auto untitled = Platform::services().windowList->windowsWithoutTitles(DesktopWindows::Include);
    ASSERT_TRUE(untitled.has_value());
    ASSERT_TRUE(lists(*untitled, window));
    EXPECT_EQ(titleOf(window), QStringLiteral("after"));
}

TEST_F(X11WindowCacheTest, FactsOfListedWindowsAskNothingPerWindow) {
    const QList<quint32> windows = client.openMany(QStringLiteral("known"), 40, placement(0, 100, 100, 300, 200));
    ASSERT_EQ(windows.size(), 40);
    list();
    const quint32 before = nextSequence();
    const QList<WindowFacts> facts =
        Platform::services().windowControl->facts(QList<WindowId>(windows.cbegin(), windows.cend()));
    const quint32 requests = nextSequence() - before - 1;
    ASSERT_EQ(facts.size(), 40);
    for (const WindowFacts& window : facts) {
        EXPECT_EQ(window.role, (Reading<WindowRole>{Result::Ok, WindowRole::Window}));
        EXPECT_EQ(window.frame.result, Result::Ok);
    }
    // The list has read what the roles, frames and states need of windows the window manager lists.
    EXPECT_LT(requests, 20u);
}

TEST_F(X11WindowCacheTest, TitleChangedAfterAReadShowsInTheNextRead) {
    const quint32 window = client.open(QStringLiteral("before"), placement(0, 100, 100, 300, 200));
    ASSERT_NE(window, 0u);
    ASSERT_EQ(titleOf(window), QStringLiteral("before"));
    setTitle(window, "after");
    EXPECT_EQ(titleOf(window), QStringLiteral("after"));
}

TEST_F(X11WindowCacheTest, WindowMovedByWindowManagerShowsInTheNextRead) {
    const quint32 window = client.open(QStringLiteral("moving"), placement(0, 100, 100, 300, 200));
    ASSERT_NE(window, 0u);
    const QRect before = frameFromTree(window);
    ASSERT_TRUE(near(boundsOf(listed(window)), before, 0.0));
    // A configure request from another client goes through the window manager, which moves the frame.
    const uint32_t position[] = {static_cast<uint32_t>(globalOrigin.x() + 400),
                                 static_cast<uint32_t>(globalOrigin.y() + 300)};
    xcb_configure_window(xcb(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, position);
    xcb_flush(xcb());
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return frameFromTree(window).topLeft() != before.topLeft(); }));
    // Once the frame has moved, the very next read has it where the window tree has it.
    const QRect after = frameFromTree(window);
    EXPECT_TRUE(near(boundsOf(listed(window)), after, 0.0))
        << boundsOf(listed(window)).x() << "," << boundsOf(listed(window)).y() << " vs " << after.x() << ","
        << after.y();
}

TEST_F(X11WindowCacheTest, WindowResizedShowsInTheNextRead) {
    const quint32 window = client.open(QStringLiteral("resizing"), placement(0, 100, 100, 300, 200));
    ASSERT_NE(window, 0u);
    const QRect before = frameFromTree(window);
    ASSERT_TRUE(near(boundsOf(listed(window)), before, 0.0));
    const uint32_t size[] = {500, 350};
    xcb_configure_window(xcb(), window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
    xcb_flush(xcb());
    // The window manager resizes its frame and the client in two steps; the resize is done once the
    // client has the size asked for and the frame has grown around it.
    auto clientSize = [&] {
        const XcbReply<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(xcb(), xcb_get_geometry(xcb(), window), nullptr));
        return geometry ? QSize(geometry->width, geometry->height) : QSize();
    };
    ASSERT_TRUE(VirtualDesktop::waitUntil(
        [&] { return clientSize() == QSize(500, 350) && frameFromTree(window).size() != before.size(); }));
    EXPECT_TRUE(near(boundsOf(listed(window)), frameFromTree(window), 0.0));
}

TEST_F(X11WindowCacheTest, WindowMinimisedAfterAReadShowsOffScreenInTheNextRead) {
    const quint32 window = client.open(QStringLiteral("iconify"), placement(1, 100, 100, 300, 200));
    ASSERT_NE(window, 0u);
    ASSERT_TRUE(isOnScreen(window));
    // ICCCM's request to iconify: WM_CHANGE_STATE with IconicState, sent to the root window.
    xcb_client_message_event_t message;
    std::memset(&message, 0, sizeof message);
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = platform->connection().atom("WM_CHANGE_STATE");
    message.data.data32[0] = 3;
    xcb_send_event(xcb(), 0, platform->connection().root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(xcb());
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return listed(window).has_value() && !listed(window)->onScreen; }));
}

TEST_F(X11WindowCacheTest, WindowClosedAfterAReadIsGoneFromTheNextRead) {
    const quint32 closing = client.open(QStringLiteral("closing"), placement(0, 100, 100, 300, 200));
    const quint32 staying = client.open(QStringLiteral("staying"), placement(0, 200, 200, 300, 200));
    ASSERT_NE(closing, 0u);
    ASSERT_NE(staying, 0u);
    ASSERT_TRUE(listed(closing).has_value());
    ASSERT_TRUE(client.close(QStringLiteral("closing")));
    sync();
    EXPECT_FALSE(listed(closing).has_value());
    EXPECT_TRUE(listed(staying).has_value());
}

TEST_F(X11WindowCacheTest, KnownWindowDestroyedBetweenListAndReadsIsLeftOut) {
    const quint32 doomed = client.open(QStringLiteral("doomed"), placement(0, 100, 100, 300, 200));
    const quint32 survivor = client.open(QStringLiteral("survivor"), placement(0, 200, 200, 300, 200));
    ASSERT_NE(doomed, 0u);
    ASSERT_NE(survivor, 0u);
    X11WindowDesktopEntries entries;
    X11WindowList windowList(platform->connection(), entries, cache);
    windowList.windows(DesktopWindows::Include);
    ASSERT_TRUE(cache->lookup(doomed).fields != 0);
    windowList.setAfterListingHookForTesting([&] {
        ASSERT_TRUE(client.close(QStringLiteral("doomed")));
        sync();
    });
    const auto entriesRead = windowList.windows(DesktopWindows::Include);
    ASSERT_TRUE(entriesRead.has_value());
    EXPECT_FALSE(lists(*entriesRead, doomed));
    EXPECT_TRUE(lists(*entriesRead, survivor));
}

TEST_F(X11WindowCacheTest, WindowNumberGivenToANewWindowIsReadAndWatchedAfresh) {
    // A client that disconnects frees its window numbers, and the next client to connect usually gets
    // the same ones. Three clients in turn make sure each new window is watched, not only read.
    for (int round = 0; round < 3; ++round) {
        TestClient owner;
        ASSERT_TRUE(owner.start());
        const quint32 window = owner.open(QStringLiteral("w"), placement(1, 100, 100, 300, 200));
        ASSERT_NE(window, 0u);
        const std::optional<WindowEntry> entry = listed(window);
        ASSERT_TRUE(entry.has_value()) << round;
        EXPECT_EQ(entry->pid, owner.pid()) << round;
        const QByteArray title = "round " + QByteArray::number(round);
        setTitle(window, title);
        EXPECT_EQ(titleOf(window), QString::fromUtf8(title)) << round;
        ASSERT_TRUE(owner.exit());
    }
}

TEST_F(X11WindowCacheTest, FactsReadWhileNewsOfTheirWindowArrivesAreNotKept) {
    const quint32 window = client.open(QStringLiteral("racing"), placement(0, 100, 100, 300, 200));
    ASSERT_NE(window, 0u);
    X11WindowFacts facts;
    facts.window = window;
    facts.title = QStringLiteral("read before the change");
    const quint64 mark = cache->beginRead();
    cache->forget(window);  // the news of a change comes in while the read is under way
    cache->store(facts, X11WindowFacts::Title, mark);
    cache->endRead(mark);
    EXPECT_EQ(cache->lookup(window).fields, 0u);

    const quint64 laterMark = cache->beginRead();
    cache->store(facts, X11WindowFacts::Title, laterMark);
    cache->endRead(laterMark);
    EXPECT_EQ(cache->lookup(window).fields, unsigned(X11WindowFacts::Title));
    EXPECT_EQ(cache->lookup(window).facts.title, facts.title);
}

TEST_F(X11WindowCacheTest, MoveThroughTheWindowControlShowsInTheReadBack) {
    const quint32 window = client.open(QStringLiteral("written"), placement(0, 100, 100, 300, 200));
    ASSERT_NE(window, 0u);
    WindowControl& control = *Platform::services().windowControl;
    Reading<QRectF> frame = control.frame(window);
    ASSERT_EQ(frame.result, Result::Ok);
    const QPointF target = frame.value->topLeft() + QPointF(2100, 150);
    ASSERT_EQ(control.move(window, target), Result::Ok);
    frame = control.frame(window);
    ASSERT_EQ(frame.result, Result::Ok);
    EXPECT_NEAR(frame.value->x(), target.x(), 2.0);
    EXPECT_NEAR(frame.value->y(), target.y(), 2.0);
}

TEST_F(X11WindowCacheTest, ReadsOnAnotherThreadSeeChangesMadeBeforeThem) {
    const quint32 window = client.open(QStringLiteral("threaded"), placement(0, 100, 100, 300, 200));
    ASSERT_NE(window, 0u);
    ASSERT_TRUE(listed(window).has_value());
    setTitle(window, "changed on the main thread");
    std::optional<QString> seen;
    QThreadPool pool;
    pool.start([&] { seen = titleOf(window); });
    ASSERT_TRUE(pool.waitForDone(10000));
    EXPECT_EQ(seen, QStringLiteral("changed on the main thread"));
}

}  // namespace
