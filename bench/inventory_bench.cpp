// SPDX-License-Identifier: MIT
// Window-list inventory on a desktop with 50, 200 and 500 managed windows: our window server, the
// core's qualifying-window inventory on top of it, `wmctrl -lpG` as a whole process, and a minimal
// pipelined listing (client list, pid, geometry) as the floor. Run on a virtual desktop.
#include <sys/socket.h>
#include <xcb/res.h>
#include <xcb/xcb.h>

#include <QFile>
#include <ctime>

#include <QCoreApplication>
#include <QProcess>
#include <cmath>
#include <cstdlib>
#include <set>

#include "app/displays/ScreenSnapshotService.h"
#include "bench/BenchSummary.h"
#include "bench/BenchTable.h"
#include "platform/Platform.h"
#include "platform/WindowList.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Platform.h"
#include "platform/x11/X11WindowCache.h"
#include "tests/testclient/TestClient.h"

namespace {

// The least a lister must do: the client list, then every window's pid and geometry in one go.
int minimalListing(X11Connection& connection) {
    xcb_connection_t* c = connection.xcb();
    xcb_get_property_reply_t* list = xcb_get_property_reply(
        c, xcb_get_property(c, 0, connection.root(), connection.atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW, 0, 1u << 16),
        nullptr);
    if (list == nullptr) {
        return 0;
    }
    const auto* windows = static_cast<const xcb_window_t*>(xcb_get_property_value(list));
    const int count = xcb_get_property_value_length(list) / 4;
    const xcb_atom_t pidAtom = connection.atom("_NET_WM_PID");
    std::vector<xcb_get_property_cookie_t> pids(count);
    std::vector<xcb_get_geometry_cookie_t> geometries(count);
    for (int i = 0; i < count; ++i) {
        pids[i] = xcb_get_property(c, 0, windows[i], pidAtom, XCB_ATOM_CARDINAL, 0, 1);
        geometries[i] = xcb_get_geometry(c, windows[i]);
    }
    for (int i = 0; i < count; ++i) {
        std::free(xcb_get_property_reply(c, pids[i], nullptr));
        std::free(xcb_get_geometry_reply(c, geometries[i], nullptr));
    }
    std::free(list);
    return count;
}

// The same reads as a first inventory (every field of every managed window but its title, the attributes
// of every other root child that the window manager did not make, the owners) with all of them in flight
// before the first reply is read: two round trips, the floor for what it needs. The class of one window
// per owner, read in a later stage, is left out.
int sameReadsListing(X11Connection& connection) {
    xcb_connection_t* c = connection.xcb();
    const xcb_window_t root = connection.root();
    xcb_get_property_reply_t* list = xcb_get_property_reply(
        c, xcb_get_property(c, 0, root, connection.atom("_NET_CLIENT_LIST_STACKING"), XCB_ATOM_WINDOW, 0, 1u << 16),
        nullptr);
    xcb_get_property_reply_t* check = xcb_get_property_reply(
        c, xcb_get_property(c, 0, root, connection.atom("_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW, 0, 1), nullptr);
    xcb_query_tree_reply_t* tree = xcb_query_tree_reply(c, xcb_query_tree(c, root), nullptr);
    // Opacity shows only while a compositing manager runs.
    xcb_get_selection_owner_reply_t* compositor =
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, connection.atom("_NET_WM_CM_S0")), nullptr);
    const bool composited = compositor != nullptr && compositor->owner != XCB_NONE;
    std::free(compositor);
    // Which desktop a window is on matters only with more than one.
    xcb_get_property_reply_t* desktops = xcb_get_property_reply(
        c, xcb_get_property(c, 0, root, connection.atom("_NET_NUMBER_OF_DESKTOPS"), XCB_ATOM_CARDINAL, 0, 1), nullptr);
    const bool oneDesktop = desktops != nullptr && xcb_get_property_value_length(desktops) == 4 &&
                            *static_cast<const uint32_t*>(xcb_get_property_value(desktops)) == 1;
    std::free(desktops);
    if (list == nullptr || tree == nullptr) {
        std::free(list);
        std::free(check);
        std::free(tree);
        return 0;
    }
    const uint32_t resourceMask = xcb_get_setup(c)->resource_id_mask;
    const bool namesCheck = check != nullptr && xcb_get_property_value_length(check) == 4;
    const uint32_t windowManagerBase =
        namesCheck ? *static_cast<const xcb_window_t*>(xcb_get_property_value(check)) & ~resourceMask : 0;
    std::free(check);
    const auto* windows = static_cast<const xcb_window_t*>(xcb_get_property_value(list));
    const int count = xcb_get_property_value_length(list) / 4;
    const std::set<xcb_window_t> managed(windows, windows + count);
    // Each property with the type and length the inventory asks for.
    struct Property {
        xcb_atom_t atom;
        xcb_atom_t type;
        uint32_t length;
    };
    std::vector<Property> kinds = {{connection.atom("_NET_FRAME_EXTENTS"), XCB_ATOM_CARDINAL, 4},
                                   {connection.atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32},
                                   {connection.atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 32}};
    if (!oneDesktop) {
        kinds.push_back({connection.atom("_NET_WM_DESKTOP"), XCB_ATOM_CARDINAL, 1});
    }
    if (composited) {
        kinds.push_back({connection.atom("_NET_WM_WINDOW_OPACITY"), XCB_ATOM_CARDINAL, 1});
    }
    // The replies are taken in the order the requests went out, as the window list takes them.
    constexpr size_t kMostProperties = 5;
    struct Cookies {
        xcb_get_geometry_cookie_t geometry;
        xcb_translate_coordinates_cookie_t position;
        xcb_get_property_cookie_t properties[kMostProperties];
    };
    std::vector<Cookies> cookies(count);
    std::vector<xcb_get_window_attributes_cookie_t> attributes;
    std::vector<xcb_res_client_id_spec_t> clients;
    std::set<uint32_t> clientBases;
    const size_t propertyCount = kinds.size();
    for (int i = 0; i < count; ++i) {
        cookies[i].geometry = xcb_get_geometry(c, windows[i]);
        cookies[i].position = xcb_translate_coordinates(c, windows[i], root, 0, 0);
        for (size_t p = 0; p < propertyCount; ++p) {
            cookies[i].properties[p] =
                xcb_get_property(c, 0, windows[i], kinds[p].atom, kinds[p].type, 0, kinds[p].length);
        }
        if (clientBases.insert(windows[i] & ~resourceMask).second) {
            clients.push_back({windows[i], XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID});
        }
    }
    const xcb_window_t* children = xcb_query_tree_children(tree);
    for (int i = 0; i < xcb_query_tree_children_length(tree); ++i) {
        if (managed.count(children[i]) == 0 && !(namesCheck && (children[i] & ~resourceMask) == windowManagerBase)) {
            attributes.push_back(xcb_get_window_attributes(c, children[i]));
        }
    }
    const xcb_res_query_client_ids_cookie_t owners =
        xcb_res_query_client_ids(c, static_cast<uint32_t>(clients.size()), clients.data());
    for (const Cookies& window : cookies) {
        std::free(xcb_get_geometry_reply(c, window.geometry, nullptr));
        std::free(xcb_translate_coordinates_reply(c, window.position, nullptr));
        for (size_t p = 0; p < propertyCount; ++p) {
            std::free(xcb_get_property_reply(c, window.properties[p], nullptr));
        }
    }
    for (const xcb_get_window_attributes_cookie_t cookie : attributes) {
        std::free(xcb_get_window_attributes_reply(c, cookie, nullptr));
    }
    std::free(xcb_res_query_client_ids_reply(c, owners, nullptr));
    std::free(tree);
    std::free(list);
    return count;
}

// CPU time of this thread and of the X server's main thread, in nanoseconds: what a read costs on each
// side, which the load of a shared machine changes less than the time it takes.
class CpuClock {
public:
    struct Times {
        double client = 0;
        double server = 0;
    };
    explicit CpuClock(int connectionFd) {
        ucred peer{};
        socklen_t length = sizeof peer;
        if (getsockopt(connectionFd, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0) {
            m_server = peer.pid;
        }
    }
    // Adds what the action cost on each side to the sums.
    void add(Times& sums, const std::function<void()>& action) const {
        const Times before = now();
        action();
        const Times after = now();
        sums.client += after.client - before.client;
        sums.server += after.server - before.server;
    }

private:
    Times now() const {
        timespec thread{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &thread);
        Times times;
        times.client = static_cast<double>(thread.tv_sec) * 1e9 + static_cast<double>(thread.tv_nsec);
        // The first field of schedstat: time spent on a CPU.
        QFile schedstat(QStringLiteral("/proc/%1/schedstat").arg(m_server));
        if (m_server > 0 && schedstat.open(QIODevice::ReadOnly)) {
            times.server = schedstat.readAll().split(' ').value(0).toDouble();
        }
        return times;
    }
    pid_t m_server = 0;
};

void runProcess(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(30000);
    process.readAllStandardOutput();
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    auto platform = X11Platform::connect();
    if (!platform) {
        std::fprintf(stderr, "inventory_bench: no X server\n");
        return 1;
    }
    platform->install();
    BenchTable::header("Window inventory (in process unless marked)");
    TestClient client;
    if (!client.start()) {
        std::fprintf(stderr, "inventory_bench: the test client did not start\n");
        return 1;
    }
    int open = 0;
    // The figures of the largest desktop, for the summary.
    double coldList = BenchSummary::kNone;
    double coldTitledList = BenchSummary::kNone;
    double coldQualifying = BenchSummary::kNone;
    double floorListing = BenchSummary::kNone;
    double sameReadsFloor = BenchSummary::kNone;
    double coldFloor = BenchSummary::kNone;
    double wmctrlListing = BenchSummary::kNone;
    for (const int total : {50, 200, 500}) {
        const QList<quint32> windows = client.openMany(QStringLiteral("b%1_").arg(total), total - open,
                                                       QStringLiteral("x=100 y=100 w=300 h=200"), 120000);
        if (windows.size() != total - open) {
            std::fprintf(stderr, "inventory_bench: only %lld windows appeared\n",
                         static_cast<long long>(windows.size()));
            return 1;
        }
        open = total;
        WindowList& windowList = *Platform::services().windowList;
        const qsizetype listed = windowList.windows(DesktopWindows::Exclude)->size();
        // The list and the floor take turns, so that both see the same load on a shared machine.
        std::vector<double> ours;
        std::vector<double> floor;
        for (int i = 0; i < 30; ++i) {
            ours.push_back(BenchTable::measure(1, [&] { windowList.windows(DesktopWindows::Exclude); }).median);
            floor.push_back(BenchTable::measure(1, [&] { minimalListing(platform->connection()); }).median);
        }
        const BenchTable::Figures oursFigures = BenchTable::summarize(ours);
        const BenchTable::Figures floorFigures = BenchTable::summarize(floor);
        BenchTable::row(QStringLiteral("%1 windows: window list (%2 entries)").arg(total).arg(listed), oursFigures);
        BenchTable::row(QStringLiteral("%1 windows: minimal pipelined listing (floor)").arg(total), floorFigures);
        std::printf("%-58s %10.1f\n", qPrintable(QStringLiteral("%1 windows: list / floor, medians").arg(total)),
                    oursFigures.median / floorFigures.median);
        BenchTable::row(QStringLiteral("%1 windows: qualifying windows (list + window control)").arg(total),
                        BenchTable::measure(10, [] { ScreenSnapshotService::qualifyingWindows(); }));
        // The same with nothing known of any window beforehand, as on the first opening of the panel
        // or after every window has changed.
        if (X11WindowCache* cache = platform->windowCache()) {
            // Cold reads and both floors take turns too: the ratios compare figures taken under the same load.
            std::vector<double> list;
            std::vector<double> titledList;
            std::vector<double> sameReads;
            std::vector<double> qualifying;
            std::vector<double> minimal;
            const CpuClock cpu(xcb_get_file_descriptor(platform->connection().xcb()));
            CpuClock::Times listCpu;
            CpuClock::Times sameReadsCpu;
            CpuClock::Times minimalCpu;
            constexpr int kRounds = 30;
            for (int i = 0; i < kRounds; ++i) {
                cpu.add(listCpu, [&] {
                    list.push_back(BenchTable::measure(1, [cache, &windowList] {
                                       cache->clear();
                                       windowList.windowsWithoutTitles(DesktopWindows::Exclude);
                                   }).median);
                });
                titledList.push_back(BenchTable::measure(1, [cache, &windowList] {
                                         cache->clear();
                                         windowList.windows(DesktopWindows::Exclude);
                                     }).median);
                cpu.add(minimalCpu, [&] {
                    minimal.push_back(BenchTable::measure(1, [&] { minimalListing(platform->connection()); }).median);
                });
                cpu.add(sameReadsCpu, [&] {
                    sameReads.push_back(
                        BenchTable::measure(1, [&] { sameReadsListing(platform->connection()); }).median);
                });
                qualifying.push_back(BenchTable::measure(1, [cache] {
                                         cache->clear();
                                         ScreenSnapshotService::qualifyingWindows();
                                     }).median);
            }
            // The panel and the mover read the list without titles; the command line's `list` shows them.
            BenchTable::row(QStringLiteral("%1 windows: window list, every window read afresh").arg(total),
                            BenchTable::summarize(list));
            BenchTable::row(QStringLiteral("%1 windows: the same with titles, read afresh").arg(total),
                            BenchTable::summarize(titledList));
            BenchTable::row(QStringLiteral("%1 windows: minimal pipelined listing, in turn with it (floor)").arg(total),
                            BenchTable::summarize(minimal));
            BenchTable::row(QStringLiteral("%1 windows: the same reads in one pipelined stage (floor)").arg(total),
                            BenchTable::summarize(sameReads));
            BenchTable::row(QStringLiteral("%1 windows: qualifying windows, every window read afresh").arg(total),
                            BenchTable::summarize(qualifying));
            // On a machine busy with other work the medians swing with the wait for a CPU; the least of
            // each, the read least disturbed, shows the cost of the reads themselves.
            const double leastFloor = BenchTable::summarize(minimal).minimum;
            std::printf("%-58s %10.2f\n",
                        qPrintable(QStringLiteral("%1 windows: cold list / floor, least of each").arg(total)),
                        BenchTable::summarize(list).minimum / leastFloor);
            std::printf(
                "%-58s %10.2f\n",
                qPrintable(QStringLiteral("%1 windows: the same with titles / floor, least of each").arg(total)),
                BenchTable::summarize(titledList).minimum / leastFloor);
            std::printf(
                "%-58s %10.2f\n",
                qPrintable(QStringLiteral("%1 windows: its reads in one stage / floor, least of each").arg(total)),
                BenchTable::summarize(sameReads).minimum / leastFloor);
            std::printf("%-58s %10.2f\n",
                        qPrintable(QStringLiteral("%1 windows: cold qualifying / floor, least of each").arg(total)),
                        BenchTable::summarize(qualifying).minimum / leastFloor);
            // CPU per read on each side, averaged: the cold list (its own thread only), the same reads in
            // one stage, and the floor.
            for (const auto& [name, times] :
                 {std::pair{"cold list", listCpu}, std::pair{"its reads in one stage", sameReadsCpu},
                  std::pair{"floor", minimalCpu}}) {
                std::printf("%-58s %10.3f %10.3f\n",
                            qPrintable(QStringLiteral("%1 windows: CPU ms of %2, ours and server's")
                                           .arg(total)
                                           .arg(QLatin1String(name))),
                            times.client / kRounds / 1e6, times.server / kRounds / 1e6);
            }
            coldList = BenchTable::summarize(list).median;
            coldTitledList = BenchTable::summarize(titledList).median;
            coldQualifying = BenchTable::summarize(qualifying).median;
            sameReadsFloor = BenchTable::summarize(sameReads).median;
            coldFloor = BenchTable::summarize(minimal).median;
            // How many requests a cold read sends, whatever the load: the floor sends two per window.
            xcb_connection_t* watchConnection = cache->connection().xcb();
            auto nextSequence = [watchConnection] {
                const xcb_get_input_focus_cookie_t cookie = xcb_get_input_focus(watchConnection);
                std::free(xcb_get_input_focus_reply(watchConnection, cookie, nullptr));
                return cookie.sequence + 1;
            };
            auto requestsPerWindow = [&](const auto& read) {
                cache->clear();
                const unsigned before = nextSequence();
                read();
                return static_cast<double>(nextSequence() - before - 1) / total;
            };
            std::printf("%-58s %10.2f\n",
                        qPrintable(QStringLiteral("%1 windows: requests per window of a cold read").arg(total)),
                        requestsPerWindow([&] { windowList.windowsWithoutTitles(DesktopWindows::Exclude); }));
            std::printf("%-58s %10.2f\n", qPrintable(QStringLiteral("%1 windows: the same with titles").arg(total)),
                        requestsPerWindow([&] { windowList.windows(DesktopWindows::Exclude); }));
            std::printf("%-58s %10.2f\n",
                        qPrintable(QStringLiteral("%1 windows: requests per window of qualifying windows").arg(total)),
                        requestsPerWindow([] { ScreenSnapshotService::qualifyingWindows(); }));
        }
        const BenchTable::Figures wmctrl =
            BenchTable::measure(10, [] { runProcess(QStringLiteral("wmctrl"), {QStringLiteral("-lpG")}); });
        BenchTable::row(QStringLiteral("%1 windows: wmctrl -lpG (whole process)").arg(total), wmctrl);
        floorListing = floorFigures.median;
        wmctrlListing = wmctrl.median;
    }
    BenchSummary::header("Cold inventory of 500 windows against the pipelined floor");
    // The cold reads are compared with the floor measured in turn with them.
    const BenchSummary::Comparison floor{std::isnan(coldFloor) ? floorListing : coldFloor,
                                         QStringLiteral("pid and geometry only, pipelined")};
    const BenchSummary::Comparison sameReads{sameReadsFloor,
                                             QStringLiteral("the inventory's reads issued in one stage")};
    const BenchSummary::Comparison peer{wmctrlListing, QStringLiteral("wmctrl -lpG")};
    BenchSummary::row(QStringLiteral("cold window list, 500 windows"), coldList, "ms",
                      BenchSummary::Target::atMostTimesFloor(2), floor, peer);
    BenchSummary::row(QStringLiteral("cold window list with titles (command line), 500 windows"), coldTitledList, "ms",
                      BenchSummary::Target::atMost(BenchSummary::kNone), floor, peer);
    BenchSummary::row(QStringLiteral("cold qualifying windows, 500 windows"), coldQualifying, "ms",
                      BenchSummary::Target::atMostTimesFloor(2), floor, peer);
    // What the ratio is made of: the same reads, all sent before the first reply is read.
    BenchSummary::row(QStringLiteral("cold window list vs its own reads in one stage"), coldList, "ms",
                      BenchSummary::Target::atMost(BenchSummary::kNone), sameReads, peer);
    client.exit(10000);
    return 0;
}
