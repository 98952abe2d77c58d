// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QRect>
#include <memory>
#include <optional>

#include "app/model/Models.h"
#include "platform/WindowList.h"
#include "platform/x11/X11Platform.h"
#include "tests/testclient/TestClient.h"

// A test on the virtual desktop with the real X11 services installed and one test client running.
class X11DesktopFixture : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    xcb_connection_t* xcb() const;
    // The entry of the window list for a window; nothing when it is not listed.
    std::optional<WindowEntry> entryFor(quint32 window, DesktopWindows desktopWindows = DesktopWindows::Include);
    // Whether a window list has an entry for the window.
    static bool lists(const QList<WindowEntry>& entries, quint32 window);
    // The frame of a window-list entry; an empty rectangle when there is no entry.
    static QRectF boundsOf(const std::optional<WindowEntry>& entry);
    // Whether the window is listed and on screen.
    bool isOnScreen(quint32 window);
    // The frame the window manager drew around a client, read from the window tree itself
    // (the client's top-level ancestor), in the global display space.
    QRect frameFromTree(quint32 window);
    // The monitors, in the global display space, left to right.
    QList<QRect> monitors() const;
    // A placeholder snapshot of the display whose bounds are the monitor (numbered left to right), as a
    // move's target; a failure of the test when there is none.
    DisplaySnapshot display(int monitor) const;
    // Options that place a w x h window at an offset inside a monitor.
    QString placement(int monitor, int dx, int dy, int width, int height) const;
    // Asks the window manager to activate the window and waits until _NET_ACTIVE_WINDOW names it.
    bool activate(quint32 window);
    quint32 activeWindow();
    // The window manager's current desktop (_NET_CURRENT_DESKTOP).
    std::optional<quint32> currentDesktop();
    // The desktop a window is on (_NET_WM_DESKTOP; kAllDesktops for a sticky window), if it says.
    std::optional<quint32> desktopOf(quint32 window);
    // Switches to the desktop (wmctrl -s) and waits until the window manager is there.
    bool switchToDesktop(quint32 desktop);
    // Sends the window to the desktop, or to all of them (kAllDesktops), and waits until it is there.
    bool sendToDesktop(quint32 window, quint32 desktop);
    static constexpr quint32 kAllDesktops = 0xFFFFFFFFu;
    // True when the frame lies within tolerance of the rectangle.
    static bool near(const QRectF& actual, const QRectF& expected, double tolerance = 2.0);

    std::unique_ptr<X11Platform> platform;

private:
    // The first CARDINAL or WINDOW value of a property, if it has one.
    std::optional<quint32> firstValue(quint32 window, const char* property, xcb_atom_t type);

protected:
    TestClient client;
    QPoint globalOrigin;  // root coordinates of the global space's origin
};
