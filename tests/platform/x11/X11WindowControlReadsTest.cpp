// SPDX-License-Identifier: MIT
// Reads through the window control on a real desktop.
#include <QPointF>
#include <QSizeF>
#include <algorithm>

#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "platform/WindowList.h"
#include "tests/platform/x11/X11DesktopFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

class X11WindowControlReadsTest : public X11DesktopFixture {
protected:
    WindowControl& control() { return *Platform::services().windowControl; }
    pid_t app() const { return static_cast<pid_t>(client.pid()); }

    static QList<WindowId> sorted(QList<WindowId> windows) {
        std::sort(windows.begin(), windows.end());
        return windows;
    }
    QList<WindowId> windowsOf(WindowScope scope) {
        const Reading<QList<WindowId>> list = control().windows(app(), scope);
        return list.result == Result::Ok ? sorted(list.value.value_or(QList<WindowId>{})) : QList<WindowId>{};
    }
    std::optional<WindowRole> role(quint32 window) {
        const Reading<WindowRole> reading = control().role(window);
        return reading.result == Result::Ok ? reading.value : std::nullopt;
    }
};

TEST_F(X11WindowControlReadsTest, VisibleListHoldsShownWindowsAndTheOtherAddsMinimisedOnes) {
    const quint32 shown = client.open(QStringLiteral("shown"), placement(0, 100, 100, 300, 200));
    const quint32 iconic =
        client.open(QStringLiteral("iconic"), placement(0, 150, 150, 300, 200) + QStringLiteral(" states=minimized"));
    ASSERT_NE(shown, 0u);
    ASSERT_NE(iconic, 0u);
    EXPECT_EQ(windowsOf(WindowScope::Visible), QList<WindowId>{shown});
    EXPECT_EQ(windowsOf(WindowScope::IncludingMinimised), sorted({shown, iconic}));
}

TEST_F(X11WindowControlReadsTest, WindowListsHoldThisWorkspaceAndStickyWindowsOnly) {
    ASSERT_TRUE(switchToDesktop(0));
    const quint32 here = client.open(QStringLiteral("here"), placement(0, 100, 100, 300, 200));
    const quint32 iconic =
        client.open(QStringLiteral("iconic"), placement(0, 150, 150, 300, 200) + QStringLiteral(" states=minimized"));
    const quint32 sticky = client.open(QStringLiteral("sticky"), placement(0, 200, 200, 300, 200));
    const quint32 away = client.open(QStringLiteral("away"), placement(0, 250, 250, 300, 200));
    const quint32 awayIconic = client.open(QStringLiteral("awayIconic"),
                                           placement(0, 300, 300, 300, 200) + QStringLiteral(" states=minimized"));
    ASSERT_TRUE(here && iconic && sticky && away && awayIconic);
    ASSERT_TRUE(sendToDesktop(sticky, kAllDesktops));
    ASSERT_TRUE(sendToDesktop(away, 1));
    ASSERT_TRUE(sendToDesktop(awayIconic, 1));
    EXPECT_EQ(windowsOf(WindowScope::Visible), sorted({here, sticky}));
    EXPECT_EQ(windowsOf(WindowScope::IncludingMinimised), sorted({here, iconic, sticky}));
    const ApplicationWindows batch = control().windowsOfApplications({app()}).value(0);
    EXPECT_EQ(sorted(batch.includingMinimised.value.value_or(QList<WindowId>{})), sorted({here, iconic, sticky}));
    // Seen from the other workspace, the lists turn around.
    ASSERT_TRUE(switchToDesktop(1));
    EXPECT_EQ(windowsOf(WindowScope::IncludingMinimised), sorted({sticky, away, awayIconic}));
    EXPECT_TRUE(switchToDesktop(0));
}

TEST_F(X11WindowControlReadsTest, ApplicationWithoutWindowsHasAnEmptyList) {
    const Reading<QList<WindowId>> list = control().windows(app(), WindowScope::Visible);
    ASSERT_EQ(list.result, Result::Ok);
    EXPECT_TRUE(list.value->isEmpty());
}

