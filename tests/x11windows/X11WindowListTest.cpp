// The window list of a real desktop: every top-level window, its frame, owner, layer and state.
#include <xcb/xcb.h>

#include <QTemporaryDir>
#include <atomic>
#include <cstdlib>
#include <thread>

#include "platform/Platform.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11WindowDesktopEntries.h"
#include "platform/x11/X11WindowServer.h"
#include "tests/support/VirtualDesktop.h"
#include "tests/x11windows/X11DesktopFixture.h"

namespace {

class X11WindowListTest : public X11DesktopFixture {
protected:
    QList<WindowInfo> list(quint32 options = kCGWindowListOptionAll) {
        return Platform::services().windowServer->copyWindowInfo(options).value_or(QList<WindowInfo>{});
    }
    static qint64 number(const WindowInfo& entry) { return entry.value(QLatin1String(kCGWindowNumber)).toLongLong(); }
    static int layer(const WindowInfo& entry) { return entry.value(QLatin1String(kCGWindowLayer)).toInt(); }
    bool hasProperty(quint32 window, const char* name) {
        xcb_get_property_reply_t* reply = xcb_get_property_reply(
            xcb(), xcb_get_property(xcb(), 0, window, platform->connection().atom(name), XCB_ATOM_ANY, 0, 1), nullptr);
        const bool present = reply != nullptr && reply->type != XCB_ATOM_NONE;
        std::free(reply);
        return present;
    }
};

TEST_F(X11WindowListTest, WindowsOnEachMonitorAppearWithOuterFrameBoundsAndPid) {
    QList<quint32> windows;
    for (int monitor = 0; monitor < monitors().size(); ++monitor) {
        const quint32 window =
            client.open(QStringLiteral("m%1").arg(monitor), placement(monitor, 120, 90, 500 + monitor, 400));
        ASSERT_NE(window, 0u);
        windows.append(window);
    }
    for (int monitor = 0; monitor < windows.size(); ++monitor) {
        const WindowInfo entry = entryFor(windows[monitor]);
        ASSERT_FALSE(entry.isEmpty());
        EXPECT_EQ(entry.value(QLatin1String(kCGWindowOwnerPID)).toLongLong(), client.pid());
        EXPECT_EQ(layer(entry), 0);
        const QRectF bounds = boundsOf(entry);
        EXPECT_TRUE(near(bounds, frameFromTree(windows[monitor]), 0.0))
            << bounds.x() << "," << bounds.y() << " " << bounds.width() << "x" << bounds.height();
        EXPECT_GT(bounds.width(), 500 + monitor);  // the decorations are part of the frame
        EXPECT_TRUE(monitors()[monitor].contains(bounds.center().toPoint()));
        EXPECT_TRUE(entry.value(QLatin1String(kCGWindowIsOnscreen)).toBool());
        EXPECT_EQ(entry.value(QLatin1String(kCGWindowName)).toString(), QStringLiteral("m%1").arg(monitor));
        EXPECT_DOUBLE_EQ(entry.value(QLatin1String(kCGWindowAlpha)).toDouble(), 1.0);
        EXPECT_FALSE(entry.value(QLatin1String(kCGWindowOwnerName)).toString().isEmpty());
    }
}

TEST_F(X11WindowListTest, WindowWithoutNetWmPidGetsItsOwnerThroughXResource) {
    const quint32 window =
        client.open(QStringLiteral("anonymous"), placement(1, 100, 100, 300, 200) + QStringLiteral(" pid=no"));
    ASSERT_NE(window, 0u);
    ASSERT_FALSE(hasProperty(window, "_NET_WM_PID"));
    const WindowInfo entry = entryFor(window);
    ASSERT_FALSE(entry.isEmpty());
    EXPECT_EQ(entry.value(QLatin1String(kCGWindowOwnerPID)).toLongLong(), client.pid());
}

TEST_F(X11WindowListTest, DocksDesktopsMenusAndKeepAboveWindowsHaveNonZeroLayers) {
    const QString at = placement(0, 200, 200, 300, 200);
    const quint32 dock = client.open(QStringLiteral("dock"), at + QStringLiteral(" type=dock"));
    const quint32 desktop = client.open(QStringLiteral("desktop"), at + QStringLiteral(" type=desktop"));
    const quint32 menu = client.open(QStringLiteral("menu"), at + QStringLiteral(" type=override"));
    const quint32 above = client.open(QStringLiteral("above"), at + QStringLiteral(" states=above"));
    const quint32 notification = client.open(QStringLiteral("note"), at + QStringLiteral(" type=notification"));
    const quint32 normal = client.open(QStringLiteral("normal"), at);
    const quint32 dialog = client.open(QStringLiteral("dialog"), at + QStringLiteral(" type=dialog"));
    const quint32 utility = client.open(QStringLiteral("utility"), at + QStringLiteral(" type=utility"));
    for (quint32 window : {dock, desktop, menu, above, notification, normal, dialog, utility}) {
        ASSERT_NE(window, 0u);
    }
    const QList<WindowInfo> entries = list();
    auto layerOf = [&](quint32 window) -> std::optional<int> {
        for (const WindowInfo& entry : entries) {
            if (number(entry) == window) {
                return layer(entry);
            }
        }
        return std::nullopt;
    };
    for (quint32 window : {dock, desktop, menu, above, notification}) {
        ASSERT_TRUE(layerOf(window).has_value()) << window;
        EXPECT_NE(*layerOf(window), 0) << window;
    }
    for (quint32 window : {normal, dialog, utility}) {
        ASSERT_TRUE(layerOf(window).has_value()) << window;
        EXPECT_EQ(*layerOf(window), 0) << window;
    }
    // The tray host's panel is a dock of another process.
    bool sawTray = false;
    for (const WindowInfo& entry : entries) {
        if (entry.value(QLatin1String(kCGWindowName)).toString() == QLatin1String("panel")) {
            sawTray = true;
            EXPECT_NE(layer(entry), 0);
        }
    }
    EXPECT_TRUE(sawTray) << "the tray host's window is missing from the list";
    // Leaving out desktop elements drops the desktop window and nothing else of ours.
    const QList<WindowInfo> withoutDesktop = list(kCGWindowListExcludeDesktopElements);
    bool desktopListed = false;
    bool normalListed = false;
    for (const WindowInfo& entry : withoutDesktop) {
        desktopListed = desktopListed || number(entry) == desktop;
        normalListed = normalListed || number(entry) == normal;
    }
    EXPECT_FALSE(desktopListed);
    EXPECT_TRUE(normalListed);
}

TEST_F(X11WindowListTest, ZeroOpacityWindowCarriesAlphaZero) {
    const QString at = placement(0, 300, 300, 300, 200);
    const quint32 invisible = client.open(QStringLiteral("invisible"), at + QStringLiteral(" opacity=0"));
    const quint32 half = client.open(QStringLiteral("half"), at + QStringLiteral(" opacity=0.5"));
    ASSERT_NE(invisible, 0u);
    ASSERT_NE(half, 0u);
    EXPECT_DOUBLE_EQ(entryFor(invisible).value(QLatin1String(kCGWindowAlpha)).toDouble(), 0.0);
    EXPECT_NEAR(entryFor(half).value(QLatin1String(kCGWindowAlpha)).toDouble(), 0.5, 1e-6);
}

TEST_F(X11WindowListTest, MinimisedWindowIsListedButNotOnScreen) {
    const quint32 minimised =
        client.open(QStringLiteral("iconic"), placement(2, 100, 100, 300, 200) + QStringLiteral(" states=minimized"));
    const quint32 shown = client.open(QStringLiteral("shown"), placement(2, 200, 200, 300, 200));
    ASSERT_NE(minimised, 0u);
    ASSERT_NE(shown, 0u);
    const WindowInfo entry = entryFor(minimised);
    ASSERT_FALSE(entry.isEmpty());
    EXPECT_FALSE(entry.value(QLatin1String(kCGWindowIsOnscreen)).toBool());
    EXPECT_EQ(layer(entry), 0);
    EXPECT_TRUE(entryFor(shown).value(QLatin1String(kCGWindowIsOnscreen)).toBool());
}

TEST_F(X11WindowListTest, ListIsFrontToBack) {
    const quint32 first = client.open(QStringLiteral("first"), placement(0, 100, 100, 300, 200));
    const quint32 second = client.open(QStringLiteral("second"), placement(0, 150, 150, 300, 200));
    ASSERT_NE(first, 0u);
    ASSERT_NE(second, 0u);
    auto indexOf = [this](quint32 window) {
        const QList<WindowInfo> entries = list();
        for (qsizetype i = 0; i < entries.size(); ++i) {
            if (number(entries[i]) == window) {
                return i;
            }
        }
        return qsizetype(-1);
    };
    // Raise each in turn through the window manager and watch it come first.
    for (quint32 raised : {first, second, first}) {
        const quint32 other = raised == first ? second : first;
        ASSERT_EQ(VirtualDesktop::run(QStringLiteral("wmctrl"),
                                      {QStringLiteral("-i"), QStringLiteral("-a"), QString::number(raised)}),
                  0);
        EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return indexOf(raised) >= 0 && indexOf(raised) < indexOf(other); }))
            << raised;
    }
}

