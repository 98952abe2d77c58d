// SPDX-License-Identifier: MIT
// A soak of the real program: many panel openings, then many display-shortcut moves, with the program's
// resident memory, open files and X resources read before, during and after. Growth means a leak.
// Run it on a virtual desktop:
//   scripts/virtual-desktop.sh run -- build/bench/soak_bench build/lattica [OPENINGS] [MOVES]
// (defaults 10000 and 10000). It prints one line per thousand steps and a summary table.
#include <sys/types.h>
#include <xcb/res.h>
#include <xcb/xcb.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRect>
#include <QTemporaryDir>
#include <QThread>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "bench/DesktopObserver.h"
#include "tests/testclient/TestClient.h"

namespace {

constexpr int kControlOption = 0x1000 | 0x800;
constexpr int kOneKeyCode = 18;  // Carbon key codes of the digits 1 and 2
constexpr int kTwoKeyCode = 19;
constexpr xcb_keysym_t kControlL = 0xffe3;
constexpr xcb_keysym_t kAltL = 0xffe9;
constexpr xcb_keysym_t kEscape = 0xff1b;

// What the program holds at one moment.
struct Holdings {
    qint64 residentKiB = -1;
    int files = -1;
    int previewSegments = -1;
    int xClients = 0;
    qint64 xResources = 0;
    qint64 xPixmapBytes = 0;
};

// The soak's own X connection: key presses through XTEST, frame moves, and the X-Resource figures.
class Desktop : public DesktopObserver {
public:
    // The X clients of a process and what they hold on the server.
    void addXFigures(qint64 pid, Holdings& holdings) {
        xcb_res_query_clients_reply_t* clients =
            xcb_res_query_clients_reply(connection(), xcb_res_query_clients(connection()), nullptr);
        if (clients == nullptr) {
            return;
        }
        for (auto it = xcb_res_query_clients_clients_iterator(clients); it.rem > 0; xcb_res_client_next(&it)) {
            const uint32_t base = it.data->resource_base;
            if (clientPid(base) != pid) {
                continue;
            }
            ++holdings.xClients;
            if (auto* resources = xcb_res_query_client_resources_reply(
                    connection(), xcb_res_query_client_resources(connection(), base), nullptr)) {
                for (auto type = xcb_res_query_client_resources_types_iterator(resources); type.rem > 0;
                     xcb_res_type_next(&type)) {
                    holdings.xResources += type.data->count;
                }
                std::free(resources);
            }
            if (auto* pixmaps = xcb_res_query_client_pixmap_bytes_reply(
                    connection(), xcb_res_query_client_pixmap_bytes(connection(), base), nullptr)) {
                holdings.xPixmapBytes += pixmaps->bytes;
                std::free(pixmaps);
            }
        }
        std::free(clients);
    }

private:
    qint64 clientPid(uint32_t resourceBase) {
        xcb_res_client_id_spec_t spec{resourceBase, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        auto* reply =
            xcb_res_query_client_ids_reply(connection(), xcb_res_query_client_ids(connection(), 1, &spec), nullptr);
        qint64 pid = 0;
        if (reply != nullptr) {
            for (auto it = xcb_res_query_client_ids_ids_iterator(reply); it.rem > 0;
                 xcb_res_client_id_value_next(&it)) {
                if (it.data->length == 4) {
                    pid = *xcb_res_client_id_value_value(it.data);
                }
            }
            std::free(reply);
        }
        return pid;
    }
};

qint64 residentKiB(qint64 pid) {
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly)) {
        return -1;
    }
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:")) {
            return line.mid(6).trimmed().split(' ').value(0).toLongLong();
        }
    }
    return -1;
}

