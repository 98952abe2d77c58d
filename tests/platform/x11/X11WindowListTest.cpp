// SPDX-License-Identifier: MIT
// The window list of a real desktop: every top-level window, its frame, owner, layer and state.
#include <xcb/xcb.h>

#include <QTemporaryDir>
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <thread>

#include "platform/Platform.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11WindowDesktopEntries.h"
#include "platform/x11/X11WindowList.h"
#include "tests/platform/x11/X11DesktopFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

class X11WindowListTest : public X11DesktopFixture {
protected:
    QList<WindowEntry> list(DesktopWindows desktopWindows = DesktopWindows::Include) {
        return Platform::services().windowList->windows(desktopWindows).value_or(QList<WindowEntry>{});
    }
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
        const std::optional<WindowEntry> entry = entryFor(windows[monitor]);
        ASSERT_TRUE(entry.has_value());
        EXPECT_EQ(entry->pid, client.pid());
        EXPECT_EQ(entry->layer, 0);
        const QRectF bounds = entry->frame;
        EXPECT_TRUE(near(bounds, frameFromTree(windows[monitor]), 0.0))
            << bounds.x() << "," << bounds.y() << " " << bounds.width() << "x" << bounds.height();
        EXPECT_GT(bounds.width(), 500 + monitor);  // the decorations are part of the frame
        EXPECT_TRUE(monitors()[monitor].contains(bounds.center().toPoint()));
        EXPECT_TRUE(entry->onScreen);
        EXPECT_EQ(entry->title, QStringLiteral("m%1").arg(monitor));
        EXPECT_EQ(entry->opacity, 1.0);
        ASSERT_TRUE(entry->ownerName.has_value());
        EXPECT_FALSE(entry->ownerName->isEmpty());
    }
}

TEST_F(X11WindowListTest, WindowWithoutNetWmPidGetsItsOwnerThroughXResource) {
    const quint32 window =
        client.open(QStringLiteral("anonymous"), placement(1, 100, 100, 300, 200) + QStringLiteral(" pid=no"));
    ASSERT_NE(window, 0u);
    ASSERT_FALSE(hasProperty(window, "_NET_WM_PID"));
    const std::optional<WindowEntry> entry = entryFor(window);
    ASSERT_TRUE(entry.has_value());
    EXPECT_EQ(entry->pid, client.pid());
}

