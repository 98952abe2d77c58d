// SPDX-License-Identifier: MIT
// Without a window manager the window control answers that windows cannot be read or moved here.
#include <QPointF>

#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "tests/platform/x11/X11DesktopFixture.h"

namespace {

class X11WindowControlWithoutWmTest : public X11DesktopFixture {};

TEST_F(X11WindowControlWithoutWmTest, EveryReadAndChangeIsNotPermitted) {
    const quint32 window = client.open(QStringLiteral("w"), placement(0, 100, 100, 300, 200));
    ASSERT_NE(window, 0u);
    WindowControl& control = *Platform::services().windowControl;
    const auto pid = static_cast<pid_t>(client.pid());
    EXPECT_EQ(control.frame(window).result, Result::NotPermitted);
    EXPECT_EQ(control.facts({window}).value(0).role.result, Result::NotPermitted);
    EXPECT_EQ(control.windows(pid, WindowScope::Visible).result, Result::NotPermitted);
    EXPECT_EQ(control.windowsOfApplications({pid}).value(0).includingMinimised.result, Result::NotPermitted);
    EXPECT_EQ(control.focusedWindow().result, Result::NotPermitted);
    EXPECT_EQ(control.focusedApplication().result, Result::NotPermitted);
    EXPECT_EQ(control.move(window, QPointF(5, 5)), Result::NotPermitted);
    EXPECT_EQ(control.unminimise(window), Result::NotPermitted);
    EXPECT_EQ(control.activate(window), Result::NotPermitted);
    // The window list itself does not need a window manager: unmanaged windows are still listed.
    EXPECT_TRUE(entryFor(window).has_value());
}

}  // namespace
