// SPDX-License-Identifier: MIT
#include <QGuiApplication>
#include <QScreen>

#include "platform/Monitors.h"
#include "platform/Platform.h"
#include "platform/RunningApplications.h"
#include "platform/WindowControl.h"
#include "tests/platform/kwin/KWinSessionFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

using KWinInventoryTest = KWinSessionFixture;

TEST_F(KWinInventoryTest, MonitorsAreKWinsOutputsWithTheirSizesAndNames) {
    const QList<Monitor> monitors = Platform::services().monitors->monitors();
    const QList<QRect> expected = layout();
    ASSERT_EQ(monitors.size(), expected.size());
    for (qsizetype i = 0; i < monitors.size(); ++i) {
        EXPECT_TRUE(near(monitors[i].bounds, expected[i])) << i;
        EXPECT_EQ(monitors[i].name, QStringLiteral("Virtual-%1").arg(i)) << monitors[i].name.toStdString();
        EXPECT_NE(monitors[i].id, 0U);
        EXPECT_EQ(monitors[i].primary, i == 0);
    }
}

TEST_F(KWinInventoryTest, ListsNativeAndXwaylandWindowsWithTheirOwners) {
    ASSERT_TRUE(wayland.open(QStringLiteral("native"), QStringLiteral("title=native-window w=400 h=300")));
    ASSERT_NE(
        x11.open(QStringLiteral("legacy"), QStringLiteral("title=\"x11-window\" w=300 h=200 class=legacy.Legacy")), 0U);

    const std::optional<WindowEntry> native = waitForWindow(QStringLiteral("native-window"));
    const std::optional<WindowEntry> legacy = waitForWindow(QStringLiteral("x11-window"));
    ASSERT_TRUE(native);
    ASSERT_TRUE(legacy);
    EXPECT_EQ(native->pid, static_cast<pid_t>(wayland.pid()));
    EXPECT_EQ(legacy->pid, static_cast<pid_t>(x11.pid()));
    EXPECT_EQ(native->ownerName, QStringLiteral("lattica-wayland-test-client"));
    // KWin keeps window classes in lower case.
    EXPECT_EQ(legacy->ownerName, QStringLiteral("legacy"));
    EXPECT_EQ(native->layer, 0);
    EXPECT_TRUE(native->onScreen);
    EXPECT_NE(native->id, legacy->id);

    const QList<RunningApplication> applications = Platform::services().runningApplications->runningApplications();
    auto find = [&](qint64 pid) {
        return std::find_if(applications.cbegin(), applications.cend(),
                            [pid](const RunningApplication& application) { return application.pid == pid; });
    };
    ASSERT_NE(find(wayland.pid()), applications.cend());
    ASSERT_NE(find(x11.pid()), applications.cend());
    EXPECT_EQ(find(wayland.pid())->policy, ApplicationPolicy::Regular);

    WindowControl& control = *Platform::services().windowControl;
    const Reading<QList<WindowId>> windows = control.windows(static_cast<pid_t>(wayland.pid()), WindowScope::Visible);
    ASSERT_EQ(windows.result, Result::Ok);
    EXPECT_EQ(*windows.value, QList<WindowId>{native->id});
    EXPECT_EQ(control.role(native->id).value, WindowRole::Window);
    EXPECT_EQ(control.frame(native->id).value, native->frame);
}

TEST_F(KWinInventoryTest, AMinimisedWindowIsListedOnlyWithMinimisedOnes) {
    ASSERT_TRUE(wayland.open(QStringLiteral("small"), QStringLiteral("title=minimised-window state=minimized")));
    std::optional<WindowEntry> entry = waitForWindow(QStringLiteral("minimised-window"));
    ASSERT_TRUE(entry);
    WindowControl& control = *Platform::services().windowControl;
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return control.minimised(entry->id).value == true; }));
    const pid_t pid = static_cast<pid_t>(wayland.pid());
    EXPECT_TRUE(control.windows(pid, WindowScope::Visible).value->isEmpty());
    EXPECT_EQ(*control.windows(pid, WindowScope::IncludingMinimised).value, QList<WindowId>{entry->id});

    EXPECT_EQ(control.unminimise(entry->id), Result::Ok);
    EXPECT_EQ(control.minimised(entry->id).value, false);
    EXPECT_TRUE(entryFor(entry->id)->onScreen);
}

TEST_F(KWinInventoryTest, TheActiveWindowIsTheFocusedOne) {
    ASSERT_TRUE(wayland.open(QStringLiteral("one"), QStringLiteral("title=first-window")));
    ASSERT_TRUE(wayland.open(QStringLiteral("two"), QStringLiteral("title=second-window")));
    const auto first = waitForWindow(QStringLiteral("first-window"));
    const auto second = waitForWindow(QStringLiteral("second-window"));
    ASSERT_TRUE(first);
    ASSERT_TRUE(second);
    WindowControl& control = *Platform::services().windowControl;
    // KWin may give the focus to either window as they map; once both are listed that choice is made, so
    // each activation below is the last word on the focus.
    EXPECT_EQ(control.activate(second->id), Result::Ok);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return control.focusedWindow().value == second->id; }));
    EXPECT_EQ(control.activate(first->id), Result::Ok);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return control.focusedWindow().value == first->id; }));
    EXPECT_EQ(control.focusedApplication().value, static_cast<pid_t>(wayland.pid()));
    EXPECT_EQ(control.focusedWindow(static_cast<pid_t>(wayland.pid())).value, first->id);
}

}  // namespace
