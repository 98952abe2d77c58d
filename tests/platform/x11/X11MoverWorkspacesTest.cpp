// SPDX-License-Identifier: MIT
// Moves from a card stay on the workspace the user is looking at: an application's windows on other
// workspaces keep their place, their workspace and their state, and are not counted.
#include <QSet>

#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "app/mover/WindowMover.h"
#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "tests/platform/x11/X11DesktopFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

class X11MoverWorkspacesTest : public X11DesktopFixture {
protected:
    void SetUp() override {
        X11DesktopFixture::SetUp();
        ASSERT_TRUE(switchToDesktop(0));
    }
    void TearDown() override {
        switchToDesktop(0);
        X11DesktopFixture::TearDown();
    }

    bool minimized(quint32 window) {
        const Reading<bool> minimised = Platform::services().windowControl->minimised(window);
        return minimised.result == Result::Ok && minimised.value.value_or(false);
    }
    // Opens a window over the first monitor and puts it on the desktop.
    quint32 openOn(const QString& name, quint32 desktop, int dx, const QString& extra = {}) {
        const quint32 window = client.open(name, placement(0, dx, 150, 400, 300) + extra);
        if (window == 0 || (desktop != 0 && !sendToDesktop(window, desktop))) {
            ADD_FAILURE() << "could not place " << name.toStdString() << " on desktop " << desktop;
            return 0;
        }
        return window;
    }
    // The test client's qualifying windows on a display: what its card counts.
    qsizetype cardCount(const DisplaySnapshot& display) {
        qsizetype count = 0;
        for (const QualifiedWindow& window : ScreenSnapshotService::qualifyingWindows()) {
            if (window.ownerPID == client.pid() && window.bounds.intersects(display.bounds)) {
                ++count;
            }
        }
        return count;
    }
};

TEST_F(X11MoverWorkspacesTest, MovingVisibleWindowsLeavesOtherWorkspacesAlone) {
    const quint32 shown = openOn(QStringLiteral("shown"), 0, 100);
    const quint32 iconic = openOn(QStringLiteral("iconic"), 0, 300, QStringLiteral(" states=minimized"));
    const quint32 sticky = openOn(QStringLiteral("sticky"), kAllDesktops, 500);
    const quint32 elsewhere = openOn(QStringLiteral("elsewhere"), 1, 700);
    ASSERT_TRUE(shown && iconic && sticky && elsewhere);
    ASSERT_EQ(currentDesktop(), 0u);
    const QRect elsewhereBefore = frameFromTree(elsewhere);
    const DisplaySnapshot source = display(0);
    const DisplaySnapshot target = display(1);
    // The card counts what a move from it will try.
    EXPECT_EQ(cardCount(source), 3);

    AppController controller;
    controller.moveWindows(source, target);
    // The move refreshes the panel in the background; its reads end before the desktop goes.
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return !controller.isLoadingPreviews(); }));
    EXPECT_EQ(controller.statusMessage(), QStringLiteral("Moved 3 of 3 windows."));
    for (quint32 window : {shown, iconic, sticky}) {
        EXPECT_TRUE(QRectF(target.bounds).contains(QRectF(frameFromTree(window)))) << window;
    }
    EXPECT_EQ(frameFromTree(elsewhere), elsewhereBefore);
    EXPECT_EQ(desktopOf(elsewhere), 1u);
    EXPECT_EQ(currentDesktop(), 0u);
}

TEST_F(X11MoverWorkspacesTest, PerApplicationMoveRestoresOnlyThisWorkspacesMinimisedWindows) {
    const quint32 shown = openOn(QStringLiteral("shown"), 0, 100);
    const quint32 iconic = openOn(QStringLiteral("iconic"), 0, 300, QStringLiteral(" states=minimized"));
    const quint32 elsewhere = openOn(QStringLiteral("elsewhere"), 1, 500);
    const quint32 iconicElsewhere =
        openOn(QStringLiteral("iconicElsewhere"), 1, 700, QStringLiteral(" states=minimized"));
    ASSERT_TRUE(shown && iconic && elsewhere && iconicElsewhere);
    ASSERT_TRUE(minimized(iconic));
    ASSERT_TRUE(minimized(iconicElsewhere));
    const QRect elsewhereBefore = frameFromTree(elsewhere);
    const QRect iconicElsewhereBefore = frameFromTree(iconicElsewhere);
    const DisplaySnapshot source = display(0);
    const DisplaySnapshot target = display(2);
    EXPECT_EQ(cardCount(source), 2);

    AppController controller;
    const DisplayAppGroup group{static_cast<pid_t>(client.pid()), QStringLiteral("Test Client"), 2};
    controller.moveWindows(group, source, target);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return !controller.isLoadingPreviews(); }));
    EXPECT_EQ(controller.statusMessage(), QStringLiteral("Moved 2 of 2 Test Client windows."));
    EXPECT_FALSE(minimized(iconic));
    EXPECT_TRUE(
        VirtualDesktop::waitUntil([&] { return QRectF(target.bounds).contains(QRectF(frameFromTree(iconic))); }));
    EXPECT_TRUE(QRectF(target.bounds).contains(QRectF(frameFromTree(shown))));
    // The other workspace keeps its windows where and as they were, and the user stays here.
    EXPECT_TRUE(minimized(iconicElsewhere));
    EXPECT_EQ(frameFromTree(elsewhere), elsewhereBefore);
    EXPECT_EQ(frameFromTree(iconicElsewhere), iconicElsewhereBefore);
    EXPECT_EQ(desktopOf(elsewhere), 1u);
    EXPECT_EQ(desktopOf(iconicElsewhere), 1u);
    EXPECT_EQ(currentDesktop(), 0u);
}

}  // namespace
