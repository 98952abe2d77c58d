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
#include <xcb/randr.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

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

// The benchmark's own X connection: monitors, the tray's windows, and XTEST clicks.
class Desktop {
public:
    Desktop() : m_connection(xcb_connect(nullptr, nullptr)) {
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        m_pidAtom = atom("_NET_WM_PID");
        m_trayAtom = atom("_NET_SYSTEM_TRAY_S0");
    }
    ~Desktop() { xcb_disconnect(m_connection); }
    bool ok() const { return xcb_connection_has_error(m_connection) == 0; }

    QList<QRect> monitors() {
        QList<QRect> rects;
        auto* reply =
            xcb_randr_get_monitors_reply(m_connection, xcb_randr_get_monitors(m_connection, m_root, 1), nullptr);
        if (reply == nullptr) {
            return rects;
        }
        for (auto it = xcb_randr_get_monitors_monitors_iterator(reply); it.rem > 0; xcb_randr_monitor_info_next(&it)) {
            rects.append(QRect(it.data->x, it.data->y, it.data->width, it.data->height));
        }
        std::free(reply);
        return rects;
    }
    // The tray icon of a process once the tray has embedded it: a mapped window of the process inside a
    // window of the tray.
    xcb_window_t embeddedWindowOf(qint64 pid, qint64 trayPid) { return find(m_root, pid, trayPid, false); }
    // A tray host owns the selection of the screen's system tray.
    bool trayReady() {
        auto* reply =
            xcb_get_selection_owner_reply(m_connection, xcb_get_selection_owner(m_connection, m_trayAtom), nullptr);
        const bool owned = reply != nullptr && reply->owner != XCB_NONE;
        std::free(reply);
        return owned;
    }
    // Centre of a window in root coordinates.
    std::optional<QPoint> centre(xcb_window_t window) {
        auto* geometry = xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr);
        if (geometry == nullptr) {
            return std::nullopt;
        }
        auto* translated = xcb_translate_coordinates_reply(
            m_connection,
            xcb_translate_coordinates(m_connection, window, m_root, geometry->width / 2, geometry->height / 2),
            nullptr);
        std::free(geometry);
        if (translated == nullptr) {
            return std::nullopt;
        }
        const QPoint point(translated->dst_x, translated->dst_y);
        std::free(translated);
        return point;
    }
    void click(QPoint at) {
        xcb_test_fake_input(m_connection, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, m_root, int16_t(at.x()),
                            int16_t(at.y()), 0);
        xcb_test_fake_input(m_connection, XCB_BUTTON_PRESS, 1, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        xcb_test_fake_input(m_connection, XCB_BUTTON_RELEASE, 1, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        xcb_flush(m_connection);
    }
    // True when no client holds the pointer: the benchmark can grab it (and lets go at once). A popup
    // that has just closed may still hold it, and would take the next click for itself.
    bool pointerFree() {
        auto* reply =
            xcb_grab_pointer_reply(m_connection,
                                   xcb_grab_pointer(m_connection, 0, m_root, 0, XCB_GRAB_MODE_ASYNC,
                                                    XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
                                   nullptr);
        const bool free = reply != nullptr && reply->status == XCB_GRAB_STATUS_SUCCESS;
        std::free(reply);
        if (free) {
            xcb_ungrab_pointer(m_connection, XCB_CURRENT_TIME);
            sync();
        }
        return free;
    }
    // Waits until the server has handled everything sent so far.
    void sync() { std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr)); }

private:
    xcb_atom_t atom(const char* name) {
        auto* reply = xcb_intern_atom_reply(
            m_connection, xcb_intern_atom(m_connection, 0, uint16_t(std::strlen(name)), name), nullptr);
        const xcb_atom_t value = reply != nullptr ? reply->atom : XCB_NONE;
        std::free(reply);
        return value;
    }
    qint64 pidOf(xcb_window_t window) {
        auto* reply = xcb_get_property_reply(
            m_connection, xcb_get_property(m_connection, 0, window, m_pidAtom, XCB_ATOM_CARDINAL, 0, 1), nullptr);
        qint64 pid = 0;
        if (reply != nullptr && xcb_get_property_value_length(reply) == 4) {
            pid = *static_cast<uint32_t*>(xcb_get_property_value(reply));
        }
        std::free(reply);
        return pid;
    }
    bool mapped(xcb_window_t window) {
        auto* reply =
            xcb_get_window_attributes_reply(m_connection, xcb_get_window_attributes(m_connection, window), nullptr);
        const bool viewable = reply != nullptr && reply->map_state == XCB_MAP_STATE_VIEWABLE;
        std::free(reply);
        return viewable;
    }
    // The first mapped window below parent (depth first) that belongs to the process and lies inside a
    // window of the tray's process.
    xcb_window_t find(xcb_window_t parent, qint64 pid, qint64 trayPid, bool insideTray) {
        auto* tree = xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, parent), nullptr);
        if (tree == nullptr) {
            return XCB_NONE;
        }
        const xcb_window_t* children = xcb_query_tree_children(tree);
        const int count = xcb_query_tree_children_length(tree);
        xcb_window_t found = XCB_NONE;
        for (int i = 0; i < count && found == XCB_NONE; ++i) {
            const qint64 owner = pidOf(children[i]);
            if (owner == pid && insideTray && mapped(children[i])) {
                found = children[i];
            } else if (owner != pid) {
                found = find(children[i], pid, trayPid, insideTray || owner == trayPid);
            }
        }
        std::free(tree);
        return found;
    }

    xcb_connection_t* m_connection;
    xcb_window_t m_root;
    xcb_atom_t m_pidAtom;
    xcb_atom_t m_trayAtom;
};

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

// One click on the icon, until the previews are painted; then a second click closes the panel.
std::optional<Opening> openAndClose(Desktop& desktop, Program& program, QPoint icon) {
    program.forget();
    if (!waitFor([&] { return desktop.pointerFree(); }, 5000)) {
        std::fputs("tray_click_bench: the pointer stays grabbed\n", stderr);
        return std::nullopt;
    }
    const qint64 clicked = now();
    desktop.click(icon);
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
        desktop.click(icon);
        waitFor([&] { return program.stamp(QStringLiteral("hidden"), clicked).has_value(); }, 5000, kOnEventsOnly);
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
    const qint64 closing = now();
    // The open panel holds the pointer: a click on the icon is outside it and closes it.
    desktop.click(icon);
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

    Desktop desktop;
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
        const std::optional<QPoint> centre = desktop.centre(icon);
        if (!centre) {
            return 1;
        }
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
            const std::optional<Opening> opening = openAndClose(desktop, program, *centre);
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
                failures += openAndClose(desktop, program, *centre) ? 0 : 1;
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
