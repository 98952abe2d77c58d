// SPDX-License-Identifier: MIT
// Who owns a window on a server without X-Resource, where the server cannot name a window's client: a
// window's _NET_WM_PID counts only when that process holds a connection to the server.
#include <unistd.h>

#include <xcb/res.h>
#include <QProcess>

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11DisplayClients.h"
#include "platform/x11/X11WindowOwners.h"
#include "tests/platform/x11/X11DesktopFixture.h"

namespace {

class X11OwnersWithoutXResourceTest : public X11DesktopFixture {
protected:
    void SetUp() override {
        X11DesktopFixture::SetUp();
        const xcb_query_extension_reply_t* resource = xcb_get_extension_data(xcb(), &xcb_res_id);
        ASSERT_TRUE(resource == nullptr || !resource->present) << "this test needs a server without X-Resource";
        // A live local process with no connection to the server, as a pid from a PID namespace can name.
        bystander.start(QStringLiteral("sleep"), {QStringLiteral("600")});
        ASSERT_TRUE(bystander.waitForStarted());
    }
    void TearDown() override {
        bystander.kill();
        bystander.waitForFinished();
        X11DesktopFixture::TearDown();
    }
    int connectionFd() { return xcb_get_file_descriptor(xcb()); }

    QProcess bystander;
};

TEST_F(X11OwnersWithoutXResourceTest, ProcessesConnectedToTheServerAreFoundAndOthersAreNot) {
    X11DisplayClients clients(connectionFd());
    EXPECT_TRUE(clients.holdsConnection(getpid()));
    EXPECT_TRUE(clients.holdsConnection(static_cast<pid_t>(client.pid())));
    EXPECT_FALSE(clients.holdsConnection(static_cast<pid_t>(bystander.processId())));
    EXPECT_FALSE(clients.holdsConnection(0));
}

TEST_F(X11OwnersWithoutXResourceTest, ServerSocketIsNamedWithoutTheAbstractPrefix) {
    const std::optional<QByteArray> name = X11DisplayClients::serverSocketName(connectionFd());
    ASSERT_TRUE(name.has_value());
    EXPECT_TRUE(name->startsWith("/tmp/.X11-unix/X")) << name->constData();
}

TEST_F(X11OwnersWithoutXResourceTest, NetWmPidOfTheClientItselfNamesTheOwner) {
    const quint32 window = client.open(QStringLiteral("honest"), placement(0, 100, 100, 300, 200));
    ASSERT_NE(window, 0u);
    const auto entry = entryFor(window);
    ASSERT_TRUE(entry.has_value());
    EXPECT_EQ(entry->pid, client.pid());
}

TEST_F(X11OwnersWithoutXResourceTest, NetWmPidOfALiveProcessWithoutAConnectionDoesNotNameTheOwner) {
    const QString pid = QString::number(bystander.processId());
    const quint32 first =
        client.open(QStringLiteral("contained1"), placement(0, 100, 100, 300, 200) + QStringLiteral(" pid=") + pid);
    const quint32 second =
        client.open(QStringLiteral("contained2"), placement(0, 500, 100, 300, 200) + QStringLiteral(" pid=") + pid);
    ASSERT_NE(first, 0u);
    ASSERT_NE(second, 0u);
    const auto firstEntry = entryFor(first);
    const auto secondEntry = entryFor(second);
    ASSERT_TRUE(firstEntry.has_value() && firstEntry->pid.has_value());
    ASSERT_TRUE(secondEntry.has_value());
    EXPECT_NE(*firstEntry->pid, bystander.processId());
    // Both windows come from one client connection, so they still have one owner.
    EXPECT_TRUE(X11WindowOwners::isConnection(static_cast<pid_t>(*firstEntry->pid)));
    EXPECT_EQ(firstEntry->pid, secondEntry->pid);
}

}  // namespace
