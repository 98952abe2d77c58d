// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDir>
#include <QImage>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "tests/platform/gnome/GnomeSessionProgram.h"
#include "tests/platform/gnome/RemoteDesktopInput.h"
#include "tests/platform/gnome/ShellScreenshot.h"
#include "tests/support/VirtualDesktop.h"

namespace {

// The Shell's top bar on the primary monitor (the first of the session's layout), a little taller.
constexpr int kTopBarHeight = 40;

// The status notifier items the AppIndicator extension hosts, as "bus name@object path".
QStringList registeredItems() {
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("/StatusNotifierWatcher"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    message.setArguments(
        {QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("RegisteredStatusNotifierItems")});
    const QDBusMessage reply = QDBusConnection::sessionBus().call(message, QDBus::Block, 5000);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        return {};
    }
    return reply.arguments().constFirst().value<QDBusVariant>().variant().toStringList();
}

// The item registered by the process, if any.
QString itemOfProcess(qint64 pid) {
    QDBusConnectionInterface* bus = QDBusConnection::sessionBus().interface();
    for (const QString& item : registeredItems()) {
        const QString service = item.section(QLatin1Char('@'), 0, 0);
        if (bus->servicePid(service).value() == static_cast<uint>(pid)) {
            return item;
        }
    }
    return {};
}

// The place of an item added to the top bar, from pictures of the bar before and after. The bar's right
// side is filled from the right: the new item's right edge is the rightmost change, and items left of it
// moved left by its width. Changes less than a gap apart are one item (an icon has gaps of its own).
QRect newestItem(const QImage& before, const QImage& after) {
    constexpr int kGapBetweenItems = 6;
    if (before.size() != after.size()) {
        return {};
    }
    auto columnChanged = [&](int x, QRect* rows) {
        bool changed = false;
        for (int y = 0; y < before.height(); ++y) {
            if (before.pixel(x, y) != after.pixel(x, y)) {
                changed = true;
                *rows |= QRect(x, y, 1, 1);
            }
        }
        return changed;
    };
    QRect item;
    int gap = 0;
    // Right of the middle only, where the clock may change meanwhile.
    for (int x = before.width() - 1; x >= before.width() * 3 / 5 && gap <= kGapBetweenItems; --x) {
        if (columnChanged(x, &item)) {
            gap = 0;
        } else if (!item.isEmpty()) {
            ++gap;
        }
    }
    return item;
}

class GnomeTrayTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (qEnvironmentVariableIsEmpty("LATTICA_GNOME_LAYOUT")) {
            if (QStandardPaths::findExecutable(QStringLiteral("gnome-shell")).isEmpty()) {
                GTEST_SKIP() << "gnome-shell is not installed (scripts/install-deps.sh installs it)";
            }
            FAIL() << "run this test inside scripts/virtual-gnome.sh run --tray -- (ctest does)";
        }
    }

    QTemporaryDir m_config;
    GnomeSessionProgram m_lattica{m_config.path()};
};

// The AppIndicator extension (Debian's gnome-shell-extension-appindicator) hosts the icon in the top bar.
// It counts the presses and releases that reach the icon: the second activates the item, unless the
// first press has opened the item's menu (once the menu is loaded, a click shows Settings and Quit).
// A double click activates the item either way.
TEST_F(GnomeTrayTest, TheIconSitsInTheTopBarAndADoubleClickOnItOpensThePanel) {
    // A remote desktop session adds the Shell's "screen is shared" item to the top bar: it starts first.
    RemoteDesktopInput input;
    ASSERT_TRUE(input.start()) << input.error().toStdString();
    ShellScreenshot screenshot;
    const int primaryWidth = qEnvironmentVariable("LATTICA_GNOME_LAYOUT")
                                 .section(QLatin1Char(','), 0, 0)
                                 .section(QLatin1Char('x'), 0, 0)
                                 .toInt();
    const QRect topBar(0, 0, primaryWidth, kTopBarHeight);
    const QImage bare = screenshot.area(topBar);
    ASSERT_FALSE(bare.isNull()) << screenshot.error().toStdString();

    ASSERT_TRUE(m_lattica.start());
    QString item;
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        item = itemOfProcess(m_lattica.processId());
        return !item.isEmpty() || !m_lattica.isRunning();
    }));
    ASSERT_FALSE(item.isEmpty()) << m_lattica.output().toStdString();
    EXPECT_FALSE(m_lattica.output().contains(QLatin1String("no system tray is available")))
        << m_lattica.output().toStdString();

    // The icon is where the top bar changed once the item was shown.
    QRect icon;
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        icon = newestItem(bare, screenshot.area(topBar));
        return !icon.isEmpty();
    })) << screenshot.error().toStdString();
    EXPECT_LE(icon.width(), 3 * kTopBarHeight) << icon.width() << "x" << icon.height();

    ASSERT_TRUE(input.movePointerTo(icon.center())) << input.error().toStdString();
    ASSERT_TRUE(input.click()) << input.error().toStdString();
    ASSERT_TRUE(input.click()) << input.error().toStdString();
    EXPECT_TRUE(m_lattica.waitForOutput(QStringLiteral("shown at"))) << m_lattica.output().toStdString();

    // The top bar around the icon as it is now, for a look.
    const QString saved = QDir::current().filePath(QStringLiteral("gnome-tray-icon.png"));
    screenshot.area(topBar)
        .copy(icon.adjusted(-60, -20, 60, 20).intersected(QRect(QPoint(), topBar.size())))
        .save(saved);
    std::printf("[ picture ] the icon in the top bar, at %d,%d %dx%d: %s\n", icon.x(), icon.y(), icon.width(),
                icon.height(), qPrintable(saved));
}

}  // namespace
