// SPDX-License-Identifier: MIT
// GNOME Shell through Lattica's extension: the inventory of 50 windows and a display's shortcut up to
// the confirmed move, each against the extension's own round trip. Run it on a headless GNOME Shell:
// scripts/virtual-gnome.sh run -- <this> (bench/run-benchmarks.sh does).
#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <cstdio>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "bench/BenchTable.h"
#include "platform/HotKeys.h"
#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "platform/WindowList.h"
#include "platform/gnome/GnomePlatform.h"
#include "platform/gnome/GnomeShellBridge.h"
#include "tests/platform/gnome/RemoteDesktopInput.h"
#include "tests/platform/kwin/KWinSessionFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

constexpr int kWindows = 50;
constexpr int kRepetitions = 40;
constexpr int kPresses = 30;
constexpr int kControlOption = 0x1000 | 0x800;
constexpr int kOneKeyCode = 18;  // Carbon key codes of the digits 1 and 2
constexpr int kTwoKeyCode = 19;
constexpr int kEvdevOne = 2;

// The extension's answer to a call, unread: what every inventory costs at least.
void rawCall(const QString& method) {
    const QDBusMessage message =
        QDBusMessage::createMethodCall(QStringLiteral("org.gnome.Shell"), QStringLiteral("/app/lattica/Shell"),
                                       QStringLiteral("app.lattica.Shell"), method);
    QDBusConnection::sessionBus().call(message, QDBus::Block, 5000);
}

int fail(const char* why) {
    std::fprintf(stderr, "gnome_bench: %s\n", why);
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QDBusConnection::sessionBus().registerService(QStringLiteral("app.lattica.Lattica"));
    std::unique_ptr<GnomePlatform> platform = GnomePlatform::connect();
    if (!platform) {
        return fail("the extension does not answer (run inside scripts/virtual-gnome.sh run --)");
    }
    platform->install();

    WaylandClient client;
    if (!client.start()) {
        return fail("the Wayland test client did not start");
    }
    for (int i = 0; i < kWindows; ++i) {
        if (!client.open(QStringLiteral("w%1").arg(i), QStringLiteral("title=window-%1 w=200 h=150").arg(i))) {
            return fail("a test window did not open");
        }
    }
    WindowList& list = *Platform::services().windowList;
    if (!VirtualDesktop::waitUntil(
            [&] { return list.windows(DesktopWindows::Exclude).value_or(QList<WindowEntry>{}).size() >= kWindows; })) {
        return fail("the Shell does not list the test windows");
    }

    // Interleaved, so that the load of the machine weighs on each case alike.
    std::vector<double> pingTimes;
    std::vector<double> floorTimes;
    std::vector<double> inventoryTimes;
    const auto timed = [](const std::function<void()>& action) {
        QElapsedTimer timer;
        timer.start();
        action();
        return static_cast<double>(timer.nsecsElapsed()) / 1e6;
    };
    for (int i = 0; i < kRepetitions; ++i) {
        pingTimes.push_back(timed([] { rawCall(QStringLiteral("Ping")); }));
        floorTimes.push_back(timed([] { rawCall(QStringLiteral("Windows")); }));
        inventoryTimes.push_back(timed([&] { list.windows(DesktopWindows::Exclude); }));
    }
    const BenchTable::Figures ping = BenchTable::summarize(pingTimes);
    const BenchTable::Figures floor = BenchTable::summarize(floorTimes);
    const BenchTable::Figures inventory = BenchTable::summarize(inventoryTimes);
    BenchTable::header("GNOME Shell inventory of 50 windows");
    BenchTable::row(QStringLiteral("extension ping (round trip)"), ping);
    BenchTable::row(QStringLiteral("extension window list, unread (floor)"), floor);
    BenchTable::row(QStringLiteral("Lattica's window list"), inventory);
    std::printf("inventory / floor: %.2f (target <= 2)\n", inventory.median / floor.median);

    // The shortcut: the focused window goes back and forth between the first two displays.
    const QList<DisplayDescriptor> displays = ScreenSnapshotService::currentDisplayDescriptors();
    if (displays.size() < 2) {
        return fail("needs two monitors");
    }
    const std::optional<WindowEntry> focused = [&]() -> std::optional<WindowEntry> {
        for (const WindowEntry& entry : list.windows(DesktopWindows::Exclude).value_or(QList<WindowEntry>{})) {
            if (entry.title == QLatin1String("window-0")) {
                return entry;
            }
        }
        return std::nullopt;
    }();
    WindowControl& control = *Platform::services().windowControl;
    if (!focused || control.activate(focused->id) != Result::Ok) {
        return fail("the test window could not be focused");
    }
    KeyboardShortcuts::ActionShortcuts shortcuts;
    Updater* noUpdates = nullptr;
    AppController controller(shortcuts, noUpdates);
    shortcuts.setShortcut(KeyboardShortcuts::Shortcut(kOneKeyCode, kControlOption),
                          KeyboardShortcuts::Name(AppController::shortcutNameRawValue(displays[0].persistentID)));
    shortcuts.setShortcut(KeyboardShortcuts::Shortcut(kTwoKeyCode, kControlOption),
                          KeyboardShortcuts::Name(AppController::shortcutNameRawValue(displays[1].persistentID)));
    QSignalSpy pressed(Platform::services().hotKeys, &HotKeys::pressed);
    RemoteDesktopInput keys;
    if (!keys.start()) {
        return fail("Mutter's remote desktop refused a session");
    }

    std::vector<double> latencies;
    int missed = 0;
    for (int i = 0; i < kPresses; ++i) {
        const int target = i % 2 == 0 ? 1 : 0;
        const int digit = target == 1 ? RemoteDesktopInput::kEvdevTwo : kEvdevOne;
        const QString moved = QStringLiteral("Moved focused window to ") + displays[target].name + QLatin1Char('.');
        controller.setStatusMessage(QString());
        const qsizetype pressesBefore = pressed.size();
        keys.send(RemoteDesktopInput::kEvdevLeftControl, true);
        keys.send(RemoteDesktopInput::kEvdevLeftAlt, true);
        keys.send(digit, true);
        keys.send(digit, false);
        if (!VirtualDesktop::waitUntil([&] { return pressed.size() > pressesBefore; }, 2000)) {
            ++missed;
            keys.send(RemoteDesktopInput::kEvdevLeftAlt, false);
            keys.send(RemoteDesktopInput::kEvdevLeftControl, false);
            continue;
        }
        // On GNOME the shortcut is released when its modifiers are: the timed moment.
        QElapsedTimer timer;
        timer.start();
        keys.send(RemoteDesktopInput::kEvdevLeftAlt, false);
        const bool confirmed = VirtualDesktop::waitUntil([&] { return controller.statusMessage() == moved; }, 2000);
        const double elapsedMs = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        keys.send(RemoteDesktopInput::kEvdevLeftControl, false);
        if (confirmed) {
            latencies.push_back(elapsedMs);
        } else {
            ++missed;
        }
    }
    if (latencies.empty()) {
        return fail("no shortcut press led to a confirmed move");
    }
    const BenchTable::Figures shortcut = BenchTable::summarize(latencies);
    BenchTable::header("GNOME Shell display shortcut");
    BenchTable::row(QStringLiteral("modifiers up -> move confirmed by the extension"), shortcut);
    std::printf("shortcut -> confirmed move: %.1f ms median (target < 50 ms), %.1f x the round trip", shortcut.median,
                shortcut.median / ping.median);
    std::printf("%s\n", missed > 0 ? qPrintable(QStringLiteral("; %1 presses missed").arg(missed)) : "");
    return 0;
}
