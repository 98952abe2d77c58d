// SPDX-License-Identifier: MIT
// How the tray click benchmark finds and clicks a tray icon, on the virtual desktop: a tray moves an icon
// it has just embedded while it makes room for it, and the clicks must follow the icon.
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QPoint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <vector>

#include "bench/tray_click_bench_desktop.h"

namespace {

// A stand-in for a tray and the icon embedded in it, on a connection of the test's own: override-redirect
// windows, which no window manager moves, so only the test places them.
class FakeTray {
public:
    FakeTray() : m_connection(xcb_connect(nullptr, nullptr)) {
        xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
        m_root = screen->root;
        m_tray = window(m_root, {100, 100, 60, 30}, XCB_EVENT_MASK_NO_EVENT);
        m_icon = window(m_tray, {4, 4, 22, 22}, XCB_EVENT_MASK_BUTTON_PRESS);
        setPid(m_tray, kTrayPid);
        setPid(m_icon, kIconPid);
        xcb_map_window(m_connection, m_icon);
        xcb_map_window(m_connection, m_tray);
        sync();
    }
    ~FakeTray() { xcb_disconnect(m_connection); }

    static constexpr uint32_t kTrayPid = 4001;
    static constexpr uint32_t kIconPid = 4002;

    xcb_window_t icon() const { return m_icon; }
    // The tray moves, and the icon with it.
    void moveTo(int x, int y) {
        const uint32_t values[] = {uint32_t(x), uint32_t(y)};
        xcb_configure_window(m_connection, m_tray, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values);
        sync();
    }
    void unmapIcon() {
        xcb_unmap_window(m_connection, m_icon);
        sync();
    }
    // A window of another client over the icon, or none.
    void cover(bool covered) {
        if (m_cover == XCB_NONE) {
            m_cover = window(m_root, {0, 0, 1000, 1000}, XCB_EVENT_MASK_NO_EVENT);
        }
        covered ? xcb_map_window(m_connection, m_cover) : xcb_unmap_window(m_connection, m_cover);
        sync();
    }
    // The presses the icon has been sent. The caller has made the server handle the clicks first: the
    // events come ahead of this round trip's reply.
    int pressesOnIcon() {
        sync();
        while (xcb_generic_event_t* event = xcb_poll_for_queued_event(m_connection)) {
            if ((event->response_type & 0x7f) == XCB_BUTTON_PRESS &&
                reinterpret_cast<xcb_button_press_event_t*>(event)->event == m_icon) {
                ++m_presses;
            }
            std::free(event);
        }
        return m_presses;
    }

private:
    xcb_window_t window(xcb_window_t parent, std::vector<int> rect, uint32_t events) {
        const xcb_window_t id = xcb_generate_id(m_connection);
        const uint32_t values[] = {1, events};
        xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, id, parent, int16_t(rect[0]), int16_t(rect[1]),
                          uint16_t(rect[2]), uint16_t(rect[3]), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
        return id;
    }
    void setPid(xcb_window_t window, uint32_t pid) {
        const char* name = "_NET_WM_PID";
        auto* reply = xcb_intern_atom_reply(
            m_connection, xcb_intern_atom(m_connection, 0, uint16_t(std::strlen(name)), name), nullptr);
        ASSERT_NE(reply, nullptr);
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, reply->atom, XCB_ATOM_CARDINAL, 32, 1, &pid);
        std::free(reply);
    }
    void sync() { std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr)); }

    xcb_connection_t* m_connection;
    xcb_window_t m_root = XCB_NONE;
    xcb_window_t m_tray = XCB_NONE;
    xcb_window_t m_icon = XCB_NONE;
    xcb_window_t m_cover = XCB_NONE;
    int m_presses = 0;
};

TEST(TrayClickDesktopTest, TheIconIsTheProcessWindowMappedInsideTheTray) {
    FakeTray tray;
    TrayClickDesktop desktop;
    ASSERT_TRUE(desktop.ok());
    EXPECT_EQ(desktop.embeddedWindowOf(FakeTray::kIconPid, FakeTray::kTrayPid), tray.icon());
    // Inside a window of another process it is not in the tray.
    EXPECT_EQ(desktop.embeddedWindowOf(FakeTray::kIconPid, FakeTray::kTrayPid + 1), xcb_window_t(XCB_NONE));
    tray.unmapIcon();
    EXPECT_EQ(desktop.embeddedWindowOf(FakeTray::kIconPid, FakeTray::kTrayPid), xcb_window_t(XCB_NONE));
}

TEST(TrayClickDesktopTest, ClicksReachTheIconAfterTheTrayHasMovedIt) {
    FakeTray tray;
    TrayClickDesktop desktop;
    ASSERT_TRUE(desktop.ok());
    const std::optional<QPoint> firstPlace = desktop.centre(tray.icon());
    ASSERT_TRUE(firstPlace);
    EXPECT_EQ(*firstPlace, QPoint(100 + 4 + 11, 100 + 4 + 11));
    // The tray makes room for the icon after showing it.
    tray.moveTo(80, 102);

    // A click where the icon first showed misses it, for every later opening.
    desktop.click(*firstPlace);
    desktop.sync();
    EXPECT_EQ(tray.pressesOnIcon(), 0);

    // Aimed where the icon is now, the click reaches it.
    ASSERT_TRUE(desktop.pointAt(tray.icon()));
    EXPECT_EQ(desktop.windowUnderPointer(), tray.icon());
    desktop.clickHere();
    desktop.sync();
    EXPECT_EQ(tray.pressesOnIcon(), 1);
}

TEST(TrayClickDesktopTest, PointingTellsWhenAnotherWindowIsOverTheIcon) {
    FakeTray tray;
    TrayClickDesktop desktop;
    ASSERT_TRUE(desktop.ok());
    tray.cover(true);
    EXPECT_FALSE(desktop.pointAt(tray.icon()));
    EXPECT_NE(desktop.windowUnderPointer(), tray.icon());
    tray.cover(false);
    EXPECT_TRUE(desktop.pointAt(tray.icon()));
}

}  // namespace
