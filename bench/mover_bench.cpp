// SPDX-License-Identifier: MIT
// Moving 20 windows between monitors with the window mover (keep size, adjust size) against the window
// manager's own confirmed moves (the floor) and a loop of `wmctrl -ir ID -e 0,X,Y,-1,-1`, and the
// focused-window move from call to the window manager's confirmation. Run on a virtual desktop.
#include <fcntl.h>
#include <unistd.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <cstdlib>
#include <optional>

#include "app/displays/ScreenSnapshotService.h"
#include "app/mover/WindowMover.h"
#include "bench/BenchSummary.h"
#include "bench/BenchTable.h"
#include "platform/Platform.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Platform.h"
#include "tests/testclient/TestClient.h"

namespace {

// Mover runs of each kind, each followed by the window manager's own moves.
constexpr int kRounds = 15;

QList<DisplaySnapshot> displays() {
    QList<DisplaySnapshot> snapshots;
    for (const DisplayDescriptor& descriptor : ScreenSnapshotService::currentDisplayDescriptors()) {
        snapshots.append(DisplaySnapshot::placeholder(descriptor));
    }
    return snapshots;
}

// Where every window stands: its outer frame's corner (root coordinates, the global space here) and
// its client's size, as a _NET_MOVERESIZE_WINDOW request gives them.
struct Layout {
    QList<QPoint> corners;
    QList<QSize> clientSizes;
};

// What any mover that waits for the window manager must spend: a _NET_MOVERESIZE_WINDOW request
// for each window and its ConfigureNotify, with nothing read. One window after another, or all
// requests at once and then all confirmations. Each is timed on the same moves the mover made, between
// the same two monitors, only the other way: from where the mover put the windows back to where it
// found them (and, for all at once, forth again).
class WindowManagerFloor {
public:
    explicit WindowManagerFloor(const QList<quint32>& windows) : m_windows(windows) {
        m_connection = X11Connection::open();
        xcb_connection_t* c = m_connection->xcb();
        const uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        for (quint32 window : windows) {
            xcb_change_window_attributes(c, window, XCB_CW_EVENT_MASK, &mask);
        }
        m_moveResize = m_connection->atom("_NET_MOVERESIZE_WINDOW");
    }

    Layout layout() {
        Layout now;
        const QList<WindowFacts> facts =
            Platform::services().windowControl->facts({m_windows.cbegin(), m_windows.cend()});
        QList<xcb_get_geometry_cookie_t> cookies;
        for (quint32 window : m_windows) {
            cookies.append(xcb_get_geometry(m_connection->xcb(), window));
        }
        for (qsizetype i = 0; i < m_windows.size(); ++i) {
            now.corners.append(facts.value(i).frame.value.value_or(QRectF()).topLeft().toPoint());
            xcb_get_geometry_reply_t* reply = xcb_get_geometry_reply(m_connection->xcb(), cookies[i], nullptr);
            now.clientSizes.append(reply != nullptr ? QSize(reply->width, reply->height) : QSize());
            std::free(reply);
        }
        return now;
    }

    // Takes in the news of moves made before (the mover's among them), so that only the reports of the
    // floor's own requests confirm them.
    void forgetEarlierNews() {
        std::free(xcb_get_input_focus_reply(m_connection->xcb(), xcb_get_input_focus(m_connection->xcb()), nullptr));
        m_connection->dispatchPendingEvents();
    }