TEST_F(X11WindowControlReadsTest, RolesFollowWindowTypes) {
    const QString at = placement(1, 100, 100, 300, 200);
    const quint32 normal = client.open(QStringLiteral("normal"), at);
    const quint32 utility = client.open(QStringLiteral("utility"), at + QStringLiteral(" type=utility"));
    const quint32 dialog = client.open(QStringLiteral("dialog"), at + QStringLiteral(" type=dialog"));
    const quint32 modal =
        client.open(QStringLiteral("modal"), at + QStringLiteral(" states=modal transient-for=normal"));
    const quint32 transient =
        client.open(QStringLiteral("transient"), at + QStringLiteral(" transient-for=normal type=none"));
    const quint32 dock = client.open(QStringLiteral("dock"), at + QStringLiteral(" type=dock"));
    const quint32 splash = client.open(QStringLiteral("splash"), at + QStringLiteral(" type=splash"));
    EXPECT_EQ(role(normal), WindowRole::Window);
    EXPECT_EQ(role(utility), WindowRole::Window);
    EXPECT_EQ(role(dialog), WindowRole::Dialog);
    EXPECT_EQ(role(modal), WindowRole::Dialog);
    EXPECT_EQ(role(transient), WindowRole::Dialog);
    EXPECT_EQ(role(dock), WindowRole::Other);
    EXPECT_EQ(role(splash), WindowRole::Other);
}

TEST_F(X11WindowControlReadsTest, InventoryAnswersForTheOwnersLikeTheWindowControl) {
    const QString at = placement(1, 100, 100, 300, 200);
    const quint32 normal = client.open(QStringLiteral("normal"), at);
    const quint32 dialog = client.open(QStringLiteral("dialog"), at + QStringLiteral(" type=dialog"));
    const quint32 modal =
        client.open(QStringLiteral("modal"), at + QStringLiteral(" states=modal transient-for=normal"));
    const quint32 transient =
        client.open(QStringLiteral("transient"), at + QStringLiteral(" transient-for=normal type=none"));
    const quint32 splash = client.open(QStringLiteral("splash"), at + QStringLiteral(" type=splash"));
    const quint32 iconic = client.open(QStringLiteral("iconic"), at + QStringLiteral(" states=minimized"));
    ASSERT_TRUE(normal && dialog && modal && transient && splash && iconic);

    const std::optional<WindowInventory> inventory =
        Platform::services().windowList->inventory(DesktopWindows::Exclude);
    ASSERT_TRUE(inventory.has_value());
    for (const WindowEntry& entry : inventory->windows) {
        if (entry.pid) {
            EXPECT_TRUE(inventory->applications.contains(*entry.pid)) << *entry.pid;
        }
    }
    ASSERT_TRUE(inventory->applications.contains(app()));
    const ApplicationWindowRoles owned = inventory->applications.value(app());
    const ApplicationWindows asked = control().windowsOfApplications({app()}).value(0);
    // The window manager may still restack the new windows between the two reads, so the order is not
    // compared; both lists come front to back from the same code.
    EXPECT_EQ(owned.lists.visible.result, asked.visible.result);
    EXPECT_EQ(owned.lists.includingMinimised.result, asked.includingMinimised.result);
    EXPECT_EQ(sorted(owned.lists.visible.value.value_or(QList<WindowId>{})),
              sorted(asked.visible.value.value_or(QList<WindowId>{})));
    EXPECT_EQ(sorted(owned.lists.includingMinimised.value.value_or(QList<WindowId>{})),
              sorted(asked.includingMinimised.value.value_or(QList<WindowId>{})));
    const QList<WindowId> all = sorted(owned.lists.includingMinimised.value.value_or(QList<WindowId>{}));
    EXPECT_EQ(all, sorted({normal, dialog, modal, transient, splash, iconic}));
    EXPECT_EQ(owned.roles.size(), all.size());
    for (WindowId window : all) {
        EXPECT_EQ(owned.roles.value(window), control().role(window)) << window;
    }
    // A modal window's role depends on WM_TRANSIENT_FOR, which the list itself does not read for it.
    EXPECT_EQ(owned.roles.value(modal), (Reading<WindowRole>{Result::Ok, WindowRole::Dialog}));
    EXPECT_EQ(owned.roles.value(splash), (Reading<WindowRole>{Result::Ok, WindowRole::Other}));
}

