// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <algorithm>
#include <memory>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/controller/AppController.h"
#include "app/update/Updater.h"
#include "app/displays/ScreenSnapshotService.h"
#include "platform/WindowControl.h"
#include "platform/x11/X11Platform.h"
#include "tests/support/VirtualDesktop.h"
#include "tests/testclient/TestClient.h"

namespace {

using KeyboardShortcuts::Name;
using KeyboardShortcuts::Shortcut;

// Control-Option-2: Carbon key code 19 with the control and option bits.
constexpr int kTwoKeyCode = 19;
constexpr int kControlOption = 0x1000 | 0x800;
// Control-Option-F8, the sentinel.
constexpr int kF8KeyCode = 100;

class PerDisplayShortcutDesktopTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_platform = X11Platform::connect();
        ASSERT_NE(m_platform, nullptr);
        m_platform->install();
        m_shortcuts = std::make_unique<KeyboardShortcuts::ActionShortcuts>();
        ASSERT_TRUE(m_client.start());
    }
    void TearDown() override {
        m_shortcuts.reset();
        m_client.exit();
        Platform::install({});
    }

    // The outer frame of a window, as the program reads it.
    QRectF frame(quint32 window) const {
        const Reading<QRectF> frame = m_platform->services().windowControl->frame(window);
        return frame.result == Result::Ok ? frame.value.value_or(QRectF()) : QRectF();
    }

    static void xdotool(const QStringList& arguments) {
        ASSERT_EQ(VirtualDesktop::run(QStringLiteral("xdotool"), arguments), 0);
    }
    static void pressShortcut() {
        xdotool({QStringLiteral("keydown"), QStringLiteral("Control_L"), QStringLiteral("keydown"),
                 QStringLiteral("Alt_L"), QStringLiteral("keydown"), QStringLiteral("2")});
    }
    static void releaseShortcut() {
        xdotool({QStringLiteral("keyup"), QStringLiteral("2"), QStringLiteral("keyup"), QStringLiteral("Alt_L"),
                 QStringLiteral("keyup"), QStringLiteral("Control_L")});
    }

    // Types F8 while Control and Option are down, and waits until its handler has run and what that
    // handler queued has run: everything typed before it, and any move queued for it, has been handled.
    bool settleWithKeysDown() {
        const Name sentinel(QStringLiteral("sentinel"));
        m_shortcuts->setShortcut(Shortcut(kF8KeyCode, kControlOption), sentinel);
        const auto handled = std::make_shared<int>(0);
        m_shortcuts->onKeyDown(sentinel, [handled] {
            QMetaObject::invokeMethod(
                QCoreApplication::instance(), [handled] { ++*handled; }, Qt::QueuedConnection);
        });
        xdotool({QStringLiteral("key"), QStringLiteral("F8")});
        const bool settled = VirtualDesktop::waitUntil([&] { return *handled > 0; });
        m_shortcuts->removeHandler(sentinel);
        m_shortcuts->setShortcut(std::nullopt, sentinel);
        return settled;
    }

    std::unique_ptr<X11Platform> m_platform;
    std::unique_ptr<KeyboardShortcuts::ActionShortcuts> m_shortcuts;
    TestClient m_client;
};

TEST_F(PerDisplayShortcutDesktopTest, ReleasingADisplaysShortcutMovesTheFocusedWindowThere) {
    const QList<DisplayDescriptor> displays = ScreenSnapshotService::currentDisplayDescriptors();
    ASSERT_GE(displays.size(), 2);
    const DisplayDescriptor target = displays.at(1);

    const quint32 window = m_client.open(QStringLiteral("w"), QStringLiteral("x=300 y=200 w=640 h=400 title=Focused"));
    ASSERT_NE(window, 0u);
    xdotool({QStringLiteral("windowactivate"), QStringLiteral("--sync"), QString::number(window)});
    ASSERT_TRUE(displays.at(0).bounds.contains(frame(window).center()));

    Updater updater;
    AppController controller(*m_shortcuts, updater);
    const Name name(AppController::shortcutNameRawValue(target.persistentID));
    m_shortcuts->setShortcut(Shortcut(kTwoKeyCode, kControlOption), name);

    // Nothing moves while the keys are down.
    pressShortcut();
    ASSERT_TRUE(settleWithKeysDown());
    EXPECT_TRUE(displays.at(0).bounds.contains(frame(window).center()));
    EXPECT_TRUE(controller.statusMessage().isEmpty());

    releaseShortcut();
    const QString moved = QStringLiteral("Moved focused window to ") + target.name + QLatin1Char('.');
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return controller.statusMessage() == moved; }))
        << qPrintable(controller.statusMessage());
    EXPECT_TRUE(target.bounds.contains(frame(window).center()))
        << "frame " << frame(window).x() << "," << frame(window).y();

    // Unplugging the display moves its row to the disconnected list at once.
    const int monitorNumber = 2;
    const QRect monitorRect = VirtualDesktop::layout().at(monitorNumber - 1);
    ASSERT_EQ(VirtualDesktop::run(QStringLiteral("xrandr"),
                                  {QStringLiteral("--delmonitor"), QStringLiteral("VIRTUAL-%1").arg(monitorNumber)}),
              0);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        return controller.disconnectedShortcutDisplays().size() == 1 &&
               controller.disconnectedShortcutDisplays().first().id == target.persistentID;
    }));
    pressShortcut();
    releaseShortcut();
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        return controller.statusMessage() == QStringLiteral("Shortcut target display is currently not connected.");
    })) << qPrintable(controller.statusMessage());

    // Plugged in again: the same record and the same shortcut come back.
    ASSERT_EQ(VirtualDesktop::run(QStringLiteral("xrandr"),
                                  {QStringLiteral("--setmonitor"), QStringLiteral("VIRTUAL-%1").arg(monitorNumber),
                                   VirtualDesktop::monitorGeometry(monitorRect), QStringLiteral("none")}),
              0);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return controller.disconnectedShortcutDisplays().isEmpty(); }));
    // RandR lists a monitor defined again after the others, so look it up by its identifier.
    const QList<ShortcutDisplayItem> connected = controller.connectedShortcutDisplays();
    EXPECT_TRUE(std::any_of(connected.cbegin(), connected.cend(),
                            [&](const ShortcutDisplayItem& item) { return item.id == target.persistentID; }));
    EXPECT_EQ(controller.shortcutDisplayRecords().size(), displays.size());
    EXPECT_EQ(m_shortcuts->shortcut(name), Shortcut(kTwoKeyCode, kControlOption));
    xdotool({QStringLiteral("windowactivate"), QStringLiteral("--sync"), QString::number(window)});
    pressShortcut();
    releaseShortcut();
    // The window is on that display already, which the program reports as not moved.
    const QString alreadyThere =
        QStringLiteral("Focused window could not be moved to ") + target.name + QLatin1Char('.');
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return controller.statusMessage() == alreadyThere; }))
        << qPrintable(controller.statusMessage());
}

}  // namespace
