// SPDX-License-Identifier: MIT
// The tray click as a person sees it: the real program on the virtual desktop, its icon embedded in a
// real tray, clicked through XTEST. Per monitor (the tray moved there), it times process start -> icon
// embedded, and click -> cards painted and click -> all previews painted on the first and later openings.
// Then resident memory after start and after many openings, and the idle CPU and wake-ups.
// The program reports its paints on the lattica.panel.paint debug trace, stamped on the monotonic clock
// that this benchmark reads too. Run on a desktop without a tray of its own (the benchmark starts one):
//   scripts/virtual-desktop.sh run --no-tray -- build/bench/tray_click_bench build/app/lattica
//       [OPENINGS_PER_MONITOR] [SOAK_OPENINGS] [IDLE_SECONDS]   (defaults 20, 1000, 60)
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRect>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iterator>
#include <optional>
#include <vector>

#include "bench/BenchSummary.h"
#include "bench/tray_click_bench_desktop.h"

namespace {

qint64 now() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

double msSince(qint64 start, qint64 end) {
    return static_cast<double>(end - start) / 1e6;
}

// Runs the event loop until the predicate holds or the time passes. The loop sleeps until an event comes
// (the program's trace) or, for a predicate that asks the X server, until the next look every pollMs: a
// busy wait would take one of the machine's processors from the program it measures.
bool waitFor(const std::function<bool()>& predicate, int timeoutMs, int pollMs = 2) {
    QElapsedTimer clock;
    clock.start();
    QTimer wake;
    wake.start(pollMs > 0 ? pollMs : timeoutMs);
    while (!predicate()) {
        if (clock.elapsed() >= timeoutMs) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

// For predicates that only read the program's trace, which comes as events.
constexpr int kOnEventsOnly = 0;

// Sum over a process's threads of what /proc says about their scheduling.
struct Scheduling {
    qint64 cpuTicks = 0;  // user + system time
    qint64 wakeUps = 0;   // voluntary context switches: each is a sleep that something ended
    int threads = 0;
};

Scheduling scheduling(qint64 pid) {
    Scheduling result;
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (stat.open(QIODevice::ReadOnly)) {
        const QByteArray line = stat.readAll();
        // Fields after the command name (which may hold blanks) start with the state, field 3.
        const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
        result.cpuTicks = fields.value(11).toLongLong() + fields.value(12).toLongLong();
    }
    const QStringList tasks =
        QDir(QStringLiteral("/proc/%1/task").arg(pid)).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    result.threads = int(tasks.size());
    for (const QString& task : tasks) {
        QFile status(QStringLiteral("/proc/%1/task/%2/status").arg(pid).arg(task));
        if (!status.open(QIODevice::ReadOnly)) {
            continue;
        }
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith("voluntary_ctxt_switches:")) {
                result.wakeUps += line.mid(24).trimmed().toLongLong();
            }
        }
    }
    return result;
}

double residentMiB(qint64 pid) {
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith("VmRSS:")) {
                return static_cast<double>(line.mid(6).trimmed().split(' ').value(0).toLongLong()) / 1024.0;
            }
        }
    }
    return -1;
}

// The program under test, with its paint trace read as it comes.
class Program {
public:
    explicit Program(const QString& binary, const QProcessEnvironment& environment) : m_binary(binary) {
        m_process.setProcessEnvironment(environment);
        m_process.setProcessChannelMode(QProcess::SeparateChannels);
        QObject::connect(&m_process, &QProcess::readyReadStandardError, [this] { read(); });
    }
    ~Program() { stop(); }
    bool start() {
        m_process.start(m_binary, {});
        return m_process.waitForStarted(5000);
    }
    void stop() {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.terminate();
            if (!m_process.waitForFinished(10000)) {
                m_process.kill();
                m_process.waitForFinished(5000);
            }
        }
    }
    qint64 pid() const { return m_process.processId(); }
    // The stamp of the first trace line "<what> at <ns>" written at or after since, if any yet.
    std::optional<qint64> stamp(const QString& what, qint64 since) const {
        for (const Event& event : m_events) {
            if (event.what == what && event.at >= since) {
                return event.at;
            }
        }
        return std::nullopt;
    }
    std::optional<QRect> shownFrame(qint64 since) const {
        for (const Event& event : m_events) {
            if (event.what == QLatin1String("shown") && event.at >= since) {
                return event.frame;
            }
        }
        return std::nullopt;
    }
    void forget() { m_events.clear(); }

