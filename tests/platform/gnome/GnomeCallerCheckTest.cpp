// SPDX-License-Identifier: MIT
#include <QDBusConnection>
#include <QDBusMessage>

#include "platform/gnome/GnomeShellBridge.h"
#include "tests/platform/gnome/GnomeSessionFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

using GnomeCallerCheckTest = GnomeSessionFixture;

QDBusMessage askForWindows(const QDBusConnection& bus) {
    const QDBusMessage message =
        QDBusMessage::createMethodCall(QStringLiteral("org.gnome.Shell"), QStringLiteral("/app/lattica/Shell"),
                                       QStringLiteral("app.lattica.Shell"), QStringLiteral("Windows"));
    return bus.call(message, QDBus::Block, 5000);
}

TEST_F(GnomeCallerCheckTest, OnlyTheOwnerOfLatticasBusNameIsAnswered) {
    // This process owns the name (the fixture took it): it is answered.
    EXPECT_EQ(askForWindows(QDBusConnection::sessionBus()).type(), QDBusMessage::ReplyMessage);

    // Another connection of the same process is another caller on the bus.
    const QString name = QStringLiteral("foreign-caller");
    {
        const QDBusConnection foreign = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
        ASSERT_TRUE(foreign.isConnected());
        const QDBusMessage refused = askForWindows(foreign);
        EXPECT_EQ(refused.type(), QDBusMessage::ErrorMessage);
        EXPECT_EQ(refused.errorName(), QStringLiteral("org.freedesktop.DBus.Error.AccessDenied"));
        // Its accelerators and pictures are refused too; only the ping answers anyone.
        GnomeShellBridge foreignBridge(foreign);
        EXPECT_TRUE(foreignBridge.ping());
        EXPECT_EQ(foreignBridge.grabAccelerator(QStringLiteral("<Control><Alt>0x0b")), 0U);
        EXPECT_FALSE(foreignBridge.captureMonitor(0));
        EXPECT_FALSE(foreignBridge.windows());
    }
    QDBusConnection::disconnectFromBus(name);

    // Once this process gives the name up, it is refused as well.
    ASSERT_TRUE(QDBusConnection::sessionBus().unregisterService(QStringLiteral("app.lattica.Lattica")));
    EXPECT_TRUE(VirtualDesktop::waitUntil(
        [] { return askForWindows(QDBusConnection::sessionBus()).type() == QDBusMessage::ErrorMessage; }));
}

}  // namespace
