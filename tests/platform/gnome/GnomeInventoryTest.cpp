// SPDX-License-Identifier: MIT
#include <QDBusConnection>
#include <QDBusMessage>

#include "platform/Monitors.h"
#include "platform/Platform.h"
#include "platform/RunningApplications.h"
#include "platform/SessionCheck.h"
#include "platform/WindowControl.h"
#include "platform/WindowList.h"
#include "tests/platform/gnome/GnomeSessionFixture.h"

namespace {

using GnomeInventoryTest = GnomeSessionFixture;

TEST_F(GnomeInventoryTest, MonitorsAreTheVirtualOnesNamedAfterTheirConnectors) {
    const QList<Monitor> monitors = Platform::services().monitors->monitors();
    const QList<QRect> expected = layout();
    ASSERT_EQ(monitors.size(), expected.size());
    EXPECT_TRUE(monitors.constFirst().primary);
    for (const QRect& rect : expected) {
        const auto found = std::find_if(monitors.cbegin(), monitors.cend(),
                                        [&](const Monitor& m) { return m.bounds == QRectF(rect); });
        ASSERT_NE(found, monitors.cend()) << rect.width() << "x" << rect.height();
        // Mutter names its virtual monitors' connectors Meta-0, Meta-1, ...
        EXPECT_TRUE(found->name.startsWith(QLatin1String("Meta-"))) << found->name.toStdString();
        EXPECT_NE(found->id, 0U);
    }
    EXPECT_NE(monitors.at(0).id, monitors.at(1).id);
}

TEST_F(GnomeInventoryTest, WindowsAreListedFrontToBackWithTheirOwner) {
    ASSERT_TRUE(wayland.open(QStringLiteral("back"), QStringLiteral("title=back-window w=300 h=200")));
    ASSERT_TRUE(waitForWindow(QStringLiteral("back-window")));
    ASSERT_TRUE(wayland.open(QStringLiteral("front"), QStringLiteral("title=front-window w=320 h=240")));
    const auto front = waitForWindow(QStringLiteral("front-window"));
    ASSERT_TRUE(front);
    EXPECT_EQ(front->pid, wayland.pid());
    // Qt draws its own decorations on GNOME: the frame holds them around the 320x240 contents.
    EXPECT_GE(front->frame.width(), 320);
    EXPECT_GE(front->frame.height(), 240);
    EXPECT_EQ(front->layer, 0);
    EXPECT_TRUE(front->onScreen);

    const QList<WindowEntry> entries = *Platform::services().windowList->windows(DesktopWindows::Exclude);
    const auto indexOf = [&](const QString& title) {
        return std::find_if(entries.cbegin(), entries.cend(), [&](const WindowEntry& e) { return e.title == title; }) -
               entries.cbegin();
    };
    EXPECT_LT(indexOf(QStringLiteral("front-window")), indexOf(QStringLiteral("back-window")));

    // An activated window has the focus, and its process is the frontmost application.
    ASSERT_EQ(Platform::services().windowControl->activate(front->id), Result::Ok);
    const Reading<WindowId> focused = Platform::services().windowControl->focusedWindow();
    ASSERT_EQ(focused.result, Result::Ok);
    EXPECT_EQ(*focused.value, front->id);
    const auto frontmost = Platform::services().runningApplications->frontmostApplication();
    ASSERT_TRUE(frontmost);
    EXPECT_EQ(frontmost->pid, wayland.pid());
    EXPECT_EQ(frontmost->policy, ApplicationPolicy::Regular);
    const Reading<QList<WindowId>> own =
        Platform::services().windowControl->windows(static_cast<pid_t>(wayland.pid()), WindowScope::Visible);
    ASSERT_EQ(own.result, Result::Ok);
    EXPECT_EQ(own.value->size(), 2);
    // The inventory tells the same of the owner as the window control, from one question to the Shell.
    const std::optional<WindowInventory> inventory =
        Platform::services().windowList->inventory(DesktopWindows::Exclude);
    ASSERT_TRUE(inventory);
    const auto pid = static_cast<pid_t>(wayland.pid());
    ASSERT_TRUE(inventory->applications.contains(pid));
    const ApplicationWindowRoles owned = inventory->applications.value(pid);
    EXPECT_EQ(owned.lists.visible, own);
    EXPECT_EQ(owned.lists.includingMinimised,
              Platform::services().windowControl->windows(pid, WindowScope::IncludingMinimised));
    for (WindowId window : *own.value) {
        EXPECT_EQ(owned.roles.value(window), Platform::services().windowControl->role(window)) << window;
        EXPECT_EQ(owned.roles.value(window), (Reading<WindowRole>{Result::Ok, WindowRole::Window})) << window;
    }
}

TEST_F(GnomeInventoryTest, TheSessionCheckSaysWindowsCanBeMovedAndCaptured) {
    EXPECT_EQ(Platform::services().sessionCheck->windowControl().availability, Availability::Available);
    const CapabilityCheck capture = Platform::services().sessionCheck->screenCapture();
    EXPECT_EQ(capture.availability, Availability::Available) << capture.explanation.toStdString();
}

TEST_F(GnomeInventoryTest, AnotherProgramOnTheBusIsRefused) {
    QDBusConnection foreign = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("foreign"));
    ASSERT_TRUE(foreign.isConnected());
    const QDBusMessage call =
        QDBusMessage::createMethodCall(QStringLiteral("org.gnome.Shell"), QStringLiteral("/app/lattica/Shell"),
                                       QStringLiteral("app.lattica.Shell"), QStringLiteral("Windows"));
    const QDBusMessage refused = foreign.call(call, QDBus::Block, 3000);
    EXPECT_EQ(refused.type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(refused.errorName(), QStringLiteral("org.freedesktop.DBus.Error.AccessDenied"));
    // The same call from the owner of Lattica's name is answered.
    const QDBusMessage answered = QDBusConnection::sessionBus().call(call, QDBus::Block, 3000);
    EXPECT_EQ(answered.type(), QDBusMessage::ReplyMessage) << answered.errorMessage().toStdString();
    QDBusConnection::disconnectFromBus(QStringLiteral("foreign"));
}

}  // namespace
