// SPDX-License-Identifier: MIT
#include <signal.h>
#include <xcb/xcb.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QUuid>
#include <cstdlib>

#include "tests/support/VirtualDesktop.h"
#include "tests/support/XcbProbe.h"

namespace {

// A generous bound for start-up to give up on a display; the program's own limit is well below it.
constexpr int kGiveUpWithinMs = 30000;

struct Outcome {
    bool finished = false;
    QProcess::ExitStatus status = QProcess::CrashExit;
    int code = -1;
    QStringList errorLines;
};

// Runs the program with the given DISPLAY until it ends (or kills it after kGiveUpWithinMs).
Outcome runWithDisplay(const QString& display) {
    QTemporaryDir config;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), display);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), config.path());
    environment.insert(QStringLiteral("LATTICA_APPCAST_URL"), QStringLiteral("http://127.0.0.1:9/appcast.xml"));
    QProcess lattica;
    lattica.setProcessEnvironment(environment);
    lattica.setProcessChannelMode(QProcess::SeparateChannels);
    lattica.start(QStringLiteral(LATTICA_BINARY), {});
    Outcome outcome;
    if (!lattica.waitForStarted(5000)) {
        return outcome;
    }
    outcome.finished = lattica.waitForFinished(kGiveUpWithinMs);
    if (!outcome.finished) {
        lattica.kill();
        lattica.waitForFinished();
    }
    outcome.status = lattica.exitStatus();
    outcome.code = lattica.exitCode();
    const QString errors = QString::fromUtf8(lattica.readAllStandardError());
    for (const QString& line : errors.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        // The toolkit's own note about the runtime folder is not about the display.
        if (!line.startsWith(QLatin1String("QStandardPaths:"))) {
            outcome.errorLines.append(line);
        }
    }
    return outcome;
}

void expectCleanRefusal(const Outcome& outcome, const QString& display) {
    ASSERT_TRUE(outcome.finished) << "start-up did not give up on " << qPrintable(display);
    EXPECT_EQ(outcome.status, QProcess::NormalExit) << "the program crashed";
    EXPECT_EQ(outcome.code, 1);
    ASSERT_EQ(outcome.errorLines.size(), 1) << qPrintable(outcome.errorLines.join(QLatin1Char('\n')));
    EXPECT_TRUE(outcome.errorLines.first().startsWith(QLatin1String("Lattica: ")));
    EXPECT_TRUE(outcome.errorLines.first().contains(display)) << qPrintable(outcome.errorLines.first());
}

// A display number that no server on this machine uses.
QString unusedDisplay() {
    for (int number = 4000; number < 5000; ++number) {
        if (!QFile::exists(QStringLiteral("/tmp/.X%1-lock").arg(number)) &&
            !QFile::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(number))) {
            return QStringLiteral(":%1").arg(number);
        }
    }
    return {};
}

TEST(StartupEnvironmentDesktopTest, DisplayWithoutServerEndsWithStatusOneAndOneLine) {
    const QString display = unusedDisplay();
    ASSERT_FALSE(display.isEmpty());
    expectCleanRefusal(runWithDisplay(display), display);
}

TEST(StartupEnvironmentDesktopTest, MalformedDisplayNameEndsWithStatusOneAndOneLine) {
    const QString display = QStringLiteral("no display here");
    expectCleanRefusal(runWithDisplay(display), display);
}

TEST(StartupEnvironmentDesktopTest, ServerThatNeverAnswersEndsStartupWithStatusOne) {
    // A listening socket on an X port: the connection is accepted by the system, nothing ever answers.
    QTcpServer silent;
    int number = 0;
    for (number = 400; number < 1000 && !silent.listen(QHostAddress::LocalHost, quint16(6000 + number)); ++number) {
    }
    ASSERT_TRUE(silent.isListening());
    const QString display = QStringLiteral("127.0.0.1:%1").arg(number);
    expectCleanRefusal(runWithDisplay(display), display);
}

// --- Start-up without a session bus -------------------------------------------------------------

QByteArray windowClass(xcb_connection_t* connection, xcb_window_t window) {
    xcb_get_property_reply_t* reply = xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 256), nullptr);
    QByteArray value;
    if (reply != nullptr) {
        value =
            QByteArray(static_cast<const char*>(xcb_get_property_value(reply)), xcb_get_property_value_length(reply));
    }
    std::free(reply);
    return value;
}

