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

// A monitor that earlier versions identified by its display number alone, now read with its EDID.
Monitor identifiedLater(MonitorId id, const QString& name, quint32 serial, qreal x = 0) {
    Monitor monitor = display(id, name, serial, x);
    monitor.formerId = id;
    return monitor;
}

TEST_F(ShortcutDisplayHandlersTest, DisplayStoredUnderItsFormerIdentifierKeepsRecordAndShortcut) {
    // What an earlier version stored: the record and the shortcut under "display-12".
    platform.settings.setData(QStringLiteral("shortcutDisplayRecords.v1"),
                              R"([{"id":"display-12","lastKnownName":"Old","lastKnownIndex":1}])");
    shortcuts.setShortcut(Shortcut(20, kControlOption), displayName(QStringLiteral("display-12")));
    platform.monitors.setMonitors({identifiedLater(12, QStringLiteral("Desk"), 77)});

    AppController controller(shortcuts, updater);
    ASSERT_EQ(controller.connectedShortcutDisplays().size(), 1);
    EXPECT_EQ(controller.connectedShortcutDisplays()[0].id, QStringLiteral("v16-m32-s77"));
    EXPECT_TRUE(controller.disconnectedShortcutDisplays().isEmpty());
    ASSERT_EQ(controller.shortcutDisplayRecords().size(), 1);
    EXPECT_EQ(controller.shortcutDisplayRecords()[0].id, QStringLiteral("v16-m32-s77"));
    EXPECT_EQ(controller.shortcutDisplayRecords()[0].lastKnownName, QStringLiteral("Desk"));
    EXPECT_EQ(shortcuts.shortcut(displayName(QStringLiteral("v16-m32-s77"))), Shortcut(20, kControlOption));
    EXPECT_FALSE(shortcuts.isStored(displayName(QStringLiteral("display-12"))));
    EXPECT_EQ(controller.registeredShortcutDisplayIDs(), QSet<QString>{QStringLiteral("v16-m32-s77")});
    // Its hot key is held once (beside the two of SetUp), and it moves to the display.
    EXPECT_EQ(platform.hotKeys.registrations().size(), 3);
    tap(20);
    EXPECT_EQ(controller.statusMessage(), QStringLiteral("No focused window was found to move."));
}

TEST_F(ShortcutDisplayHandlersTest, DisplayReadWithItsEdidLaterTakesOverItsRecordWhileRunning) {
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1), {.id = 12, .name = QStringLiteral("Old")}});
    shortcuts.setShortcut(Shortcut(20, kControlOption), displayName(QStringLiteral("display-12")));
    AppController controller(shortcuts, updater);
    ASSERT_EQ(controller.connectedShortcutDisplays()[1].id, QStringLiteral("display-12"));

    platform.monitors.changeMonitors(
        {display(5, QStringLiteral("Main"), 1), identifiedLater(12, QStringLiteral("Desk"), 77, 1920)});
    QCoreApplication::processEvents();
    ASSERT_EQ(controller.connectedShortcutDisplays().size(), 2);
    EXPECT_EQ(controller.connectedShortcutDisplays()[1].id, QStringLiteral("v16-m32-s77"));
    EXPECT_TRUE(controller.disconnectedShortcutDisplays().isEmpty());
    EXPECT_EQ(shortcuts.shortcut(displayName(QStringLiteral("v16-m32-s77"))), Shortcut(20, kControlOption));
    EXPECT_FALSE(shortcuts.shortcut(displayName(QStringLiteral("display-12"))).has_value());
    EXPECT_EQ(platform.hotKeys.registrations().size(), 3);
}

TEST_F(ShortcutDisplayHandlersTest, FormerIdentifierStillInUseIsNotTakenOver) {
    // Display number 12 is connected without EDID; another monitor names it as its former number.
    platform.monitors.setMonitors({{.id = 12, .name = QStringLiteral("Plain")}});
    shortcuts.setShortcut(Shortcut(20, kControlOption), displayName(QStringLiteral("display-12")));
    AppController controller(shortcuts, updater);
    platform.monitors.changeMonitors(
        {{.id = 12, .name = QStringLiteral("Plain")}, identifiedLater(12, QStringLiteral("Desk"), 77, 1920)});
    QCoreApplication::processEvents();
    ASSERT_EQ(controller.connectedShortcutDisplays().size(), 2);
    EXPECT_EQ(controller.shortcutDisplayRecords().size(), 2);
    EXPECT_EQ(shortcuts.shortcut(displayName(QStringLiteral("display-12"))), Shortcut(20, kControlOption));
    EXPECT_FALSE(shortcuts.shortcut(displayName(QStringLiteral("v16-m32-s77"))).has_value());
}

TEST_F(ShortcutDisplayHandlersTest, DisplayWithARecordOfItsOwnLeavesTheFormerOneAlone) {
    platform.settings.setData(QStringLiteral("shortcutDisplayRecords.v1"),
                              R"([{"id":"display-5","lastKnownName":"Old","lastKnownIndex":1},)"
                              R"({"id":"v16-m32-s1","lastKnownName":"Main","lastKnownIndex":1}])");
    shortcuts.setShortcut(Shortcut(20, kControlOption), displayName(QStringLiteral("display-5")));
    platform.monitors.setMonitors({identifiedLater(5, QStringLiteral("Main"), 1)});
    AppController controller(shortcuts, updater);
    ASSERT_EQ(controller.disconnectedShortcutDisplays().size(), 1);
    EXPECT_EQ(controller.disconnectedShortcutDisplays()[0].id, QStringLiteral("display-5"));
    EXPECT_EQ(shortcuts.shortcut(displayName(QStringLiteral("display-5"))), Shortcut(20, kControlOption));
    EXPECT_EQ(shortcuts.shortcut(displayName(QStringLiteral("v16-m32-s1"))), Shortcut(18, kControlOption));
}

}  // namespace
