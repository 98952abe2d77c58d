// SPDX-License-Identifier: MIT
#include <QSignalSpy>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "app/update/Updater.h"
#include "platform/HotKeys.h"
#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "tests/platform/gnome/GnomeSessionFixture.h"
#include "tests/platform/gnome/InputBarrier.h"
#include "tests/platform/gnome/RemoteDesktopInput.h"
#include "tests/support/VirtualDesktop.h"

namespace {

using KeyboardShortcuts::Name;
using KeyboardShortcuts::Shortcut;

// Control-Option-2: Carbon key code 19 with the control and option bits.
constexpr int kTwoKeyCode = 19;
constexpr int kControlOption = 0x1000 | 0x800;
// The extension looks at the modifiers every 8 ms while an accelerator is held.
constexpr int kSeveralModifierLooksMs = 8 * 8;

using GnomePerDisplayShortcutTest = GnomeSessionFixture;

// GNOME reports the press only; the release is when the modifiers are let go.
TEST_F(GnomePerDisplayShortcutTest, LettingGoOfTheModifiersMovesTheFocusedWindowThere) {
    const QList<DisplayDescriptor> displays = ScreenSnapshotService::currentDisplayDescriptors();
    ASSERT_GE(displays.size(), 2);
    const DisplayDescriptor target = displays.at(1);

    ASSERT_TRUE(wayland.open(QStringLiteral("w"), QStringLiteral("title=focused-window w=640 h=400")));
    const auto entry = waitForWindow(QStringLiteral("focused-window"));
    ASSERT_TRUE(entry);
    WindowControl& control = *Platform::services().windowControl;
    ASSERT_EQ(control.move(entry->id, displays.at(0).bounds.topLeft() + QPointF(300, 200)), Result::Ok);
    ASSERT_EQ(control.activate(entry->id), Result::Ok);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return control.focusedWindow().value == entry->id; }));
    auto frame = [&] { return control.frame(entry->id).value.value_or(QRectF()); };

    KeyboardShortcuts::ActionShortcuts shortcuts;
    Updater updater;
    AppController controller(shortcuts, updater);
    const Name name(AppController::shortcutNameRawValue(target.persistentID));
    shortcuts.setShortcut(Shortcut(kTwoKeyCode, kControlOption), name);
    QSignalSpy pressed(Platform::services().hotKeys, &HotKeys::pressed);
    QSignalSpy released(Platform::services().hotKeys, &HotKeys::released);
    RemoteDesktopInput keys;
    ASSERT_TRUE(keys.start()) << keys.error().toStdString();

    ASSERT_TRUE(keys.send(RemoteDesktopInput::kEvdevLeftControl, true));
    ASSERT_TRUE(keys.send(RemoteDesktopInput::kEvdevLeftAlt, true));
    ASSERT_TRUE(keys.send(RemoteDesktopInput::kEvdevTwo, true));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return pressed.size() == 1; }));
    // The key goes up, the modifiers stay down: still held. The barrier is Mutter's own report that no
    // input has come for several of the extension's looks at the modifiers since it handled the key going
    // up; a release reported by any of those looks would have reached this process before it.
    InputBarrier barrier;
    ASSERT_TRUE(barrier.afterHandled([&] { return keys.send(RemoteDesktopInput::kEvdevTwo, false); }));
    ASSERT_TRUE(barrier.afterIdle(kSeveralModifierLooksMs));
    EXPECT_TRUE(released.isEmpty());
    EXPECT_TRUE(displays.at(0).bounds.contains(frame().center()));
    EXPECT_TRUE(controller.statusMessage().isEmpty()) << qPrintable(controller.statusMessage());

    ASSERT_TRUE(keys.send(RemoteDesktopInput::kEvdevLeftAlt, false));
    const QString moved = QStringLiteral("Moved focused window to ") + target.name + QLatin1Char('.');
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return controller.statusMessage() == moved; }))
        << qPrintable(controller.statusMessage());
    EXPECT_EQ(pressed.size(), 1);
    EXPECT_EQ(released.size(), 1);
    EXPECT_TRUE(target.bounds.contains(frame().center())) << "frame " << frame().x() << "," << frame().y();
    keys.send(RemoteDesktopInput::kEvdevLeftControl, false);
}

TEST_F(GnomePerDisplayShortcutTest, ACombinationTheShellHoldsIsReportedTaken) {
    HotKeys& hotKeys = *Platform::services().hotKeys;
    // Alt-Tab (Carbon 48 with option) is the Shell's application switcher.
    constexpr int kTabKeyCode = 48;
    constexpr int kOption = 0x800;
    EXPECT_TRUE(hotKeys.isHeldByAnotherClient(kTabKeyCode, kOption));
    const HotKeys::Registration taken = hotKeys.registerHotKey(kTabKeyCode, kOption);
    ASSERT_TRUE(std::holds_alternative<HotKeys::Failure>(taken));
    EXPECT_EQ(std::get<HotKeys::Failure>(taken).error, HotKeys::Error::takenByAnotherClient);

    // A free combination is not held by anyone else, before or after this process grabs it.
    EXPECT_FALSE(hotKeys.isHeldByAnotherClient(kTwoKeyCode, kControlOption));
    const HotKeys::Registration ours = hotKeys.registerHotKey(kTwoKeyCode, kControlOption);
    ASSERT_TRUE(std::holds_alternative<HotKeys::RegistrationId>(ours));
    EXPECT_FALSE(hotKeys.isHeldByAnotherClient(kTwoKeyCode, kControlOption));
    // Grabbed once, it cannot be grabbed a second time.
    EXPECT_TRUE(std::holds_alternative<HotKeys::Failure>(hotKeys.registerHotKey(kTwoKeyCode, kControlOption)));
    hotKeys.unregisterHotKey(std::get<HotKeys::RegistrationId>(ours));
    EXPECT_FALSE(hotKeys.isHeldByAnotherClient(kTwoKeyCode, kControlOption));
    EXPECT_TRUE(std::holds_alternative<HotKeys::RegistrationId>(hotKeys.registerHotKey(kTwoKeyCode, kControlOption)));
}

}  // namespace
