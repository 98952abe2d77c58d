// SPDX-License-Identifier: MIT
// The window manager is killed and another one started in its place while the program runs: moves and
// display shortcuts work again afterwards, with nothing lost on the way.
#include <signal.h>

#include <gtest/gtest.h>

#include <QThreadPool>

#include <QProcess>
#include <memory>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "app/update/Updater.h"
#include "platform/WindowControl.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Platform.h"
#include "tests/support/XcbProbe.h"
#include "tests/support/VirtualDesktop.h"
#include "tests/testclient/TestClient.h"

namespace {

using KeyboardShortcuts::Name;
using KeyboardShortcuts::Shortcut;

// Control-Option-2: Carbon key code 19 with the control and option bits.
constexpr int kTwoKeyCode = 19;
constexpr int kControlOption = 0x1000 | 0x800;

class WindowManagerRestartDesktopTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (qEnvironmentVariable("LATTICA_TEST_WM") != QLatin1String("openbox")) {
            GTEST_SKIP() << "restarts openbox";
        }
        m_platform = X11Platform::connect();
        ASSERT_NE(m_platform, nullptr);
        m_platform->install();
        m_shortcuts = std::make_unique<KeyboardShortcuts::ActionShortcuts>();
        ASSERT_TRUE(m_client.start());
    }
    void TearDown() override {
        m_controller.reset();
        // The moves' refreshes read the desktop in the background through the platform: let them end first.
        QThreadPool::globalInstance()->waitForDone();
        m_shortcuts.reset();
        m_client.exit();
        Platform::install({});
        m_platform.reset();
        if (m_restarted.state() != QProcess::NotRunning) {
            m_restarted.terminate();
            m_restarted.waitForFinished(5000);
        }
    }

    xcb_connection_t* xcb() const { return m_platform->connection().xcb(); }
    QRectF frame(quint32 window) const {
        const Reading<QRectF> read = m_platform->services().windowControl->frame(window);
        return read.result == Result::Ok ? read.value.value_or(QRectF()) : QRectF();
    }
    static bool xdotool(const QStringList& arguments) {
        return VirtualDesktop::run(QStringLiteral("xdotool"), arguments) == 0;
    }
    static bool typeShortcut() {
        return xdotool({QStringLiteral("keydown"), QStringLiteral("Control_L"), QStringLiteral("keydown"),
                        QStringLiteral("Alt_L"), QStringLiteral("key"), QStringLiteral("2"), QStringLiteral("keyup"),
                        QStringLiteral("Alt_L"), QStringLiteral("keyup"), QStringLiteral("Control_L")});
    }
    bool focus(quint32 window) {
        return xdotool({QStringLiteral("windowactivate"), QStringLiteral("--sync"), QString::number(window)});
    }

    std::unique_ptr<X11Platform> m_platform;
    std::unique_ptr<KeyboardShortcuts::ActionShortcuts> m_shortcuts;
    Updater m_updater;
    std::unique_ptr<AppController> m_controller;
    TestClient m_client;
    QProcess m_restarted;
};

TEST_F(WindowManagerRestartDesktopTest, MovesAndShortcutsWorkAgainAfterTheWindowManagerIsKilledAndRestarted) {
    const QList<DisplayDescriptor> displays = ScreenSnapshotService::currentDisplayDescriptors();
    ASSERT_GE(displays.size(), 2);
    const quint32 window = m_client.open(QStringLiteral("w"), QStringLiteral("x=300 y=200 w=640 h=400 title=Kept"));
    ASSERT_NE(window, 0u);
    m_controller = std::make_unique<AppController>(*m_shortcuts, m_updater);
    const Name name(AppController::shortcutNameRawValue(displays.at(1).persistentID));
    m_shortcuts->setShortcut(Shortcut(kTwoKeyCode, kControlOption), name);
    const qsizetype records = m_controller->shortcutDisplayRecords().size();

    // Killed without warning, as a crash would end it.
    const xcb_window_t oldCheck = XcbProbe::windowManagerCheck(xcb());
    ASSERT_NE(oldCheck, 0u);
    const qint64 windowManager = XcbProbe::clientPid(xcb(), oldCheck);
    ASSERT_GT(windowManager, 0) << "the X-Resource extension names no process for the window manager";
    ASSERT_EQ(::kill(pid_t(windowManager), SIGKILL), 0);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return !XcbProbe::exists(xcb(), oldCheck); }, 10000));

    // Without a window manager the program keeps running and says why a move cannot happen.
    m_controller->refreshPermissions();
    m_controller->moveFocusedWindow(displays.at(1).persistentID);
    EXPECT_FALSE(m_controller->statusMessage().isEmpty());

    // Another window manager takes over the same windows.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    m_restarted.setProcessEnvironment(environment);
    m_restarted.start(QStringLiteral("openbox"), {QStringLiteral("--sm-disable")});
    ASSERT_TRUE(m_restarted.waitForStarted(5000));
    // The new one may well get the old one's client slot and so the same window numbers: it is told by
    // the process that owns its check window.
    ASSERT_TRUE(VirtualDesktop::waitUntil(
        [&] {
            const xcb_window_t check = XcbProbe::windowManagerCheck(xcb());
            return check != 0 && XcbProbe::clientPid(xcb(), check) == m_restarted.processId();
        },
        15000))
        << "openbox did not take over";

    // The display shortcut moves the focused window again.
    // Nothing refreshes the program's view of the desktop in between (the panel stays closed): the
    // shortcut itself must find window control back.
    m_controller->setStatusMessage({});
    ASSERT_TRUE(focus(window));
    ASSERT_TRUE(typeShortcut());
    const QString moved = QStringLiteral("Moved focused window to ") + displays.at(1).name + QLatin1Char('.');
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return m_controller->statusMessage() == moved; }, 10000))
        << qPrintable(m_controller->statusMessage());
    EXPECT_TRUE(displays.at(1).bounds.contains(frame(window).center()));

    // And a card's move brings it back.
    m_controller->moveWindows(DisplaySnapshot::placeholder(displays.at(1)),
                              DisplaySnapshot::placeholder(displays.at(0)));
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return displays.at(0).bounds.contains(frame(window).center()); }))
        << qPrintable(m_controller->statusMessage());

    // Nothing of the shortcut setup was lost.
    EXPECT_EQ(m_shortcuts->shortcut(name), Shortcut(kTwoKeyCode, kControlOption));
    EXPECT_EQ(m_controller->shortcutDisplayRecords().size(), records);
}

}  // namespace