private:
    struct Event {
        QString what;
        qint64 at = 0;
        QRect frame;
    };
    void read() {
        m_buffer += m_process.readAllStandardError();
        static const QRegularExpression pattern(
            QStringLiteral("lattica\\.panel\\.paint: (.+) at (\\d+)(?: on (-?\\d+),(-?\\d+) (\\d+)x(\\d+))?"));
        qsizetype end = 0;
        while ((end = m_buffer.indexOf('\n')) >= 0) {
            const QString line = QString::fromUtf8(m_buffer.left(end));
            m_buffer.remove(0, end + 1);
            const QRegularExpressionMatch match = pattern.match(line);
            if (!match.hasMatch()) {
                continue;
            }
            Event event{match.captured(1), match.captured(2).toLongLong(), {}};
            if (match.hasCaptured(3)) {
                event.frame = QRect(match.captured(3).toInt(), match.captured(4).toInt(), match.captured(5).toInt(),
                                    match.captured(6).toInt());
            }
            m_events.push_back(event);
        }
    }

    QString m_binary;
    QProcess m_process;
    QByteArray m_buffer;
    std::vector<Event> m_events;
};

struct Opening {
    double cards = 0;
    double previews = 0;
    double handled = 0;  // when the program began to open the panel
    QRect frame;
    // The program's own steps, each from the one before: the refresh, the show, the window's expose, the
    // first paint of the panel's content, the cards drawn, and the turn of the event loop in which they
    // were handed to the X server.
    std::vector<double> steps;
};

// The program's trace lines for the steps of an opening, in order.
const char* const kOpeningSteps[] = {"opening",  "refreshed",   "shown",        "exposed",
                                     "painting", "cards drawn", "cards painted"};

// Puts the pointer on the icon where it is now: a person clicks the icon, not the place it had when it first showed.
bool pointAtIcon(TrayClickDesktop& desktop, xcb_window_t icon) {
    if (waitFor([&] { return desktop.pointAt(icon); }, 5000)) {
        return true;
    }
    std::fprintf(stderr, "tray_click_bench: the icon 0x%x did not come under the pointer (window 0x%x is there)\n",
                 icon, desktop.windowUnderPointer());
    return false;
}

// One click on the icon, until the previews are painted; then a second click closes the panel.
std::optional<Opening> openAndClose(TrayClickDesktop& desktop, Program& program, xcb_window_t icon) {
    program.forget();
    if (!waitFor([&] { return desktop.pointerFree(); }, 5000)) {
        std::fputs("tray_click_bench: the pointer stays grabbed\n", stderr);
        return std::nullopt;
    }
    if (!pointAtIcon(desktop, icon)) {
        return std::nullopt;
    }
    const qint64 clicked = now();
    desktop.clickHere();
    std::optional<qint64> cards;
    std::optional<qint64> previews;
    if (!waitFor(
            [&] {
                cards = program.stamp(QStringLiteral("cards painted"), clicked);
                previews = program.stamp(QStringLiteral("previews painted"), clicked);
                return cards && previews;
            },
            10000, kOnEventsOnly)) {
        std::fprintf(stderr, "tray_click_bench: after the click the panel %s, %s its cards and %s its previews\n",
                     program.stamp(QStringLiteral("shown"), clicked) ? "showed" : "did not show",
                     cards ? "painted" : "did not paint", previews ? "painted" : "did not paint");
        if (pointAtIcon(desktop, icon)) {
            desktop.clickHere();
            waitFor([&] { return program.stamp(QStringLiteral("hidden"), clicked).has_value(); }, 5000, kOnEventsOnly);
        }
        return std::nullopt;
    }
    const qint64 handled = program.stamp(QStringLiteral("opening"), clicked).value_or(*cards);
    Opening opening{msSince(clicked, *cards),
                    msSince(clicked, *previews),
                    msSince(clicked, handled),
                    program.shownFrame(clicked).value_or(QRect()),
                    {}};
    qint64 previous = clicked;
    for (const char* step : kOpeningSteps) {
        const std::optional<qint64> at = program.stamp(QString::fromLatin1(step), clicked);
        opening.steps.push_back(at ? msSince(previous, *at) : BenchSummary::kNone);
        previous = at.value_or(previous);
    }
    // The open panel holds the pointer: a click on the icon is outside it and closes it.
    if (!pointAtIcon(desktop, icon)) {
        return std::nullopt;
    }
    const qint64 closing = now();
    desktop.clickHere();
    if (!waitFor([&] { return program.stamp(QStringLiteral("hidden"), closing).has_value(); }, 10000, kOnEventsOnly)) {
        std::fputs("tray_click_bench: the panel did not close on a click of the icon\n", stderr);
        return std::nullopt;
    }
    return opening;
}

struct Idle {
    double cpuPercent = 0;
    qint64 wakeUps = 0;
    int threadsGone = 0;
};

