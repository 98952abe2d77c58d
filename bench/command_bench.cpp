// SPDX-License-Identifier: MIT
// `lattica move-focused --to next` as a whole process, from its start to the window manager's
// confirmation of the move, against `xdotool getactivewindow windowmove` and `wmctrl -r :ACTIVE: -e`
// doing the same move (neither waits for any confirmation), and the bus call alone. `lattica` is the
// launcher, which asks the running instance without loading the toolkit; the program itself (lattica-app)
// is timed doing the same through the instance. The moves through the instance and the peers' moves take
// turns, so that all of them meet the same load. The command also runs with no instance (the launcher
// hands over to the program, which does the move in its own process).
// Run on a virtual desktop: bench/run-benchmarks.sh.
#include <xcb/xcb.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QProcess>
#include <cstdio>
#include <cstdlib>

#include "app/displays/ScreenSnapshotService.h"
#include "bench/BenchTable.h"
#include "bench/DesktopObserver.h"
#include "platform/x11/X11Platform.h"
#include "tests/testclient/TestClient.h"

namespace {

constexpr int kRepetitions = 20;
constexpr int kConfirmTimeoutMs = 5000;

// A session bus for the benchmark alone.
struct PrivateBus {
    QProcess daemon;
    QString address;

    bool start() {
        daemon.start(QStringLiteral("dbus-daemon"),
                     {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address=1")});
        if (daemon.waitForStarted(5000) && daemon.waitForReadyRead(5000)) {
            address = QString::fromUtf8(daemon.readLine()).trimmed();
        }
        return !address.isEmpty();
    }
    ~PrivateBus() {
        daemon.terminate();
        daemon.waitForFinished(5000);
    }
};

bool waitFor(const std::function<bool()>& condition, int timeoutMs) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > timeoutMs) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    return true;
}

// The moves' times: to the confirmation (or, for tools that confirm nothing, to their exit).
struct Timing {
    std::vector<double> times;
    int missed = 0;
};

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    std::unique_ptr<X11Platform> platform = X11Platform::connect();
    if (!platform) {
        std::fputs("command_bench: no X server\n", stderr);
        return 1;
    }
    platform->install();
    QList<QRect> monitors;
    for (const DisplayDescriptor& display : ScreenSnapshotService::currentDisplayDescriptors()) {
        monitors.append(display.bounds.toRect());
    }
    if (monitors.size() < 2) {
        std::fputs("command_bench: needs two monitors\n", stderr);
        return 1;
    }
    TestClient client;
    const quint32 window =
        client.start() ? client.open(QStringLiteral("w"), QStringLiteral("x=200 y=200 w=640 h=400")) : 0;
    if (window == 0 ||
        QProcess::execute(QStringLiteral("xdotool"),
                          {QStringLiteral("windowactivate"), QStringLiteral("--sync"), QString::number(window)}) != 0) {
        std::fputs("command_bench: the test client's window did not open or take focus\n", stderr);
        return 1;
    }
    // Watches the window's frame: the window manager has put it on a monitor.
    DesktopObserver watch;
    const xcb_window_t frame = watch.frameOf(window);
    int monitor = 0;  // where the window is now

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // Runs one move to the next monitor, confirmed by the window manager or ended with the process.
    const auto moveOnce = [&](const QString& program, const QStringList& arguments, bool confirmed, Timing& timing) {
        const int next = (monitor + 1) % monitors.size();
        QStringList filled = arguments;
        for (QString& argument : filled) {
            argument.replace(QStringLiteral("%X"), QString::number(monitors[next].x() + 100));
            argument.replace(QStringLiteral("%Y"), QString::number(monitors[next].y() + 100));
        }
        watch.drain();
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        QElapsedTimer timer;
        timer.start();
        process.start(program, filled);
        bool arrived = false;
        const bool done = waitFor(
            [&] {
                arrived = arrived || watch.frameArrived(frame, monitors[next]);
                return confirmed ? arrived : process.state() == QProcess::NotRunning;
            },
            kConfirmTimeoutMs);
        const double elapsed = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        process.waitForFinished(kConfirmTimeoutMs);
        // The tools that confirm nothing: the next move starts from where the window really is.
        waitFor([&] { return arrived || (arrived = watch.frameArrived(frame, monitors[next])); }, kConfirmTimeoutMs);
        if (done && arrived && process.exitCode() == 0) {
            timing.times.push_back(elapsed);
            monitor = next;
        } else {
            ++timing.missed;
            if (arrived) {
                monitor = next;
            }
        }
    };
    const QString lattica = QStringLiteral(LATTICA_BINARY);
    const QStringList moveFocused{QStringLiteral("move-focused"), QStringLiteral("--to"), QStringLiteral("next")};

