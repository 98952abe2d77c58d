// SPDX-License-Identifier: MIT
// The moves' own global shortcuts: their stored names and the moves their handlers run.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QSignalSpy>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/commands/CommandService.h"
#include "app/commands/MoveShortcuts.h"
#include "app/model/Preferences.h"
#include "platform/fake/FakePlatform.h"

namespace {

using KeyboardShortcuts::Name;
using KeyboardShortcuts::Shortcut;

constexpr quint32 kControlOption = 0x1000 | 0x800;

// Two monitors side by side, an editor window on the first with focus, a viewer window on the second.
class MoveShortcutsTest : public ::testing::Test {
protected:
    void SetUp() override {
        platform.monitors.setMonitors({
            {.id = 1, .name = QStringLiteral("Left"), .bounds = QRectF(0, 0, 1920, 1080), .vendor = 1, .serial = 1},
            {.id = 2, .name = QStringLiteral("Right"), .bounds = QRectF(1920, 0, 2560, 1440), .vendor = 1, .serial = 2},
        });
        addWindow(100, QStringLiteral("Editor"), 11, QRectF(480, 270, 960, 540));
        addWindow(200, QStringLiteral("Viewer"), 21, QRectF(1920 + 640, 360, 1280, 720));
        platform.windowControl.setFocusedWindow(Reading<WindowId>{Result::Ok, 11});
    }
    void addWindow(pid_t pid, const QString& name, qint64 number, const QRectF& frame) {
        platform.runningApplications.addApplication(pid, name);
        std::optional<QList<WindowEntry>> list = platform.windowList.scriptedList();
        list->append(WindowEntry{.id = number, .pid = pid, .ownerName = name, .frame = frame, .title = name});
        platform.windowList.setWindowList(list);
        platform.windowControl.addWindow(pid, {.id = number, .frame = frame});
    }
    QList<ShortcutDisplayItem> connected() const {
        return {{QStringLiteral("v1-m0-s1"), QStringLiteral("Left"), 1, true},
                {QStringLiteral("v1-m0-s2"), QStringLiteral("Right"), 2, true}};
    }
    // Presses and releases the key, then lets the queued move run.
    void tap(quint32 keyCode) {
        platform.hotKeys.press(keyCode, kControlOption);
        platform.hotKeys.release(keyCode, kControlOption);
        QCoreApplication::processEvents();
    }

    FakePlatform platform;
    KeyboardShortcuts::ActionShortcuts shortcuts;
    Preferences preferences{platform.settings};
    CommandService commands{preferences};
    int panelsOpened = 0;
};

TEST_F(MoveShortcutsTest, ShortcutsAreStoredUnderKeyboardShortcutsAndTheirName) {
    shortcuts.setShortcut(Shortcut(45, kControlOption), Name(QStringLiteral("moveFocusedWindowToNextDisplay")));
    EXPECT_TRUE(platform.settings.contains(QStringLiteral("KeyboardShortcuts_moveFocusedWindowToNextDisplay")));
    EXPECT_EQ(MoveShortcuts::swapName(QStringLiteral("v1-m0-s2"), QStringLiteral("v1-m0-s1")),
              QStringLiteral("swapWindowsOfDisplays.v1-m0-s1.v1-m0-s2"));
    EXPECT_EQ(MoveShortcuts::swapName(QStringLiteral("v1-m0-s1"), QStringLiteral("v1-m0-s2")),
              MoveShortcuts::swapName(QStringLiteral("v1-m0-s2"), QStringLiteral("v1-m0-s1")));
    EXPECT_EQ(MoveShortcuts::openPanelAction().name, QStringLiteral("openPanel"));
}

TEST_F(MoveShortcutsTest, EveryPairOfConnectedMonitorsHasASwapAction) {
    QList<ShortcutDisplayItem> three = connected();
    three.append({QStringLiteral("v1-m0-s3"), QStringLiteral("Far"), 3, true});
    QStringList labels;
    for (const MoveShortcuts::Action& action : MoveShortcuts::swapActions(three)) {
        labels.append(action.label);
    }
    EXPECT_EQ(labels, (QStringList{QStringLiteral("Swap windows of monitors 1 and 2"),
                                   QStringLiteral("Swap windows of monitors 1 and 3"),
                                   QStringLiteral("Swap windows of monitors 2 and 3")}));
    EXPECT_TRUE(MoveShortcuts::swapActions(connected().mid(0, 1)).isEmpty());
}

TEST_F(MoveShortcutsTest, NextMonitorShortcutMovesTheFocusedWindowOnRelease) {
    shortcuts.setShortcut(Shortcut(45, kControlOption), Name(QStringLiteral("moveFocusedWindowToNextDisplay")));
    MoveShortcuts moves(shortcuts, commands, [this] { ++panelsOpened; });
    QSignalSpy finished(&moves, &MoveShortcuts::moveFinished);
    platform.hotKeys.press(45, kControlOption);
    QCoreApplication::processEvents();
    EXPECT_EQ(finished.size(), 0) << "nothing moves on the press";
    platform.hotKeys.release(45, kControlOption);
    QCoreApplication::processEvents();
    ASSERT_EQ(finished.size(), 1);
    EXPECT_EQ(finished[0][0].value<CommandResult>().message, QStringLiteral("Moved focused window to Right."));
    EXPECT_TRUE(QRectF(1920, 0, 2560, 1440).contains(platform.windowControl.currentFrame(11)));
}

TEST_F(MoveShortcutsTest, SwapShortcutExchangesTheWindowsOfItsPair) {
    const QString name = MoveShortcuts::swapName(QStringLiteral("v1-m0-s1"), QStringLiteral("v1-m0-s2"));
    shortcuts.setShortcut(Shortcut(46, kControlOption), Name(name));
    MoveShortcuts moves(shortcuts, commands, [this] { ++panelsOpened; });
    QSignalSpy finished(&moves, &MoveShortcuts::moveFinished);
    tap(46);
    EXPECT_EQ(finished.size(), 0) << "no handler before the pair is connected";
    moves.refresh(connected());
    tap(46);
    ASSERT_EQ(finished.size(), 1);
    EXPECT_EQ(finished[0][0].value<CommandResult>().message, QStringLiteral("Moved 2 of 2 windows."));
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(2720, 450, 960, 540));
    EXPECT_EQ(platform.windowControl.currentFrame(21), QRectF(320, 180, 1280, 720));

    // Unplugging one of the pair removes the handler; the stored shortcut stays.
    moves.refresh(connected().mid(0, 1));
    tap(46);
    EXPECT_EQ(finished.size(), 1);
    EXPECT_TRUE(shortcuts.shortcut(Name(name)).has_value());
}

TEST_F(MoveShortcutsTest, OpenPanelShortcutOpensThePanel) {
    shortcuts.setShortcut(Shortcut(47, kControlOption), Name(QStringLiteral("openPanel")));
    MoveShortcuts moves(shortcuts, commands, [this] { ++panelsOpened; });
    tap(47);
    EXPECT_EQ(panelsOpened, 1);
}

TEST_F(MoveShortcutsTest, HandlersGoWithTheObject) {
    shortcuts.setShortcut(Shortcut(45, kControlOption), Name(QStringLiteral("moveFocusedWindowToNextDisplay")));
    {
        MoveShortcuts gone(shortcuts, commands, [this] { ++panelsOpened; });
    }
    tap(45);
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(480, 270, 960, 540));
}

}  // namespace
