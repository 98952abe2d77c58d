// SPDX-License-Identifier: MIT
// Who owns a window: the process behind its client connection, whatever the window says about itself.
#include <unistd.h>

#include <QSet>
#include <QTemporaryDir>

#include "app/displays/ScreenSnapshotService.h"
#include "app/mover/WindowMover.h"
#include "platform/Platform.h"
#include "platform/RunningApplications.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11WindowDesktopEntries.h"
#include "platform/x11/X11WindowKinds.h"
#include "platform/x11/X11WindowOwners.h"
#include "tests/platform/x11/X11DesktopFixture.h"

namespace {

// A pid no process can have on Linux (they stay below 2^22).
const QString kNoSuchProcess = QStringLiteral("2147483000");

class X11WindowOwnersDesktopTest : public X11DesktopFixture {
protected:
    std::optional<RunningApplication> application(qint64 pid) {
        for (const RunningApplication& app : Platform::services().runningApplications->runningApplications()) {
            if (app.pid == pid) {
                return app;
            }
        }
        return std::nullopt;
    }
    qsizetype qualifyingWindowsOf(qint64 pid) {
        qsizetype count = 0;
        for (const QualifiedWindow& window : ScreenSnapshotService::qualifyingWindows()) {
            count += window.ownerPID == pid ? 1 : 0;
        }
        return count;
    }
};

TEST_F(X11WindowOwnersDesktopTest, AFalsePidDoesNotNameTheOwner) {
    // pid 1 is a live process, but not the one that made the window (as from inside a PID namespace).
    const quint32 window =
        client.open(QStringLiteral("liar"), placement(0, 100, 100, 300, 200) + QStringLiteral(" pid=1"));
    ASSERT_NE(window, 0u);
    const auto entry = entryFor(window);
    ASSERT_TRUE(entry.has_value());
    EXPECT_EQ(entry->pid, client.pid());
    EXPECT_TRUE(application(client.pid()).has_value());
    EXPECT_FALSE(application(1).has_value());
}

TEST_F(X11WindowOwnersDesktopTest, WindowsWhosePidNamesNoProcessAreCountedAndMoved) {
    const QList<QRect> places = {QRect(100, 100, 400, 300), QRect(700, 400, 500, 300)};
    QList<quint32> windows;
    for (int i = 0; i < places.size(); ++i) {
        const QRect& p = places[i];
        windows.append(
            client.open(QStringLiteral("remote%1").arg(i),
                        placement(0, p.x(), p.y(), p.width(), p.height()) + QStringLiteral(" pid=") + kNoSuchProcess));
        ASSERT_NE(windows.last(), 0u);
    }
    const auto entry = entryFor(windows[0]);
    ASSERT_TRUE(entry.has_value());
    ASSERT_TRUE(entry->pid.has_value());
    const qint64 owner = *entry->pid;
    EXPECT_EQ(entryFor(windows[1])->pid, owner);
    const auto app = application(owner);
    ASSERT_TRUE(app.has_value());
    EXPECT_FALSE(app->terminated);
    EXPECT_EQ(qualifyingWindowsOf(owner), 2);

    const WindowMoveResult result = WindowMover::moveWindows(display(0), display(1), false, std::nullopt, false).counts;
    EXPECT_EQ(result, (WindowMoveResult{2, 2}));
    const QRect target = monitors().value(1);
    for (quint32 window : windows) {
        EXPECT_TRUE(target.contains(frameFromTree(window).center())) << "window " << window << " stayed behind";
    }
}

TEST_F(X11WindowOwnersDesktopTest, ClientConnectionsWithoutALocalProcessAreOwnersNamedByTheirClass) {
    X11Connection& connection = platform->connection();
    const uint32_t mask = xcb_get_setup(connection.xcb())->resource_id_mask;
    const xcb_atom_t normal = connection.atom("_NET_WM_WINDOW_TYPE_NORMAL");
    // Two windows of one remote client, one of another, and one of a local process.
    const uint32_t firstClient = (mask + 1) * 7;
    const uint32_t secondClient = (mask + 1) * 9;
    X11WindowOwners::PidSources remote;
    remote.netWmPid = static_cast<pid_t>(kNoSuchProcess.toInt());
    remote.serverNamesClients = true;
    X11WindowOwners::PidSources local;
    local.clientPid = getpid();
    local.serverNamesClients = true;
    auto window = [&](xcb_window_t id, const X11WindowOwners::PidSources& sources, const QByteArray& className) {
        X11WindowFacts facts;
        facts.window = id;
        facts.managed = true;
        facts.types = {normal};
        facts.pid = X11WindowOwners::ownerOf(id, sources, mask);
        facts.classInstance = className.toLower();
        facts.className = className;
        return facts;
    };
    X11WindowTable table;
    table.windows = {window(firstClient + 1, remote, "RemoteEditor"), window(firstClient + 2, remote, "RemoteEditor"),
                     window(secondClient + 1, remote, "RemoteTerm"), window(0x300001, local, "LocalApp")};
    ASSERT_TRUE(table.windows[0].pid.has_value());
    EXPECT_EQ(table.windows[0].pid, table.windows[1].pid);
    EXPECT_NE(table.windows[0].pid, table.windows[2].pid);
    EXPECT_TRUE(X11WindowOwners::isConnection(*table.windows[0].pid));
    EXPECT_FALSE(X11WindowOwners::isConnection(getpid()));

    QTemporaryDir noEntries;
    X11WindowDesktopEntries entries({noEntries.path()});
    const X11WindowKinds kinds(connection);
    const QList<X11WindowOwner> owners = X11WindowOwners::fromTable(table, kinds, entries);
    ASSERT_EQ(owners.size(), 3);
    // The local process first, then the connections.
    EXPECT_EQ(owners[0].pid, getpid());
    EXPECT_EQ(owners[1].pid, *table.windows[0].pid);
    EXPECT_EQ(owners[1].localizedName, QStringLiteral("RemoteEditor"));
    EXPECT_FALSE(owners[1].terminated);
    EXPECT_EQ(owners[1].policy, ApplicationPolicy::Regular);
    EXPECT_EQ(owners[2].pid, *table.windows[2].pid);
    EXPECT_EQ(owners[2].localizedName, QStringLiteral("RemoteTerm"));
    EXPECT_FALSE(owners[2].terminated);
}

}  // namespace