// Shared-memory segments as large as a picture of a monitor (the toolkit's own are the size of a window).
int previewSegments(qint64 pid, qint64 pictureBytes) {
    QFile maps(QStringLiteral("/proc/%1/maps").arg(pid));
    if (!maps.open(QIODevice::ReadOnly)) {
        return -1;
    }
    int count = 0;
    for (const QByteArray& line : maps.readAll().split('\n')) {
        if (line.contains("SYSV")) {
            const QList<QByteArray> range = line.split(' ').value(0).split('-');
            count += range.value(1).toLongLong(nullptr, 16) - range.value(0).toLongLong(nullptr, 16) >= pictureBytes;
        }
    }
    return count;
}

Holdings holdings(Desktop& desktop, qint64 pid, qint64 pictureBytes) {
    Holdings held;
    held.residentKiB = residentKiB(pid);
    held.files = int(QDir(QStringLiteral("/proc/%1/fd").arg(pid)).entryList(QDir::Files | QDir::System).size());
    held.previewSegments = previewSegments(pid, pictureBytes);
    desktop.addXFigures(pid, held);
    return held;
}

void printHoldings(const char* phase, int step, const Holdings& held, qint64 elapsedMs) {
    std::printf("%-10s %6d  rss %7lld KiB  fds %4d  x-clients %d  x-resources %6lld  x-pixmaps %9lld B  %7.1f s\n",
                phase, step, static_cast<long long>(held.residentKiB), held.files, held.xClients,
                static_cast<long long>(held.xResources), static_cast<long long>(held.xPixmapBytes),
                static_cast<double>(elapsedMs) / 1000.0);
    std::fflush(stdout);
}

