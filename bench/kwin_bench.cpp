// SPDX-License-Identifier: MIT
// Lattica on a headless KWin: the inventory of 50 native Wayland windows, moving 20 of them between
// outputs, and a display's shortcut from its release to the moment an observer sees the focused window
// on that display. Each against the floor of one scripted round trip (load a script that calls back over
// D-Bus, wait for the call, unload it), measured in the same run, and the moves also against a loop of
// the same moves with one script per window. Run inside scripts/virtual-kwin.sh (bench/run-benchmarks.sh).
#include <fcntl.h>
#include <unistd.h>

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QUuid>
#include <cstdio>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "app/mover/WindowMover.h"
#include "app/update/Updater.h"
#include "bench/BenchTable.h"
#include "platform/Platform.h"
#include "platform/WindowList.h"
#include "platform/kwin/KWinBridge.h"
#include "platform/kwin/KWinPlatform.h"
#include "platform/kwin/KWinSpace.h"
#include "tests/platform/kwin/KWinSessionFixture.h"

namespace {

constexpr int kControlOption = 0x1000 | 0x800;
constexpr int kOneKeyCode = 18;  // Carbon key codes of the digits 1 and 2
constexpr int kTwoKeyCode = 19;
constexpr int kEvdevOne = 2;
constexpr int kPresses = 30;

// The receiving end of the floor's script.
class Echo : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.lattica.BenchEcho")
public:
    int calls = 0;

public Q_SLOTS:
    Q_SCRIPTABLE void done(const QString&) { ++calls; }
};

// One scripted round trip and nothing else: a script of one line that calls back, on a bus connection of
// its own.
class ScriptFloor {
public:
    ScriptFloor()
        : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus,
                                              QStringLiteral("bench-") + QUuid::createUuid().toString())) {
        m_bus.registerObject(QStringLiteral("/bench"), &m_echo, QDBusConnection::ExportScriptableSlots);
        m_path = m_folder.filePath(QStringLiteral("echo.js"));
        QFile file(m_path);
        if (file.open(QIODevice::WriteOnly)) {
            file.write(QStringLiteral("callDBus(\"%1\", \"/bench\", \"org.lattica.BenchEcho\", \"done\", \"x\");\n")
                           .arg(m_bus.baseService())
                           .toUtf8());
        }
    }

    bool roundTrip() {
        const QString name = QStringLiteral("lattica-bench-%1").arg(++m_round);
        const int before = m_echo.calls;
        call(QStringLiteral("loadScript"), {m_path, name});
        call(QStringLiteral("start"), {});
        QElapsedTimer timer;
        timer.start();
        while (m_echo.calls == before && timer.elapsed() < 2000) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        }
        QDBusMessage unload =
            QDBusMessage::createMethodCall(QStringLiteral("org.kde.KWin"), QStringLiteral("/Scripting"),
                                           QStringLiteral("org.kde.kwin.Scripting"), QStringLiteral("unloadScript"));
        unload.setArguments({name});
        m_bus.send(unload);  // as the bridge does: nothing waits for it
        return m_echo.calls > before;
    }

private:
    void call(const QString& method, const QVariantList& arguments) {
        QDBusMessage message =
            QDBusMessage::createMethodCall(QStringLiteral("org.kde.KWin"), QStringLiteral("/Scripting"),
                                           QStringLiteral("org.kde.kwin.Scripting"), method);
        message.setArguments(arguments);
        m_bus.call(message);
    }

    QDBusConnection m_bus;
    QTemporaryDir m_folder;
    QString m_path;
    Echo m_echo;
    int m_round = 0;
};

void ratio(const QString& name, double ours, double reference) {
    std::printf("%-58s %10.2f\n", qPrintable(name), ours / reference);
    std::fflush(stdout);
}

// The mover writes a line per window on standard output: the table stays readable without them.
class QuietOutput {
public:
    QuietOutput() : m_saved(dup(fileno(stdout))) {}
    ~QuietOutput() { ::close(m_saved); }
    void run(const std::function<void()>& action) {
        std::fflush(stdout);
        const int devNull = ::open("/dev/null", O_WRONLY);
        dup2(devNull, fileno(stdout));
        action();
        std::fflush(stdout);
        dup2(m_saved, fileno(stdout));
        ::close(devNull);
    }

private:
    int m_saved;
};

QList<WindowId> openWindows(WaylandClient& client, const QString& prefix, int count) {
    QList<WindowId> ids;
    for (int i = 0; i < count; ++i) {
        const QString title = prefix + QString::number(i);
        if (!client.open(title, QStringLiteral("title=%1 w=300 h=200").arg(title), 20000)) {
            return {};
        }
    }
    // The window list learns of them from KWin's next report.
    QElapsedTimer timer;
    timer.start();
    while (ids.size() < count && timer.elapsed() < 20000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        ids.clear();
        for (const WindowEntry& entry :
             Platform::services().windowList->windows(DesktopWindows::Exclude).value_or(QList<WindowEntry>{})) {
            if (entry.title.value_or(QString()).startsWith(prefix)) {
                ids.append(entry.id);
            }
        }
    }
    return ids;
}