TEST_F(X11WindowListTest, WindowDestroyedBetweenListAndReadsIsLeftOutWithoutHarm) {
    const quint32 doomed = client.open(QStringLiteral("doomed"), placement(0, 100, 100, 300, 200));
    const quint32 survivor = client.open(QStringLiteral("survivor"), placement(0, 200, 200, 300, 200));
    ASSERT_NE(doomed, 0u);
    ASSERT_NE(survivor, 0u);
    // A private window server on the same connection, so the hook stays local to this test.
    X11WindowDesktopEntries entries;
    X11WindowServer server(platform->connection(), entries);
    bool hookRan = false;
    server.setAfterListingHookForTesting([&] {
        hookRan = true;
        ASSERT_TRUE(client.close(QStringLiteral("doomed")));
        // The client has destroyed it; make sure the server has too before the reads go out.
        xcb_connection_t* c = xcb();
        xcb_generic_error_t* error = nullptr;
        std::free(xcb_get_geometry_reply(c, xcb_get_geometry(c, doomed), &error));
        EXPECT_NE(error, nullptr);
        std::free(error);
    });
    const auto entriesRead = server.copyWindowInfo(kCGWindowListOptionAll);
    ASSERT_TRUE(hookRan);
    ASSERT_TRUE(entriesRead.has_value());
    EXPECT_FALSE(lists(*entriesRead, doomed));
    EXPECT_TRUE(lists(*entriesRead, survivor));
}