    void moveOneAfterAnother(const Layout& to) {
        for (qsizetype i = 0; i < m_windows.size(); ++i) {
            request(m_windows[i], to.corners[i]);
            awaitConfirmations({m_windows[i]});
        }
    }
    void moveAllAtOnce(const Layout& to) {
        for (qsizetype i = 0; i < m_windows.size(); ++i) {
            request(m_windows[i], to.corners[i]);
        }
        awaitConfirmations(m_windows);
    }
    // The same with each window's size in the same request as its position: what the window manager
    // alone spends on the writes of a move that adjusts sizes.
    void moveAndResizeAllAtOnce(const Layout& to) {
        for (qsizetype i = 0; i < m_windows.size(); ++i) {
            request(m_windows[i], to.corners[i], to.clientSizes[i]);
        }
        awaitConfirmations(m_windows);
    }

private:
    void request(quint32 window, QPoint topLeft, std::optional<QSize> size = std::nullopt) {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = m_moveResize;
        message.data.data32[0] = 1 | (1u << 8) | (1u << 9) | (2u << 12);  // north-west, x, y, from a pager
        message.data.data32[1] = static_cast<uint32_t>(topLeft.x());
        message.data.data32[2] = static_cast<uint32_t>(topLeft.y());
        if (size) {
            message.data.data32[0] |= (1u << 10) | (1u << 11);  // width, height
            message.data.data32[3] = static_cast<uint32_t>(size->width());
            message.data.data32[4] = static_cast<uint32_t>(size->height());
        }
        xcb_send_event(m_connection->xcb(), 0, m_connection->root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&message));
    }
    void awaitConfirmations(QList<quint32> waiting) {
        m_connection->waitForEvent(
            [&waiting](xcb_generic_event_t* event) {
                if ((event->response_type & 0x7f) == XCB_CONFIGURE_NOTIFY) {
                    waiting.removeOne(reinterpret_cast<xcb_configure_notify_event_t*>(event)->window);
                }
                return waiting.isEmpty();
            },
            1000);
    }