// Where the mover puts a window of the source display on the destination display, keeping its size.
QPointF moverTarget(const QRectF& frame, const QRectF& source, const QRectF& destination) {
    return WindowMover::destinationOrigin(WindowMover::normalizedCenter(frame, source), frame.size(), destination);
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QString problem;
    std::unique_ptr<KWinPlatform> platform = KWinPlatform::connect(&problem);
    if (!platform) {
        std::fprintf(stderr, "kwin_bench: %s\n", qPrintable(problem));
        return 1;
    }
    platform->install();
    KWinBridge& bridge = platform->bridge();
    QList<DisplaySnapshot> displays;
    for (const DisplayDescriptor& descriptor : ScreenSnapshotService::currentDisplayDescriptors()) {
        displays.append(DisplaySnapshot::placeholder(descriptor));
    }
    if (displays.size() < 2) {
        std::fputs("kwin_bench: needs two outputs\n", stderr);
        return 1;
    }
    // 30 windows of one client, 20 of another: the 20 are the ones moved.
    WaylandClient others;
    WaylandClient moved;
    if (!others.start() || !moved.start()) {
        std::fputs("kwin_bench: the Wayland test client did not start\n", stderr);
        return 1;
    }
    const QList<WindowId> background = openWindows(others, QStringLiteral("other-"), 30);
    const QList<WindowId> twenty = openWindows(moved, QStringLiteral("moved-"), 20);
    if (background.size() != 30 || twenty.size() != 20) {
        std::fprintf(stderr, "kwin_bench: only %lld + %lld windows appeared\n",
                     static_cast<long long>(background.size()), static_cast<long long>(twenty.size()));
        return 1;
    }
    WindowControl& control = *Platform::services().windowControl;
    for (qsizetype i = 0; i < twenty.size(); ++i) {
        control.move(twenty[i], displays[0].bounds.topLeft() + QPointF(20 + 40 * i, 30 + 30 * i));
    }

    ScriptFloor floor;
    QuietOutput quiet;
    // Each measured action and the floor take turns, so that both see the same load on a shared machine.
    auto alternate = [&floor](int repetitions, const std::function<void()>& action) {
        std::vector<double> ours;
        std::vector<double> floors;
        for (int i = 0; i < repetitions; ++i) {
            ours.push_back(BenchTable::measure(1, action).median);
            floors.push_back(BenchTable::measure(1, [&floor] { floor.roundTrip(); }).median);
        }
        return std::pair{BenchTable::summarize(ours), BenchTable::summarize(floors)};
    };

    BenchTable::header("KWin: inventory of 50 windows");
    WindowList& windowList = *Platform::services().windowList;
    qsizetype listed = 0;
    const auto [cached, floorA] = alternate(20, [&] {
        listed = windowList.windows(DesktopWindows::Exclude)->size();
        ScreenSnapshotService::qualifyingWindows();
    });
    const auto [fresh, floorB] = alternate(20, [&] {
        bridge.command({{QStringLiteral("op"), QStringLiteral("state")}});
        listed = windowList.windows(DesktopWindows::Exclude)->size();
        ScreenSnapshotService::qualifyingWindows();
    });
    BenchTable::row(QStringLiteral("window list + qualifying windows, pushed state (%1)").arg(listed), cached);
    BenchTable::row(QStringLiteral("one scripted round trip (floor)"), floorA);
    ratio(QStringLiteral("pushed state / floor, medians"), cached.median, floorA.median);
    BenchTable::row(QStringLiteral("the same after asking KWin for its state afresh"), fresh);
    BenchTable::row(QStringLiteral("one scripted round trip (floor)"), floorB);
    ratio(QStringLiteral("asked afresh / floor, medians"), fresh.median, floorB.median);

    BenchTable::header("KWin: moving 20 windows between two outputs");
    const pid_t movedPid = static_cast<pid_t>(moved.pid());
    double keepSizeMedian = 0;
    for (const bool adjust : {false, true}) {
        int direction = 0;
        int movedCount = 0;
        const int commandsBefore = bridge.commandCount();
        std::pair<BenchTable::Figures, BenchTable::Figures> figures;
        quiet.run([&] {
            figures = alternate(10, [&] {
                const DisplaySnapshot& from = displays[direction % 2];
                const DisplaySnapshot& to = displays[(direction + 1) % 2];
                movedCount = WindowMover::moveWindows(from, to, adjust, QSet<pid_t>{movedPid}, false).counts.movedCount;
                ++direction;
            });
        });
        if (direction % 2 == 1) {
            quiet.run([&] { WindowMover::moveWindows(displays[1], displays[0], false, QSet<pid_t>{movedPid}, false); });
        }
        BenchTable::row(
            QStringLiteral("WindowMover::moveWindows, %1 (moved %2, %3 scripts a move)")
                .arg(adjust ? QStringLiteral("adjust size") : QStringLiteral("keep size"))
                .arg(movedCount)
                .arg((bridge.commandCount() - commandsBefore) / double(direction + direction % 2), 0, 'f', 1),
            figures.first);
        BenchTable::row(QStringLiteral("one scripted round trip (floor)"), figures.second);
        if (!adjust) {
            keepSizeMedian = figures.first.median;
        }
        ratio(QStringLiteral("moveWindows %1 / floor, medians").arg(adjust ? "adjust" : "keep"), figures.first.median,
              figures.second.median);
    }
    // The peer: the same moves, one command script per window, as each window was moved before batching.
    int round = 0;
    const auto [perWindow, floorC] = alternate(10, [&] {
        const QRectF& from = displays[round % 2].bounds;
        const QRectF& to = displays[(round + 1) % 2].bounds;
        for (WindowId id : twenty) {
            control.move(id, moverTarget(*control.frame(id).value, from, to));
        }
        ++round;
    });
    if (round % 2 == 1) {
        for (WindowId id : twenty) {
            control.move(id, moverTarget(*control.frame(id).value, displays[1].bounds, displays[0].bounds));
        }
    }
    BenchTable::row(QStringLiteral("loop of one script per window (20 scripts)"), perWindow);
    BenchTable::row(QStringLiteral("one scripted round trip (floor)"), floorC);
    ratio(QStringLiteral("one script per window / floor, medians"), perWindow.median, floorC.median);
    ratio(QStringLiteral("moveWindows keep size / one script per window, medians"), keepSizeMedian, perWindow.median);

    BenchTable::header("KWin: shortcut release -> an observer sees the window on the target output");
    std::unique_ptr<KWinBridge> observer = KWinBridge::connect(&problem);
    FakeKeys keys;
    if (!observer || !keys.start()) {
        std::fprintf(stderr, "kwin_bench: no observer or no key presses: %s\n", qPrintable(problem));
        return 1;
    }
    const WindowId focused = twenty.first();
    control.activate(focused);
    const QString focusedUuid = bridge.uuidOf(focused);
    KeyboardShortcuts::ActionShortcuts shortcuts;
    Updater updater;
    AppController controller(shortcuts, updater);
    shortcuts.setShortcut(KeyboardShortcuts::Shortcut(kOneKeyCode, kControlOption),
                          KeyboardShortcuts::Name(AppController::shortcutNameRawValue(displays[0].persistentID)));
    shortcuts.setShortcut(KeyboardShortcuts::Shortcut(kTwoKeyCode, kControlOption),
                          KeyboardShortcuts::Name(AppController::shortcutNameRawValue(displays[1].persistentID)));
    auto onTarget = [&](const QRectF& target) {
        const KWinState state = observer->state();
        const KWinWindow* window = state.window(focusedUuid);
        return window != nullptr && target.contains(KWinSpace::toDisplaySpace(state, window->frame).center());
    };
    std::vector<double> latencies;
    std::vector<double> floors;
    int missed = 0;
    quiet.run([&] {
        for (int i = 0; i < kPresses; ++i) {
            const int targetIndex = i % 2 == 0 ? 1 : 0;
            const int digit = targetIndex == 1 ? FakeKeys::kEvdevTwo : kEvdevOne;
            keys.send("down", FakeKeys::kEvdevLeftControl);
            keys.send("down", FakeKeys::kEvdevLeftAlt);
            keys.send("down", digit);
            // The press reaches the program before the timed release.
            QElapsedTimer settle;
            settle.start();
            while (settle.elapsed() < 30) {
                QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
            }
            QElapsedTimer timer;
            timer.start();
            keys.send("up", digit);
            bool arrived = false;
            while (!arrived && timer.elapsed() < 2000) {
                QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
                arrived = onTarget(displays[targetIndex].bounds);
            }
            const double elapsed = static_cast<double>(timer.nsecsElapsed()) / 1e6;
            keys.send("up", FakeKeys::kEvdevLeftAlt);
            keys.send("up", FakeKeys::kEvdevLeftControl);
            if (arrived) {
                latencies.push_back(elapsed);
            } else {
                ++missed;
            }
            floors.push_back(BenchTable::measure(1, [&floor] { floor.roundTrip(); }).median);
        }
    });
    if (latencies.empty()) {
        std::printf("no release moved the window (%d missed); status: %s\n", missed,
                    qPrintable(controller.statusMessage()));
        return 1;
    }
    const BenchTable::Figures release = BenchTable::summarize(latencies);
    const BenchTable::Figures floorD = BenchTable::summarize(floors);
    BenchTable::row(QStringLiteral("release -> window seen on target (%1 of %2)").arg(latencies.size()).arg(kPresses),
                    release);
    BenchTable::row(QStringLiteral("one scripted round trip (floor)"), floorD);
    ratio(QStringLiteral("release -> seen / floor, medians"), release.median, floorD.median);
    std::printf("status after the last release: %s\n", qPrintable(controller.statusMessage()));
    shortcuts.removeAllHandlers();
    return 0;
}

#include "kwin_bench.moc"