TEST_F(X11WindowListTest, WindowsOfSeveralClientsInOneListEachHaveTheirOwnOwner) {
    // The server is asked once for the processes behind every client of the list.
    std::vector<std::unique_ptr<TestClient>> owners;
    QList<quint32> windows;
    for (int i = 0; i < 3; ++i) {
        owners.push_back(std::make_unique<TestClient>());
        ASSERT_TRUE(owners.back()->start());
        windows.append(owners.back()->open(QStringLiteral("owned%1").arg(i), placement(i, 100, 100, 300, 200)));
        ASSERT_NE(windows.last(), 0u);
    }
    const quint32 own = client.open(QStringLiteral("fixture"), placement(0, 500, 300, 300, 200));
    ASSERT_NE(own, 0u);
    const QList<WindowEntry> entries = list();
    for (int i = 0; i < 3; ++i) {
        const auto found = std::find_if(entries.cbegin(), entries.cend(),
                                        [&](const WindowEntry& entry) { return entry.id == windows[i]; });
        ASSERT_NE(found, entries.cend()) << i;
        EXPECT_EQ(found->pid, owners[i]->pid()) << i;
    }
    const auto found =
        std::find_if(entries.cbegin(), entries.cend(), [&](const WindowEntry& entry) { return entry.id == own; });
    ASSERT_NE(found, entries.cend());
    EXPECT_EQ(found->pid, client.pid());
    for (const auto& owner : owners) {
        owner->exit();
    }
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
    const QList<WindowEntry> entries = list();
    auto layerOf = [&](quint32 window) -> std::optional<int> {
        for (const WindowEntry& entry : entries) {
            if (entry.id == window) {
                return entry.layer;
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
    for (const WindowEntry& entry : entries) {
        if (entry.title == QLatin1String("panel")) {
            sawTray = true;
            EXPECT_NE(entry.layer, 0);
        }
    }
    EXPECT_TRUE(sawTray) << "the tray host's window is missing from the list";
    // Leaving out desktop elements drops the desktop window and nothing else of ours.
    const QList<WindowEntry> withoutDesktop = list(DesktopWindows::Exclude);
    EXPECT_FALSE(lists(withoutDesktop, desktop));
    EXPECT_TRUE(lists(withoutDesktop, normal));
    EXPECT_TRUE(lists(entries, desktop));
}

TEST_F(X11WindowListTest, MinimisedWindowIsListedButNotOnScreen) {
    const quint32 minimised =
        client.open(QStringLiteral("iconic"), placement(2, 100, 100, 300, 200) + QStringLiteral(" states=minimized"));
    const quint32 shown = client.open(QStringLiteral("shown"), placement(2, 200, 200, 300, 200));
    ASSERT_NE(minimised, 0u);
    ASSERT_NE(shown, 0u);
    const std::optional<WindowEntry> entry = entryFor(minimised);
    ASSERT_TRUE(entry.has_value());
    EXPECT_FALSE(entry->onScreen);
    EXPECT_EQ(entry->layer, 0);
    EXPECT_TRUE(isOnScreen(shown));
}

TEST_F(X11WindowListTest, ListIsFrontToBack) {
    const quint32 first = client.open(QStringLiteral("first"), placement(0, 100, 100, 300, 200));
    const quint32 second = client.open(QStringLiteral("second"), placement(0, 150, 150, 300, 200));
    ASSERT_NE(first, 0u);
    ASSERT_NE(second, 0u);
    auto indexOf = [this](quint32 window) {
        const QList<WindowEntry> entries = list();
        for (qsizetype i = 0; i < entries.size(); ++i) {
            if (entries[i].id == window) {
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
    // A private window list on the same connection, so the hook stays local to this test.
    X11WindowDesktopEntries entries;
    X11WindowList windowList(platform->connection(), entries);
    bool hookRan = false;
    windowList.setAfterListingHookForTesting([&] {
        hookRan = true;
        ASSERT_TRUE(client.close(QStringLiteral("doomed")));
        // The client has destroyed it; make sure the server has too before the reads go out.
        xcb_connection_t* c = xcb();
        xcb_generic_error_t* error = nullptr;
        std::free(xcb_get_geometry_reply(c, xcb_get_geometry(c, doomed), &error));
        EXPECT_NE(error, nullptr);
        std::free(error);
    });
    const auto entriesRead = windowList.windows(DesktopWindows::Include);
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
            if (!Platform::services().windowList->windows(DesktopWindows::Include)) {
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
        for (const WindowEntry& entry : list()) {
            if (windows.contains(static_cast<quint32>(entry.id))) {
                return false;
            }
        }
        return true;
    }));
    EXPECT_TRUE(entryFor(survivor).has_value());
}

TEST_F(X11WindowListTest, OwnerNameComesFromDesktopEntryThenClassThenProcessName) {
    QTemporaryDir data;
    ASSERT_TRUE(data.isValid());
    QFile file(data.path() + QStringLiteral("/probe-by-class.desktop"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Desktop Entry]\nType=Application\nName=Probe Application\nStartupWMClass=ProbeClass\n");
    file.close();
    X11WindowDesktopEntries entries({data.path()});
    X11WindowList windowList(platform->connection(), entries);
    auto ownerNameOf = [&windowList](quint32 window) {
        for (const WindowEntry& entry : windowList.windows(DesktopWindows::Include).value_or(QList<WindowEntry>{})) {
            if (entry.id == window) {
                return entry.ownerName.value_or(QStringLiteral("<no owner name>"));
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

TEST_F(X11WindowListTest, OrdinaryWindowIsListedWithOrWithoutDesktopWindows) {
    const quint32 window = client.open(QStringLiteral("plain"), placement(0, 100, 100, 300, 200));
    ASSERT_NE(window, 0u);
    EXPECT_TRUE(entryFor(window, DesktopWindows::Include).has_value());
    EXPECT_TRUE(entryFor(window, DesktopWindows::Exclude).has_value());
}

TEST_F(X11WindowListTest, ListWithoutTitlesHasEveryOtherFieldOfTheFullList) {
    const quint32 window = client.open(QStringLiteral("titled"), placement(1, 100, 100, 400, 300));
    const quint32 iconic =
        client.open(QStringLiteral("iconic"), placement(0, 100, 100, 300, 200) + QStringLiteral(" states=minimized"));
    const quint32 menu =
        client.open(QStringLiteral("menu"), placement(0, 200, 200, 300, 200) + QStringLiteral(" type=override"));
    ASSERT_NE(window, 0u);
    ASSERT_NE(iconic, 0u);
    ASSERT_NE(menu, 0u);
    WindowList& windowList = *Platform::services().windowList;
    const QList<WindowEntry> untitled =
        windowList.windowsWithoutTitles(DesktopWindows::Include).value_or(QList<WindowEntry>{});
    const QList<WindowEntry> titled = windowList.windows(DesktopWindows::Include).value_or(QList<WindowEntry>{});
    ASSERT_EQ(untitled.size(), titled.size());
    for (qsizetype i = 0; i < titled.size(); ++i) {
        EXPECT_FALSE(untitled[i].title.has_value()) << untitled[i].id;
        WindowEntry withTitle = untitled[i];
        withTitle.title = titled[i].title;
        EXPECT_EQ(withTitle, titled[i]) << titled[i].id;
    }
    for (quint32 listed : {window, iconic, menu}) {
        EXPECT_TRUE(lists(untitled, listed)) << listed;
    }
    EXPECT_EQ(entryFor(window)->title, QStringLiteral("titled"));
    EXPECT_FALSE(entryFor(iconic)->onScreen);
}

// Under a window manager the root's other children are mostly its frames, and it names a check window
// made by its own connection; windows of that connection are not read. A check window that does not
// name itself back (one left behind by a window manager that has gone) does not count.
TEST_F(X11WindowListTest, WindowsOfTheConnectionOfAStaleCheckWindowAreStillListed) {
    const quint32 normal = client.open(QStringLiteral("normal"), placement(0, 100, 100, 300, 200));
    const quint32 menu =
        client.open(QStringLiteral("menu"), placement(0, 200, 200, 300, 200) + QStringLiteral(" type=override"));
    ASSERT_NE(normal, 0u);
    ASSERT_NE(menu, 0u);
    X11Connection& connection = platform->connection();
    const std::unique_ptr<X11Connection> other = X11Connection::open(connection.displayName());
    ASSERT_NE(other, nullptr);
    xcb_connection_t* c = other->xcb();
    const xcb_atom_t checkAtom = connection.atom("_NET_SUPPORTING_WM_CHECK");
    xcb_get_property_reply_t* saved = xcb_get_property_reply(
        xcb(), xcb_get_property(xcb(), 0, connection.root(), checkAtom, XCB_ATOM_WINDOW, 0, 1), nullptr);
    ASSERT_NE(saved, nullptr);
    ASSERT_EQ(xcb_get_property_value_length(saved), 4) << "the window manager names no check window";
    const xcb_window_t windowManagerCheck = *static_cast<const xcb_window_t*>(xcb_get_property_value(saved));
    std::free(saved);
    // An override-redirect window, shown, made by the other connection.
    const xcb_window_t popup = xcb_generate_id(c);
    const uint32_t values[] = {1u};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, popup, other->root(), monitors()[0].x() + 50, monitors()[0].y() + 50,
                      200, 150, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                      values);
    xcb_map_window(c, popup);
    auto setCheck = [c](xcb_window_t on, xcb_atom_t atom, xcb_window_t value) {
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, on, atom, XCB_ATOM_WINDOW, 32, 1, &value);
        std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
    };
    setCheck(other->root(), checkAtom, popup);
    const QList<WindowEntry> withStaleCheck = list();
    // Once the popup names itself, its connection reads as the window manager's, and its windows are
    // not listed; every client's window still is.
    setCheck(popup, checkAtom, popup);
    const QList<WindowEntry> withConfirmedCheck = list();
    setCheck(other->root(), checkAtom, windowManagerCheck);
    const QList<WindowEntry> restored = list();

    EXPECT_TRUE(lists(withStaleCheck, popup));
    EXPECT_FALSE(lists(withConfirmedCheck, popup));
    EXPECT_TRUE(lists(restored, popup));
    for (const QList<WindowEntry>* entries : {&withStaleCheck, &withConfirmedCheck, &restored}) {
        EXPECT_TRUE(lists(*entries, normal));
        EXPECT_TRUE(lists(*entries, menu));
    }
}

}  // namespace