qint64 windowPid(xcb_connection_t* connection, xcb_window_t window) {
    xcb_get_property_reply_t* reply = xcb_get_property_reply(
        connection,
        xcb_get_property(connection, 0, window, XcbProbe::atom(connection, "_NET_WM_PID"), XCB_ATOM_CARDINAL, 0, 1),
        nullptr);
    qint64 pid = -1;
    if (reply != nullptr && xcb_get_property_value_length(reply) == 4) {
        pid = *static_cast<const uint32_t*>(xcb_get_property_value(reply));
    }
    std::free(reply);
    return pid;
}

bool viewable(xcb_connection_t* connection, xcb_window_t window) {
    xcb_get_window_attributes_reply_t* reply =
        xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, window), nullptr);
    const bool result = reply != nullptr && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    std::free(reply);
    return result;
}

QList<xcb_window_t> children(xcb_connection_t* connection, xcb_window_t window) {
    xcb_query_tree_reply_t* reply = xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr);
    QList<xcb_window_t> result;
    if (reply != nullptr) {
        const xcb_window_t* list = xcb_query_tree_children(reply);
        result = QList<xcb_window_t>(list, list + xcb_query_tree_children_length(reply));
    }
    std::free(reply);
    return result;
}

// Whether a window of the given process is shown inside the tray host's panel.
bool trayHoldsWindowOf(xcb_connection_t* connection, xcb_window_t window, qint64 pid, bool insideTray) {
    if (insideTray && windowPid(connection, window) == pid && viewable(connection, window)) {
        return true;
    }
    const bool isTray = insideTray || windowClass(connection, window) == QByteArray("panel\0trayer\0", 13);
    for (xcb_window_t child : children(connection, window)) {
        if (trayHoldsWindowOf(connection, child, pid, isTray)) {
            return true;
        }
    }
    return false;
}

// The bus programs (dbus-launch, dbus-daemon) whose environment carries the given entry.
QList<qint64> busProcessesWith(const QByteArray& entry) {
    QList<qint64> found;
    for (const QString& name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        bool isPid = false;
        const qint64 pid = name.toLongLong(&isPid);
        if (!isPid) {
            continue;
        }
        QFile command(QStringLiteral("/proc/%1/comm").arg(pid));
        if (!command.open(QIODevice::ReadOnly) || !command.readAll().startsWith("dbus-")) {
            continue;
        }
        QFile environment(QStringLiteral("/proc/%1/environ").arg(pid));
        if (environment.open(QIODevice::ReadOnly) && environment.readAll().split('\0').contains(entry)) {
            found.append(pid);
        }
    }
    return found;
}

TEST(StartupEnvironmentDesktopTest, WithoutSessionBusStartupEmbedsInTheTrayAndStartsNoBus) {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    ASSERT_EQ(xcb_connection_has_error(connection), 0);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;

    QTemporaryDir config;
    QTemporaryDir runtime;  // an empty runtime folder: no per-user bus socket
    const QByteArray marker = "LATTICA_TEST_RUN=" + QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), config.path());
    environment.insert(QStringLiteral("LATTICA_APPCAST_URL"), QStringLiteral("http://127.0.0.1:9/appcast.xml"));
    environment.insert(QString::fromLatin1(marker.split('=').first()), QString::fromLatin1(marker.split('=').last()));
    QProcess lattica;
    lattica.setProcessEnvironment(environment);
    lattica.setProcessChannelMode(QProcess::ForwardedChannels);
    lattica.start(QStringLiteral(LATTICA_BINARY), {});
    ASSERT_TRUE(lattica.waitForStarted(5000));

    const bool embedded = VirtualDesktop::waitUntil(
        [&] { return trayHoldsWindowOf(connection, root, lattica.processId(), false); }, 20000);
    // Whatever the program started on its own carries its environment, and so the marker.
    const QList<qint64> buses = busProcessesWith(marker);
    lattica.terminate();
    const bool ended = lattica.waitForFinished(10000);
    for (qint64 pid : busProcessesWith(marker)) {
        ::kill(pid_t(pid), SIGKILL);  // leave no daemon behind, whatever the outcome
    }
    xcb_disconnect(connection);

    EXPECT_TRUE(embedded) << "the tray icon was not embedded";
    EXPECT_TRUE(buses.isEmpty()) << "bus programs started: " << buses.size();
    ASSERT_TRUE(ended);
    EXPECT_EQ(lattica.exitCode(), 0);
}

}  // namespace