    const QString program = QStringLiteral(LATTICA_PROGRAM);
    Timing xdotool, wmctrl, inProcess, throughInstance, programThroughInstance, startUp;
    std::vector<double> busCalls;
    // What starting the program costs before it does anything: --version prints and exits.
    for (int i = 0; i < kRepetitions; ++i) {
        QProcess process;
        process.setStandardOutputFile(QProcess::nullDevice());
        QElapsedTimer timer;
        timer.start();
        process.start(QStringLiteral(LATTICA_BINARY), {QStringLiteral("--version")});
        if (process.waitForFinished(kConfirmTimeoutMs) && process.exitCode() == 0) {
            startUp.times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        } else {
            ++startUp.missed;
        }
    }
    // With no instance running the command does the move in its own process.
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nonexistent"));
    for (int i = 0; i < kRepetitions; ++i) {
        moveOnce(lattica, moveFocused, true, inProcess);
    }

    PrivateBus bus;
    if (!bus.start()) {
        std::fputs("command_bench: dbus-daemon did not start\n", stderr);
        return 1;
    }
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address);
    QProcess instance;
    instance.setProcessEnvironment(environment);
    instance.start(lattica, {});
    QDBusConnection connection = QDBusConnection::connectToBus(bus.address, QStringLiteral("bench"));
    if (!waitFor([&] { return connection.interface()->isServiceRegistered(QStringLiteral("app.lattica.Lattica")); },
                 10000)) {
        std::fputs("command_bench: the Lattica instance did not appear on the bus\n", stderr);
        return 1;
    }
    for (int i = 0; i < kRepetitions; ++i) {
        moveOnce(QStringLiteral("xdotool"),
                 {QStringLiteral("getactivewindow"), QStringLiteral("windowmove"), QStringLiteral("%X"),
                  QStringLiteral("%Y")},
                 false, xdotool);
        moveOnce(
            QStringLiteral("wmctrl"),
            {QStringLiteral("-r"), QStringLiteral(":ACTIVE:"), QStringLiteral("-e"), QStringLiteral("0,%X,%Y,-1,-1")},
            false, wmctrl);
        moveOnce(lattica, moveFocused, true, throughInstance);
        moveOnce(program, moveFocused, true, programThroughInstance);
        QDBusMessage call = QDBusMessage::createMethodCall(
            QStringLiteral("app.lattica.Lattica"), QStringLiteral("/app/lattica/Lattica"),
            QStringLiteral("app.lattica.Lattica1"), QStringLiteral("MoveFocused"));
        call.setArguments({QStringLiteral("next"), QString()});
        watch.drain();
        QElapsedTimer timer;
        timer.start();
        const QDBusMessage reply = connection.call(call, QDBus::Block, kConfirmTimeoutMs);
        const double elapsed = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        if (reply.type() == QDBusMessage::ReplyMessage && reply.arguments().value(0).toInt() == 1) {
            busCalls.push_back(elapsed);
        }
        const int next = (monitor + 1) % monitors.size();
        if (waitFor([&] { return watch.frameArrived(frame, monitors[next]); }, kConfirmTimeoutMs)) {
            monitor = next;
        }
    }
    instance.terminate();
    instance.waitForFinished(10000);
    client.exit();

    BenchTable::header("Moving the focused window to the next monitor (20 moves each)");
    const auto show = [](const char* name, const Timing& timing) {
        if (timing.times.empty()) {
            std::printf("%-58s no move completed (%d missed)\n", name, timing.missed);
            return BenchTable::Figures{};
        }
        const BenchTable::Figures figures = BenchTable::summarize(timing.times);
        BenchTable::row(QString::fromLatin1(name), figures);
        if (timing.missed > 0) {
            std::printf("  (%d moves missed)\n", timing.missed);
        }
        return figures;
    };
    const BenchTable::Figures x = show("xdotool getactivewindow windowmove (process)", xdotool);
    const BenchTable::Figures w = show("wmctrl -r :ACTIVE: -e (process)", wmctrl);
    const BenchTable::Figures viaBus = show("lattica move-focused, via instance (to WM confirm)", throughInstance);
    const BenchTable::Figures programViaBus =
        show("lattica-app move-focused, via instance (to WM confirm)", programThroughInstance);
    const BenchTable::Figures own = show("lattica move-focused, no instance (to WM confirm)", inProcess);
    const BenchTable::Figures call = show("bus call MoveFocused alone (reply)", Timing{busCalls, 0});
    const BenchTable::Figures start = show("lattica --version (process start to exit)", startUp);
    if (x.median > 0 && w.median > 0) {
        std::printf("\nratios of medians to the peers, measured in this run:%22s %10s\n", "/ xdotool", "/ wmctrl");
        const auto ratio = [&](const char* name, const BenchTable::Figures& figures) {
            std::printf("  %-64s %10.2f %10.2f\n", name, figures.median / x.median, figures.median / w.median);
        };
        ratio("lattica move-focused, via instance", viaBus);
        ratio("lattica-app move-focused, via instance", programViaBus);
        ratio("lattica move-focused, no instance", own);
        ratio("bus call MoveFocused alone", call);
        ratio("lattica --version", start);
    }
    return 0;
}