Idle idleFor(qint64 pid, int seconds) {
    const Scheduling before = scheduling(pid);
    QElapsedTimer clock;
    clock.start();
    // Sleeping, not polling: the benchmark must not disturb what it measures.
    ::sleep(unsigned(seconds));
    const Scheduling after = scheduling(pid);
    const double wall = static_cast<double>(clock.nsecsElapsed()) / 1e9;
    Idle idle;
    idle.cpuPercent = 100.0 * static_cast<double>(after.cpuTicks - before.cpuTicks) /
                      static_cast<double>(sysconf(_SC_CLK_TCK)) / wall;
    idle.threadsGone = std::max(0, before.threads - after.threads);
    // A thread that ended woke up to do so, and took its counts with it.
    idle.wakeUps = std::max<qint64>(0, after.wakeUps - before.wakeUps) + idle.threadsGone;
    return idle;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    if (argc < 2) {
        std::fputs("usage: tray_click_bench LATTICA_BINARY [OPENINGS_PER_MONITOR] [SOAK_OPENINGS] [IDLE_SECONDS]\n",
                   stderr);
        return 2;
    }
    const QString binary = QString::fromLocal8Bit(argv[1]);
    const int perMonitor = std::max(2, argc > 2 ? std::atoi(argv[2]) : 20);
    const int soak = argc > 3 ? std::atoi(argv[3]) : 1000;
    const int idleSeconds = argc > 4 ? std::atoi(argv[4]) : 60;

    TrayClickDesktop desktop;
    if (!desktop.ok()) {
        std::fputs("tray_click_bench: no X server\n", stderr);
        return 1;
    }
    const QList<QRect> monitors = desktop.monitors();
    QTemporaryDir config;
    QTemporaryDir runtime;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), config.path());
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime.path());
    environment.insert(QStringLiteral("LATTICA_APPCAST_URL"), QStringLiteral("http://127.0.0.1:9/appcast.xml"));
    environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("lattica.panel.paint.debug=true"));
    // No session bus: the program runs as on a desktop without a StatusNotifierItem host.
    environment.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));

    std::vector<double> starts;
    std::vector<double> firstCards;
    std::vector<double> firstPreviews;
    std::vector<double> laterCards;
    std::vector<double> laterPreviews;
    std::vector<double> firstHandledToCards;
    std::vector<double> laterHandledToCards;
    std::vector<double> clickToHandled;
    // Per step of the opening, first openings and later ones.
    std::vector<std::vector<double>> firstSteps(std::size(kOpeningSteps));
    std::vector<std::vector<double>> laterSteps(std::size(kOpeningSteps));
    double rssAfterStart = -1;
    double rssAfterSoak = -1;
    Idle idleAfterStart;
    Idle idleAfterOpenings;
    int failures = 0;

    BenchSummary::header("tray click, real program, 3 monitors (trayer, openbox)");
    for (int m = 0; m < monitors.size(); ++m) {
        const bool last = m + 1 == monitors.size();
        QProcess tray;
        tray.start(QStringLiteral("trayer"),
                   {QStringLiteral("--edge"), QStringLiteral("bottom"), QStringLiteral("--align"),
                    QStringLiteral("right"), QStringLiteral("--widthtype"), QStringLiteral("request"),
                    QStringLiteral("--height"), QStringLiteral("24"), QStringLiteral("--monitor"), QString::number(m),
                    QStringLiteral("--SetPartialStrut"), QStringLiteral("false")});
        if (!tray.waitForStarted(5000) || !waitFor([&] { return desktop.trayReady(); }, 10000)) {
            std::fputs("tray_click_bench: trayer did not start\n", stderr);
            return 1;
        }
        Program program(binary, environment);
        xcb_window_t icon = XCB_NONE;
        const qint64 started = now();
        if (!program.start() ||
            !waitFor([&] { return (icon = desktop.embeddedWindowOf(program.pid(), tray.processId())) != XCB_NONE; },
                     15000)) {
            std::fprintf(stderr, "tray_click_bench: the icon was not embedded in the tray on monitor %d\n", m + 1);
            tray.terminate();
            tray.waitForFinished(5000);
            return 1;
        }
        starts.push_back(msSince(started, now()));
        // A person clicks once the program has started: its launch work is done when it uses no processor
        // time for a while.
        Scheduling previous = scheduling(program.pid());
        QElapsedTimer settling;
        settling.start();
        while (settling.elapsed() < 10000) {
            ::usleep(300000);
            const Scheduling current = scheduling(program.pid());
            if (current.cpuTicks == previous.cpuTicks) {
                break;
            }
            previous = current;
        }
        if (last) {
            // Settled: the launch's own work done, nothing changing.
            ::sleep(2);
            rssAfterStart = residentMiB(program.pid());
            idleAfterStart = idleFor(program.pid(), idleSeconds);
        }
        for (int i = 0; i < perMonitor; ++i) {
            const std::optional<Opening> opening = openAndClose(desktop, program, icon);
            if (!opening) {
                ++failures;
                continue;
            }
            if (!monitors[m].contains(opening->frame)) {
                std::fprintf(stderr, "tray_click_bench: the panel showed at %d,%d %dx%d, not on monitor %d\n",
                             opening->frame.x(), opening->frame.y(), opening->frame.width(), opening->frame.height(),
                             m + 1);
                ++failures;
            }
            (i == 0 ? firstCards : laterCards).push_back(opening->cards);
            (i == 0 ? firstPreviews : laterPreviews).push_back(opening->previews);
            (i == 0 ? firstHandledToCards : laterHandledToCards).push_back(opening->cards - opening->handled);
            clickToHandled.push_back(opening->handled);
            for (size_t step = 0; step < opening->steps.size(); ++step) {
                if (!std::isnan(opening->steps[step])) {
                    (i == 0 ? firstSteps : laterSteps)[step].push_back(opening->steps[step]);
                }
            }
        }
        if (last) {
            for (int i = perMonitor; i < soak; ++i) {
                failures += openAndClose(desktop, program, icon) ? 0 : 1;
            }
            // Once the last opening's pictures are let go.
            ::sleep(2);
            rssAfterSoak = residentMiB(program.pid());
            idleAfterOpenings = idleFor(program.pid(), idleSeconds);
        }
        program.stop();
        tray.terminate();
        tray.waitForFinished(5000);
    }

    using BenchSummary::Target;
    BenchSummary::timing("process start -> tray icon embedded", starts, Target::atMost(300));
    BenchSummary::timing("click -> cards painted, first opening", firstCards, Target::atMost(16));
    BenchSummary::timing("click -> cards painted, later openings", laterCards, Target::atMost(16));
    BenchSummary::timing("click -> all previews painted, first opening", firstPreviews, Target::atMost(100));
    BenchSummary::timing("click -> all previews painted, later openings", laterPreviews, Target::atMost(100));
    // Where the time goes: the click's way to the program (X server, tray, scheduling), then the program.
    BenchSummary::timing("click -> program starts opening the panel, all openings", clickToHandled,
                         Target::atMost(BenchSummary::kNone));
    BenchSummary::timing("program starts opening -> cards painted, first opening", firstHandledToCards,
                         Target::atMost(16));
    BenchSummary::timing("program starts opening -> cards painted, later openings", laterHandledToCards,
                         Target::atMost(16));
    for (size_t step = 0; step < std::size(kOpeningSteps); ++step) {
        const QString name = step == 0
                                 ? QStringLiteral("click -> %1").arg(QLatin1String(kOpeningSteps[0]))
                                 : QStringLiteral("%1 -> %2")
                                       .arg(QLatin1String(kOpeningSteps[step - 1]), QLatin1String(kOpeningSteps[step]));
        BenchSummary::timing(QStringLiteral("  step %1, first opening").arg(name), firstSteps[step],
                             Target::atMost(BenchSummary::kNone));
        BenchSummary::timing(QStringLiteral("  step %1, later openings").arg(name), laterSteps[step],
                             Target::atMost(BenchSummary::kNone));
    }
    BenchSummary::figure(QStringLiteral("resident memory after start"), rssAfterStart, "MiB", Target::atMost(40));
    BenchSummary::figure(QStringLiteral("resident memory growth after %1 openings").arg(std::max(soak, perMonitor)),
                         rssAfterSoak - rssAfterStart, "MiB", Target::atMost(5));
    BenchSummary::figure(QStringLiteral("idle CPU % over %1 s after start").arg(idleSeconds), idleAfterStart.cpuPercent,
                         "%", Target::atMost(0));
    BenchSummary::figure(QStringLiteral("idle wake-ups over %1 s after start").arg(idleSeconds),
                         double(idleAfterStart.wakeUps), "", Target::atMost(0));
    BenchSummary::figure(QStringLiteral("idle CPU % over %1 s after openings").arg(idleSeconds),
                         idleAfterOpenings.cpuPercent, "%", Target::atMost(0));
    BenchSummary::figure(QStringLiteral("idle wake-ups over %1 s after openings").arg(idleSeconds),
                         double(idleAfterOpenings.wakeUps), "", Target::atMost(0));
    if (failures > 0) {
        std::printf("failed openings: %d\n", failures);
    }
    return failures == 0 ? 0 : 1;
}