TEST_F(X11WindowControlReadsTest, FrameAndStateMatchTheWindowList) {
    const quint32 window = client.open(QStringLiteral("w"), placement(2, 130, 140, 333, 222));
    ASSERT_NE(window, 0u);
    const Reading<QRectF> frame = control().frame(window);
    const Reading<bool> minimised = control().minimised(window);
    ASSERT_EQ(frame.result, Result::Ok);
    ASSERT_EQ(minimised.result, Result::Ok);
    EXPECT_EQ(*frame.value, boundsOf(entryFor(window)));
    EXPECT_EQ(*frame.value, QRectF(frameFromTree(window)));
    EXPECT_FALSE(*minimised.value);
}

TEST_F(X11WindowControlReadsTest, FocusFollowsTheActiveWindow) {
    TestClient other;
    ASSERT_TRUE(other.start());
    const quint32 mine = client.open(QStringLiteral("mine"), placement(0, 100, 100, 300, 200));
    const quint32 theirs = other.open(QStringLiteral("theirs"), placement(1, 100, 100, 300, 200));
    ASSERT_NE(mine, 0u);
    ASSERT_NE(theirs, 0u);
    // The window manager focuses a new window a moment after it appears; let that happen first.
    ASSERT_TRUE(activate(theirs));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        return control().focusedWindow() == Reading<WindowId>{Result::Ok, theirs};
    }));
    ASSERT_TRUE(activate(mine));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        return control().focusedWindow() == Reading<WindowId>{Result::Ok, mine};
    }));
    EXPECT_EQ(control().focusedApplication(), (Reading<pid_t>{Result::Ok, app()}));
    EXPECT_EQ(control().focusedWindow(app()), (Reading<WindowId>{Result::Ok, mine}));
    EXPECT_EQ(control().mainWindow(app()), (Reading<WindowId>{Result::Ok, mine}));
    // The other application has no focused window while ours is active.
    const auto otherApp = static_cast<pid_t>(other.pid());
    EXPECT_EQ(control().focusedWindow(otherApp).result, Result::NoValue);
    EXPECT_EQ(control().mainWindow(otherApp).result, Result::NoValue);
}

TEST_F(X11WindowControlReadsTest, BadWindowsAndApplicationsGiveTheirResults) {
    const quint32 window = client.open(QStringLiteral("w"), placement(0, 100, 100, 300, 200));
    ASSERT_NE(window, 0u);
    EXPECT_EQ(control().frame(0).result, Result::Gone);
    EXPECT_EQ(control().role(-5).result, Result::Gone);
    EXPECT_EQ(control().frame(0x7ffffff0).result, Result::Gone);
    EXPECT_EQ(control().windows(-1, WindowScope::Visible).result, Result::Failure);
    // A pid that belongs to no process.
    EXPECT_EQ(control().windows(0x7ffffff0, WindowScope::Visible).result, Result::Gone);
}

TEST_F(X11WindowControlReadsTest, BatchReadsAnswerLikeSingleReads) {
    const quint32 a = client.open(QStringLiteral("a"), placement(0, 100, 100, 300, 200));
    const quint32 b =
        client.open(QStringLiteral("b"), placement(1, 100, 100, 300, 200) + QStringLiteral(" type=dialog"));
    ASSERT_NE(a, 0u);
    ASSERT_NE(b, 0u);
    const QList<WindowId> windows{a, b, 0};
    const QList<WindowFacts> batch = control().facts(windows);
    ASSERT_EQ(batch.size(), windows.size());
    for (qsizetype i = 0; i < windows.size(); ++i) {
        EXPECT_EQ(batch[i].frame, control().frame(windows[i])) << i;
        EXPECT_EQ(batch[i].role, control().role(windows[i])) << i;
        EXPECT_EQ(batch[i].minimised, control().minimised(windows[i])) << i;
    }
    EXPECT_EQ(batch[1].role, (Reading<WindowRole>{Result::Ok, WindowRole::Dialog}));
    EXPECT_EQ(batch[2].frame.result, Result::Gone);
    const QList<ApplicationWindows> lists = control().windowsOfApplications({app(), -1});
    ASSERT_EQ(lists.size(), 2);
    EXPECT_EQ(sorted(lists[0].visible.value.value_or(QList<WindowId>{})), windowsOf(WindowScope::Visible));
    EXPECT_EQ(sorted(lists[0].includingMinimised.value.value_or(QList<WindowId>{})),
              windowsOf(WindowScope::IncludingMinimised));
    EXPECT_EQ(lists[1].visible.result, Result::Failure);
}

}  // namespace
