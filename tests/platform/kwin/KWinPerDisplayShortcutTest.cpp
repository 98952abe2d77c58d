// SPDX-License-Identifier: MIT
#include <QSignalSpy>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "app/update/Updater.h"
#include "platform/HotKeys.h"
#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "tests/platform/kwin/KWinSessionFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

using KeyboardShortcuts::Name;
using KeyboardShortcuts::Shortcut;

// Control-Option-2: Carbon key code 19 with the control and option bits.
constexpr int kTwoKeyCode = 19;
constexpr int kControlOption = 0x1000 | 0x800;

using KWinPerDisplayShortcutTest = KWinSessionFixture;

TEST_F(KWinPerDisplayShortcutTest, ReleasingADisplaysShortcutMovesTheFocusedWindowThere) {
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
    FakeKeys keys;
    ASSERT_TRUE(keys.start());

    // Nothing moves while the keys are down.
    ASSERT_TRUE(keys.send("down", FakeKeys::kEvdevLeftControl));
    ASSERT_TRUE(keys.send("down", FakeKeys::kEvdevLeftAlt));
    ASSERT_TRUE(keys.send("down", FakeKeys::kEvdevTwo));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return pressed.size() == 1; }));
    QCoreApplication::processEvents();  // whatever the press queued has run
    EXPECT_TRUE(displays.at(0).bounds.contains(frame().center()));
    EXPECT_TRUE(controller.statusMessage().isEmpty()) << qPrintable(controller.statusMessage());

    ASSERT_TRUE(keys.send("up", FakeKeys::kEvdevTwo));
    const QString moved = QStringLiteral("Moved focused window to ") + target.name + QLatin1Char('.');
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return controller.statusMessage() == moved; }))
        << qPrintable(controller.statusMessage());
    EXPECT_EQ(released.size(), 1);
    EXPECT_TRUE(target.bounds.contains(frame().center())) << "frame " << frame().x() << "," << frame().y();
    keys.send("up", FakeKeys::kEvdevLeftAlt);
    keys.send("up", FakeKeys::kEvdevLeftControl);
}

}  // namespace