// Spins the event loop until the predicate holds or the time passes.
template <typename Predicate>
bool waitFor(Predicate predicate, int timeoutMs) {
    QElapsedTimer clock;
    clock.start();
    while (!predicate()) {
        if (clock.elapsed() > timeoutMs) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    return true;
}

QString shortcutEntry(int keyCode) {
    return QStringLiteral("{\"carbonKeyCode\":%1,\"carbonModifiers\":%2}").arg(keyCode).arg(kControlOption);
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    if (argc < 2) {
        std::fputs("usage: soak_bench LATTICA_BINARY [OPENINGS] [MOVES]\n", stderr);
        return 2;
    }
    const QString binary = QString::fromLocal8Bit(argv[1]);
    const int openings = argc > 2 ? std::atoi(argv[2]) : 10000;
    const int moves = argc > 3 ? std::atoi(argv[3]) : 10000;

    Desktop desktop;
    if (!desktop.ok()) {
        std::fputs("soak_bench: no X server\n", stderr);
        return 1;
    }
    // A session bus and a configuration folder of the soak's own.
    QProcess bus;
    bus.start(QStringLiteral("dbus-daemon"),
              {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address=1")});
    if (!bus.waitForStarted(5000) || !bus.waitForReadyRead(5000)) {
        std::fputs("soak_bench: dbus-daemon did not start\n", stderr);
        return 1;
    }
    const QString address = QString::fromUtf8(bus.readLine()).trimmed();
    QDBusConnection connection = QDBusConnection::connectToBus(address, QStringLiteral("soak"));
    QTemporaryDir config;
    QTemporaryDir runtime;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), config.path());
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime.path());
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
    environment.insert(QStringLiteral("LATTICA_APPCAST_URL"), QStringLiteral("http://127.0.0.1:9/appcast.xml"));

    QProcess lattica;
    lattica.setProcessEnvironment(environment);
    lattica.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    auto call = [&](const QString& method) {
        return connection.call(QDBusMessage::createMethodCall(QStringLiteral("app.lattica.Lattica"),
                                                              QStringLiteral("/app/lattica/Lattica"),
                                                              QStringLiteral("app.lattica.Lattica1"), method),
                               QDBus::Block, 30000);
    };
    auto startProgram = [&] {
        lattica.start(binary, {});
        return lattica.waitForStarted(5000) &&
               waitFor(
                   [&] { return connection.interface()->isServiceRegistered(QStringLiteral("app.lattica.Lattica")); },
                   15000);
    };
    if (!startProgram()) {
        std::fputs("soak_bench: the program did not come up on the bus\n", stderr);
        return 1;
    }
    // The displays, then a shortcut for each of the first two, stored as the settings window would.
    const QJsonArray displays =
        QJsonDocument::fromJson(call(QStringLiteral("Displays")).arguments().value(0).toString().toUtf8()).array();
    if (displays.size() < 2) {
        std::fputs("soak_bench: needs two monitors\n", stderr);
        return 1;
    }
    lattica.terminate();
    lattica.waitForFinished(10000);
    const QString defaultsPath = config.filePath(QStringLiteral("lattica/defaults.json"));
    QFile defaultsFile(defaultsPath);
    if (!defaultsFile.open(QIODevice::ReadOnly)) {
        std::fputs("soak_bench: the program wrote no preferences\n", stderr);
        return 1;
    }
    QJsonObject defaults = QJsonDocument::fromJson(defaultsFile.readAll()).object();
    defaultsFile.close();
    QList<QRect> targets;
    for (int i = 0; i < 2; ++i) {
        const QJsonObject display = displays.at(i).toObject();
        defaults.insert(QStringLiteral("KeyboardShortcuts_moveFocusedWindowToDisplay.") +
                            display.value(QStringLiteral("id")).toString(),
                        QJsonObject{{QStringLiteral("string"), shortcutEntry(i == 0 ? kOneKeyCode : kTwoKeyCode)}});
        const QJsonObject bounds = display.value(QStringLiteral("bounds")).toObject();
        targets.append(QRect(bounds.value(QStringLiteral("x")).toInt(), bounds.value(QStringLiteral("y")).toInt(),
                             bounds.value(QStringLiteral("width")).toInt(),
                             bounds.value(QStringLiteral("height")).toInt()));
    }
    if (!defaultsFile.open(QIODevice::WriteOnly) || defaultsFile.write(QJsonDocument(defaults).toJson()) < 0) {
        std::fputs("soak_bench: cannot store the shortcuts\n", stderr);
        return 1;
    }
    defaultsFile.close();
    if (!startProgram()) {
        std::fputs("soak_bench: the program did not come up again\n", stderr);
        return 1;
    }
    const qint64 pid = lattica.processId();
    qint64 pictureBytes = 0;
    for (const QRect& target : targets) {
        const qint64 bytes = qint64(target.width()) * target.height() * 4;
        pictureBytes = pictureBytes == 0 ? bytes : std::min(pictureBytes, bytes);
    }

    QElapsedTimer clock;
    clock.start();
    int failures = 0;
    // Panel openings: open over the bus, wait for the pictures, close with Escape, wait until they are let go.
    const bool trace = qEnvironmentVariableIsSet("SOAK_TRACE");
    auto openAndClose = [&] {
        QElapsedTimer step;
        step.start();
        if (call(QStringLiteral("OpenPanel")).type() != QDBusMessage::ReplyMessage) {
            std::fputs("soak_bench: OpenPanel was not answered\n", stderr);
            return false;
        }
        if (!waitFor([&] { return previewSegments(pid, pictureBytes) > 0; }, 10000)) {
            std::fputs("soak_bench: no pictures after an opening\n", stderr);
            return false;
        }
        // Escape reaches the panel only once it holds the keyboard, a moment after it shows: press it until
        // the panel has closed (a press after that goes to the focused window, which ignores it).
        const qint64 opened = step.elapsed();
        QElapsedTimer closing;
        closing.start();
        bool closed = false;
        while (!closed && closing.elapsed() < 10000) {
            desktop.tap({kEscape});
            closed = waitFor([&] { return previewSegments(pid, pictureBytes) == 0; }, 50);
        }
        if (trace || !closed) {
            std::fprintf(stderr, "soak_bench: pictures after %lld ms, %s after %lld ms\n",
                         static_cast<long long>(opened), closed ? "let go" : "still held",
                         static_cast<long long>(step.elapsed()));
        }
        return closed;
    };
    const int warmUp = std::min(openings, 20);
    for (int i = 0; i < warmUp; ++i) {
        failures += openAndClose() ? 0 : 1;
    }
    const Holdings openingsStart = holdings(desktop, pid, pictureBytes);
    printHoldings("openings", 0, openingsStart, clock.elapsed());
    Holdings openingsEnd = openingsStart;
    for (int i = 1; i <= openings; ++i) {
        failures += openAndClose() ? 0 : 1;
        if (i % 1000 == 0 || i == openings) {
            openingsEnd = holdings(desktop, pid, pictureBytes);
            printHoldings("openings", i, openingsEnd, clock.elapsed());
        }
    }
    const int openingFailures = failures;

    // Shortcut moves: one window, sent back and forth between the first two displays.
    TestClient client;
    const quint32 window =
        client.start() ? client.open(QStringLiteral("w"), QStringLiteral("x=200 y=200 w=640 h=400")) : 0;
    if (window == 0) {
        std::fputs("soak_bench: the test client did not open its window\n", stderr);
        return 1;
    }
    QProcess::execute(QStringLiteral("xdotool"),
                      {QStringLiteral("windowactivate"), QStringLiteral("--sync"), QString::number(window)});
    const xcb_window_t frame = desktop.frameOf(window);
    auto moveTo = [&](int index) {
        desktop.drain();
        desktop.tap({kControlL, kAltL, index == 0 ? xcb_keysym_t('1') : xcb_keysym_t('2')});
        return waitFor([&] { return desktop.frameArrived(frame, targets.at(index)); }, 5000);
    };
    int target = 1;  // the window starts on the first display
    auto moveOnce = [&] {
        const bool arrived = moveTo(target);
        target = 1 - target;
        return arrived;
    };
    for (int i = 0; i < std::min(moves, 20); ++i) {
        failures += moveOnce() ? 0 : 1;
    }
    const Holdings movesStart = holdings(desktop, pid, pictureBytes);
    printHoldings("moves", 0, movesStart, clock.elapsed());
    Holdings movesEnd = movesStart;
    for (int i = 1; i <= moves; ++i) {
        failures += moveOnce() ? 0 : 1;
        if (i % 1000 == 0 || i == moves) {
            movesEnd = holdings(desktop, pid, pictureBytes);
            printHoldings("moves", i, movesEnd, clock.elapsed());
        }
    }
    // Every move was seen arriving; the window must also be where the last one sent it.
    const bool whereExpected = moves == 0 || targets.at(1 - target).contains(desktop.geometry(frame).center());
    if (!whereExpected) {
        ++failures;
    }
    client.exit();
    lattica.terminate();
    lattica.waitForFinished(10000);
    QDBusConnection::disconnectFromBus(QStringLiteral("soak"));
    bus.terminate();
    bus.waitForFinished(5000);

    std::printf("\n%-24s %12s %12s %12s\n", "soak", "rss growth", "fd growth", "x-res growth");
    std::printf("%-24s %9lld KiB %12d %12lld\n", qPrintable(QStringLiteral("%1 panel openings").arg(openings)),
                static_cast<long long>(openingsEnd.residentKiB - openingsStart.residentKiB),
                openingsEnd.files - openingsStart.files,
                static_cast<long long>(openingsEnd.xResources - openingsStart.xResources));
    std::printf("%-24s %9lld KiB %12d %12lld\n", qPrintable(QStringLiteral("%1 shortcut moves").arg(moves)),
                static_cast<long long>(movesEnd.residentKiB - movesStart.residentKiB),
                movesEnd.files - movesStart.files, static_cast<long long>(movesEnd.xResources - movesStart.xResources));
    std::printf("failed steps: %d of the openings, %d of the moves; the window ends %s\n", openingFailures,
                failures - openingFailures, whereExpected ? "where the last move sent it" : "ELSEWHERE");
    std::printf("exit status of the program after SIGTERM: %d\n", lattica.exitCode());
    return failures == 0 ? 0 : 1;
}