TEST_F(X11WindowListTest, ClientDisconnectingDuringInventoryGivesNoCrash) {
    const quint32 survivor = client.open(QStringLiteral("survivor"), placement(0, 200, 200, 300, 200));
    ASSERT_NE(survivor, 0u);
    TestClient leaver;
    ASSERT_TRUE(leaver.start());
    const QList<quint32> windows = leaver.openMany(QStringLiteral("w"), 60, placement(1, 10, 10, 200, 150));
    ASSERT_EQ(windows.size(), 60);
    // Inventories run on a thread of their own (as the preview capture does) while the client dies.
    std::atomic<bool> stop{false};
    std::atomic<int> inventories{0};
    std::atomic<int> failures{0};
    std::thread reader([&] {
        while (!stop) {
            if (!Platform::services().windowServer->copyWindowInfo(kCGWindowListOptionAll)) {
                ++failures;
            }
            ++inventories;
        }
    });
    VirtualDesktop::waitUntil([&] { return inventories >= 3; }, 5000);
    leaver.kill();
    VirtualDesktop::waitUntil([&] { return inventories >= 20; }, 5000);
    stop = true;
    reader.join();
    EXPECT_EQ(failures, 0);
    // Once the window manager has let go of them, none of the dead client's windows is listed.
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] {
        for (const WindowInfo& entry : list()) {
            if (windows.contains(static_cast<quint32>(number(entry)))) {
                return false;
            }
        }
        return true;
    }));
    EXPECT_FALSE(entryFor(survivor).isEmpty());
}

TEST_F(X11WindowListTest, OwnerNameComesFromDesktopEntryThenClassThenProcessName) {
    QTemporaryDir data;
    ASSERT_TRUE(data.isValid());
    QFile file(data.path() + QStringLiteral("/probe-by-class.desktop"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Desktop Entry]\nType=Application\nName=Probe Application\nStartupWMClass=ProbeClass\n");
    file.close();
    X11WindowDesktopEntries entries({data.path()});
    X11WindowServer server(platform->connection(), entries);
    auto ownerNameOf = [&server](quint32 window) {
        for (const WindowInfo& entry : server.copyWindowInfo(0).value_or(QList<WindowInfo>{})) {
            if (number(entry) == window) {
                return entry.value(QLatin1String(kCGWindowOwnerName)).toString();
            }
        }
        return QStringLiteral("<not listed>");
    };
    struct Case {
        QString windowClass;
        QString expected;
    };
    for (const Case& c : {Case{QStringLiteral("probe.ProbeClass"), QStringLiteral("Probe Application")},
                          Case{QStringLiteral("other.OtherClass"), QStringLiteral("OtherClass")},
                          Case{QString(), QStringLiteral("lattica-test-cl")}}) {
        // One process per case: the name belongs to the process, not to one window.
        TestClient owner;
        ASSERT_TRUE(owner.start());
        const QString options =
            placement(0, 100, 100, 300, 200) +
            (c.windowClass.isEmpty() ? QStringLiteral(" class=") : QStringLiteral(" class=") + c.windowClass);
        const quint32 window = owner.open(QStringLiteral("named"), options);
        ASSERT_NE(window, 0u);
        EXPECT_EQ(ownerNameOf(window), c.expected);
    }
}

TEST_F(X11WindowListTest, UnknownOptionBitsStillGiveTheList) {
    const quint32 window = client.open(QStringLiteral("plain"), placement(0, 100, 100, 300, 200));
    ASSERT_NE(window, 0u);
    EXPECT_FALSE(entryFor(window, 0xFFFFFFEFu).isEmpty());
}

}  // namespace