    std::unique_ptr<X11Connection> m_connection;
    QList<quint32> m_windows;
    xcb_atom_t m_moveResize = XCB_ATOM_NONE;
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    auto platform = X11Platform::connect();
    if (!platform) {
        std::fprintf(stderr, "mover_bench: no X server\n");
        return 1;
    }
    platform->install();
    const QList<DisplaySnapshot> all = displays();
    if (all.size() < 2) {
        std::fprintf(stderr, "mover_bench: needs two monitors\n");
        return 1;
    }
    TestClient client;
    if (!client.start()) {
        return 1;
    }
    const QList<quint32> windows =
        client.openMany(QStringLiteral("m"), 20, QStringLiteral("x=100 y=100 w=400 h=300"), 60000);
    if (windows.size() != 20) {
        std::fprintf(stderr, "mover_bench: the windows did not appear\n");
        return 1;
    }
    // The move logs a line per window on standard output; keep the table readable.
    std::FILE* table = stdout;
    const int savedOut = dup(fileno(stdout));
    BenchTable::header("Moving windows (20 windows unless marked)");
    std::fflush(table);
    auto quiet = [&](const std::function<void()>& action) {
        std::fflush(stdout);
        const int devNull = ::open("/dev/null", O_WRONLY);
        dup2(devNull, fileno(stdout));
        action();
        std::fflush(stdout);
        dup2(savedOut, fileno(stdout));
        ::close(devNull);
    };
    // The mover and the window manager alone take turns, so that both see the same load on a shared
    // machine. Each mover run takes the windows from the first monitor to the second; the window manager
    // then makes the same moves back (and forth and back again for all at once), so that every run starts
    // from the same place.
    std::vector<double> keepSizeTimes;
    std::vector<double> adjustSizeTimes;
    std::vector<double> inTurnTimes;
    std::vector<double> allAtOnceTimes;
    std::vector<double> withSizesTimes;
    WindowManagerFloor floor(windows);
    int movedKeeping = 0;
    int movedAdjusting = 0;
    const auto time = [&floor](const std::function<void()>& action) {
        floor.forgetEarlierNews();
        return BenchTable::measure(1, action).median;
    };
    for (int round = 0; round < kRounds; ++round) {
        for (const bool adjust : {false, true}) {
            const Layout before = floor.layout();
            quiet([&] {
                QElapsedTimer timer;
                timer.start();
                const int moved =
                    WindowMover::moveWindows(all[0], all[1], adjust, std::nullopt, false).counts.movedCount;
                (adjust ? adjustSizeTimes : keepSizeTimes).push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
                (adjust ? movedAdjusting : movedKeeping) = moved;
            });
            const Layout after = floor.layout();
            if (adjust) {
                withSizesTimes.push_back(time([&] { floor.moveAndResizeAllAtOnce(before); }));
                withSizesTimes.push_back(time([&] { floor.moveAndResizeAllAtOnce(after); }));
                withSizesTimes.push_back(time([&] { floor.moveAndResizeAllAtOnce(before); }));
            } else {
                inTurnTimes.push_back(time([&] { floor.moveOneAfterAnother(before); }));
                allAtOnceTimes.push_back(time([&] { floor.moveAllAtOnce(after); }));
                allAtOnceTimes.push_back(time([&] { floor.moveAllAtOnce(before); }));
            }
        }
    }
    const BenchTable::Figures keepSize = BenchTable::summarize(keepSizeTimes);
    const BenchTable::Figures adjustSize = BenchTable::summarize(adjustSizeTimes);
    const BenchTable::Figures inTurn = BenchTable::summarize(inTurnTimes);
    const BenchTable::Figures withSizes = BenchTable::summarize(withSizesTimes);
    BenchTable::row(QStringLiteral("WindowMover::moveWindows, keep size (moved %1)").arg(movedKeeping), keepSize);
    BenchTable::row(QStringLiteral("WindowMover::moveWindows, adjust size (moved %1)").arg(movedAdjusting), adjustSize);
    BenchTable::row(QStringLiteral("window manager alone, each move awaited in turn (floor)"), inTurn);
    BenchTable::row(QStringLiteral("window manager alone, all moves sent then awaited"),
                    BenchTable::summarize(allAtOnceTimes));
    BenchTable::row(QStringLiteral("window manager alone, all moves with new sizes sent then awaited"), withSizes);
    int round = 0;
    const BenchTable::Figures wmctrl = BenchTable::measure(6, [&] {
        const QRectF target = all[round++ % 2].bounds;
        for (quint32 window : windows) {
            QProcess::execute(QStringLiteral("wmctrl"),
                              {QStringLiteral("-ir"), QString::number(window), QStringLiteral("-e"),
                               QStringLiteral("0,%1,%2,-1,-1").arg(int(target.x()) + 100).arg(int(target.y()) + 100)});
        }
    });
    BenchTable::row(QStringLiteral("loop of wmctrl -ir ID -e (no confirmation)"), wmctrl);
    QProcess::execute(QStringLiteral("wmctrl"),
                      {QStringLiteral("-i"), QStringLiteral("-a"), QString::number(windows[0])});
    QCoreApplication::processEvents();
    int focusedRound = 0;
    BenchTable::Figures focused;
    WindowMoveResult last;
    quiet([&] {
        focused = BenchTable::measure(
            10, [&] { last = WindowMover::moveFocusedWindow(all[focusedRound++ % 2], all, false).counts; });
    });
    BenchTable::row(QStringLiteral("WindowMover::moveFocusedWindow, 1 window (last result %1,%2)")
                        .arg(last.movedCount)
                        .arg(last.attemptedCount),
                    focused);
    ::close(savedOut);
    BenchSummary::header("Moving 20 windows against the window manager's own confirmed moves");
    const BenchSummary::Comparison wmFloor{inTurn.median, QStringLiteral("window manager, each move awaited")};
    const BenchSummary::Comparison peer{wmctrl.median, QStringLiteral("loop of wmctrl")};
    BenchSummary::row(QStringLiteral("move 20 windows, keep size"), keepSize.median, "ms",
                      BenchSummary::Target::atMostTimesFloor(1.3), wmFloor, peer);
    // An adjusted move also gives every window a new size; the window manager's own floor for the same
    // confirmed moves is its moves with those sizes. Against its plain moves the ratio is shown as well.
    const BenchSummary::Comparison sizedFloor{withSizes.median,
                                              QStringLiteral("window manager, all moves with sizes at once")};
    BenchSummary::row(QStringLiteral("move 20 windows, adjust size"), adjustSize.median, "ms",
                      BenchSummary::Target::atMostTimesFloor(2), sizedFloor, peer);
    BenchSummary::row(QStringLiteral("move 20 windows, adjust size vs plain moves"), adjustSize.median, "ms",
                      BenchSummary::Target::atMost(BenchSummary::kNone), wmFloor, peer);
    client.exit(10000);
    return 0;
}
