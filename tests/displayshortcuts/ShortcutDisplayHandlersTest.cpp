// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QCoreApplication>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/controller/AppController.h"
#include "app/update/Updater.h"
#include "platform/fake/FakePlatform.h"
#include "tests/support/VirtualDesktop.h"

namespace {

using KeyboardShortcuts::Name;
using KeyboardShortcuts::Shortcut;

constexpr int kControlOption = 0x1000 | 0x800;

Monitor display(MonitorId id, const QString& name, quint32 serial, qreal x = 0) {
    return {.id = id, .name = name, .bounds = QRectF(x, 0, 1920, 1080), .vendor = 16, .model = 32, .serial = serial};
}

Name displayName(const QString& id) {
    return Name(AppController::shortcutNameRawValue(id));
}

class ShortcutDisplayHandlersTest : public ::testing::Test {
protected:
    void SetUp() override {
        platform.monitors.setMonitors(
            {display(5, QStringLiteral("Main"), 1), display(9, QStringLiteral("Side"), 2, 1920)});
        shortcuts.setShortcut(Shortcut(18, kControlOption), displayName(QStringLiteral("v16-m32-s1")));
        shortcuts.setShortcut(Shortcut(19, kControlOption), displayName(QStringLiteral("v16-m32-s2")));
    }

    // Presses and releases a key, then lets the queued move run.
    void tap(quint32 keyCode) {
        platform.hotKeys.press(keyCode, kControlOption);
        platform.hotKeys.release(keyCode, kControlOption);
        QCoreApplication::processEvents();
    }

    FakePlatform platform;
    KeyboardShortcuts::ActionShortcuts shortcuts;
    Updater updater;
};

TEST_F(ShortcutDisplayHandlersTest, FirstRunWithTwoDisplaysInstallsTwoHandlers) {
    AppController controller(shortcuts, updater);
    EXPECT_EQ(platform.hotKeys.registrations().size(), 2);
    EXPECT_EQ(controller.registeredShortcutDisplayIDs().size(), 2);
}

TEST_F(ShortcutDisplayHandlersTest, RebuildingAgainInstallsNoSecondHandler) {
    AppController controller(shortcuts, updater);
    controller.refreshShortcutDisplays();
    controller.refreshShortcutDisplays();
    int moves = 0;
    QObject::connect(&controller, &AppController::statusMessageChanged, [&] { ++moves; });
    platform.sessionCheck.windowControlAvailable = false;
    controller.refreshPermissions();
    tap(18);
    EXPECT_EQ(moves, 1);
}

TEST_F(ShortcutDisplayHandlersTest, MoveHappensOnReleaseNotOnPress) {
    AppController controller(shortcuts, updater);
    platform.hotKeys.press(19, kControlOption);
    QCoreApplication::processEvents();
    EXPECT_TRUE(controller.statusMessage().isEmpty());
    platform.hotKeys.release(19, kControlOption);
    EXPECT_TRUE(controller.statusMessage().isEmpty()) << "the move waits until the key event is handled";
    QCoreApplication::processEvents();
    // Nothing has focus on the fake platform, so the mover finds nothing to move.
    EXPECT_EQ(controller.statusMessage(), QStringLiteral("No focused window was found to move."));
}

TEST_F(ShortcutDisplayHandlersTest, UnpluggedDisplaysShortcutSaysItIsNotConnected) {
    AppController controller(shortcuts, updater);
    platform.monitors.changeMonitors({display(5, QStringLiteral("Main"), 1)});
    QCoreApplication::processEvents();
    ASSERT_EQ(controller.disconnectedShortcutDisplays().size(), 1);
    tap(19);
    EXPECT_EQ(controller.statusMessage(), QStringLiteral("Shortcut target display is currently not connected."));
}

TEST_F(ShortcutDisplayHandlersTest, DeletingADisconnectedDisplayForgetsItsKeyCombination) {
    AppController controller(shortcuts, updater);
    platform.monitors.changeMonitors({display(5, QStringLiteral("Main"), 1)});
    QCoreApplication::processEvents();
    controller.deleteDisconnectedShortcutDisplay(QStringLiteral("v16-m32-s2"));
    EXPECT_FALSE(shortcuts.shortcut(displayName(QStringLiteral("v16-m32-s2"))).has_value());
    EXPECT_FALSE(shortcuts.isStored(displayName(QStringLiteral("v16-m32-s2"))));
    EXPECT_EQ(platform.hotKeys.registrations().size(), 1);
    tap(19);
    EXPECT_TRUE(controller.statusMessage().isEmpty());
    // The connected display's shortcut still works.
    EXPECT_TRUE(shortcuts.shortcut(displayName(QStringLiteral("v16-m32-s1"))).has_value());
}

TEST_F(ShortcutDisplayHandlersTest, HandlerOfADestroyedControllerDoesNothing) {
    { AppController gone(shortcuts, updater); }
    AppController controller(shortcuts, updater);
    int messages = 0;
    QObject::connect(&controller, &AppController::statusMessageChanged, [&] { ++messages; });
    tap(18);
    // Only the live controller's handler moves; the first one's holds nothing and is skipped.
    EXPECT_EQ(messages, 1);
}

}  // namespace
