// SPDX-License-Identifier: MIT
// Time from the release of a display's shortcut (sent through XTEST) to the window manager's
// confirmation (a ConfigureNotify of the window's frame) that the focused window sits on that display.
// Run it on a virtual desktop: bench/run-benchmarks.sh, or scripts/virtual-desktop.sh run -- <this>.
#include <xcb/xcb.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QThread>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "bench/DesktopObserver.h"
#include "platform/x11/X11Platform.h"
#include "tests/testclient/TestClient.h"

namespace {

constexpr int kPresses = 60;
constexpr int kControlOption = 0x1000 | 0x800;
constexpr int kOneKeyCode = 18;  // Carbon key codes of the digits 1 and 2
constexpr int kTwoKeyCode = 19;
constexpr xcb_keysym_t kControlL = 0xffe3;
constexpr xcb_keysym_t kAltL = 0xffe9;

double percentile(std::vector<double> values, double fraction) {
    std::sort(values.begin(), values.end());
    const size_t index = std::min(values.size() - 1, static_cast<size_t>(fraction * (values.size() - 1) + 0.5));
    return values[index];
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    std::unique_ptr<X11Platform> platform = X11Platform::connect();
    if (!platform) {
        std::fputs("shortcut_move_bench: no X server\n", stderr);
        return 1;
    }
    platform->install();
    const QList<DisplayDescriptor> displays = ScreenSnapshotService::currentDisplayDescriptors();
    if (displays.size() < 2) {
        std::fputs("shortcut_move_bench: needs two monitors\n", stderr);
        return 1;
    }

    TestClient client;
    const quint32 window =
        client.start() ? client.open(QStringLiteral("w"), QStringLiteral("x=200 y=200 w=640 h=400")) : 0;
    if (window == 0) {
        std::fputs("shortcut_move_bench: the test client did not open its window\n", stderr);
        return 1;
    }
    AppController controller;
    controller.shortcuts().setShortcut(
        KeyboardShortcuts::Shortcut(kOneKeyCode, kControlOption),
        KeyboardShortcuts::Name(AppController::shortcutNameRawValue(displays[0].persistentID)));
    controller.shortcuts().setShortcut(
        KeyboardShortcuts::Shortcut(kTwoKeyCode, kControlOption),
        KeyboardShortcuts::Name(AppController::shortcutNameRawValue(displays[1].persistentID)));

    DesktopObserver observer;
    const xcb_window_t frame = observer.frameOf(window);
    const xcb_keycode_t control = observer.keycode(kControlL);
    const xcb_keycode_t alt = observer.keycode(kAltL);
    const xcb_keycode_t one = observer.keycode('1');
    const xcb_keycode_t two = observer.keycode('2');
    // Root coordinates of the displays: the primary display's top-left is the global origin.
    const QPoint origin = displays[0].bounds.topLeft().toPoint();

    std::vector<double> latencies;
    int missed = 0;
    for (int i = 0; i < kPresses; ++i) {
        const int targetIndex = (i % 2 == 0) ? 1 : 0;
        const QRect target = displays[targetIndex].bounds.toRect().translated(origin);
        const xcb_keycode_t digit = targetIndex == 1 ? two : one;
        observer.key(XCB_KEY_PRESS, control);
        observer.key(XCB_KEY_PRESS, alt);
        observer.key(XCB_KEY_PRESS, digit);
        // Let the press reach the program before the timed release.
        QElapsedTimer settle;
        settle.start();
        while (settle.elapsed() < 20) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        }
        observer.drain();

        QElapsedTimer timer;
        timer.start();
        observer.key(XCB_KEY_RELEASE, digit);
        bool arrived = false;
        while (!arrived && timer.elapsed() < 2000) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
            arrived = observer.frameArrived(frame, target);
        }
        const double elapsedMs = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        observer.key(XCB_KEY_RELEASE, alt);
        observer.key(XCB_KEY_RELEASE, control);
        if (arrived) {
            latencies.push_back(elapsedMs);
        } else {
            ++missed;
        }
    }
    client.exit();
    controller.shortcuts().removeAllHandlers();

    if (latencies.empty()) {
        std::printf("shortcut release -> window on target: no press arrived (%d missed)\n", missed);
        return 1;
    }
    std::printf("%-52s %8s %8s %8s %8s %6s\n", "benchmark", "median", "p90", "min", "max", "n");
    std::printf("%-52s %6.2fms %6.2fms %6.2fms %6.2fms %6zu\n", "shortcut release -> WM confirms window on target",
                percentile(latencies, 0.5), percentile(latencies, 0.9), percentile(latencies, 0.0),
                percentile(latencies, 1.0), latencies.size());
    if (missed > 0) {
        std::printf("(%d presses without a confirmation within 2 s)\n", missed);
    }
    std::printf("status after the last press: %s\n", qPrintable(controller.statusMessage()));
    return 0;
}
