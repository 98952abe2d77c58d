// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDir>
#include <QImage>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <memory>

#include "tests/platform/gnome/GnomeSessionProgram.h"
#include "tests/platform/gnome/InputBarrier.h"
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

// A property of the item's org.kde.StatusNotifierItem interface, as the host reads it.
QVariant itemProperty(const QString& item, const QString& property) {
    const QString service = item.section(QLatin1Char('@'), 0, 0);
    const QString path =
        item.contains(QLatin1Char('@')) ? item.section(QLatin1Char('@'), 1) : QStringLiteral("/StatusNotifierItem");
    QDBusMessage message = QDBusMessage::createMethodCall(
        service, path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    message.setArguments({QStringLiteral("org.kde.StatusNotifierItem"), property});
    const QDBusMessage reply = QDBusConnection::sessionBus().call(message, QDBus::Block, 5000);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        return {};
    }
    return reply.arguments().constFirst().value<QDBusVariant>().variant();
}

// The sizes of the pictures in an IconPixmap property (an array of width, height and ARGB bytes), those
// whose bytes fill them.
QList<QSize> pixmapSizes(const QVariant& iconPixmap) {
    QList<QSize> sizes;
    if (!iconPixmap.canConvert<QDBusArgument>()) {
        return sizes;
    }
    const auto argument = iconPixmap.value<QDBusArgument>();
    argument.beginArray();
    while (!argument.atEnd()) {
        int width = 0;
        int height = 0;
        QByteArray bytes;
        argument.beginStructure();
        argument >> width >> height >> bytes;
        argument.endStructure();
        if (width > 0 && height > 0 && bytes.size() == qsizetype(width) * height * 4) {
            sizes.append(QSize(width, height));
        }
    }
    argument.endArray();
    return sizes;
}

// The item's menu as com.canonical.dbusmenu publishes it: each entry's id and label, in the order shown,
// separators and hidden entries left out.
struct MenuEntry {
    int id = 0;
    QString label;
};

QList<MenuEntry> menuEntries(const QString& item) {
    const QString service = item.section(QLatin1Char('@'), 0, 0);
    const QString menuPath = itemProperty(item, QStringLiteral("Menu")).value<QDBusObjectPath>().path();
    QDBusMessage message = QDBusMessage::createMethodCall(service, menuPath, QStringLiteral("com.canonical.dbusmenu"),
                                                          QStringLiteral("GetLayout"));
    message.setArguments({0, 1, QStringList()});
    const QDBusMessage reply = QDBusConnection::sessionBus().call(message, QDBus::Block, 5000);
    QList<MenuEntry> entries;
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() < 2) {
        return entries;
    }
    // The root: (id, properties, children), each child a variant holding the same structure.
    const auto root = reply.arguments().at(1).value<QDBusArgument>();
    int rootId = 0;
    QVariantMap rootProperties;
    root.beginStructure();
    root >> rootId >> rootProperties;
    root.beginArray();
    while (!root.atEnd()) {
        QDBusVariant child;
        root >> child;
        const auto entry = child.variant().value<QDBusArgument>();
        MenuEntry read;
        QVariantMap properties;
        entry.beginStructure();
        entry >> read.id >> properties;
        entry.endStructure();
        read.label = properties.value(QStringLiteral("label")).toString();
        if (properties.value(QStringLiteral("type")).toString() != QLatin1String("separator") &&
            properties.value(QStringLiteral("visible"), true).toBool()) {
            entries.append(read);
        }
    }
    root.endArray();
    root.endStructure();
    return entries;
}

// The part of a picture that differs from another of the same size.
QRect changedArea(const QImage& before, const QImage& after) {
    QRect changed;
    if (before.size() != after.size()) {
        return changed;
    }
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x) {
            if (before.pixel(x, y) != after.pixel(x, y)) {
                changed |= QRect(x, y, 1, 1);
            }
        }
    }
    return changed;
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
        if (!s_input) {
            ASSERT_NO_FATAL_FAILURE(startInput());
        }
        // The icon of a previous test's program leaves the top bar once the host has seen it go.
        ASSERT_TRUE(VirtualDesktop::waitUntil([] { return registeredItems().isEmpty(); }));
        ShellScreenshot screenshot;
        settled(screenshot, QRect(0, 0, primaryWidth(), kTopBarHeight));
    }

    static void TearDownTestSuite() { s_input.reset(); }

    // One remote desktop session for all the tests, started before any program: it adds the Shell's
    // "screen is shared" item to the top bar, and its keyboard is made with its first key, which reaches
    // no window. Both are done with before a test takes its first picture of the top bar or starts the
    // program, so the bar stays as it is and the program has the keyboard from its start.
    static void startInput() {
        ShellScreenshot screenshot;
        const QRect topBar(0, 0, primaryWidth(), kTopBarHeight);
        const QImage before = screenshot.area(topBar);
        ASSERT_FALSE(before.isNull()) << screenshot.error().toStdString();
        auto input = std::make_unique<RemoteDesktopInput>();
        ASSERT_TRUE(input->start()) << input->error().toStdString();
        InputBarrier barrier;
        ASSERT_TRUE(barrier.afterHandled([&] {
            return input->send(RemoteDesktopInput::kEvdevLeftShift, true) &&
                   input->send(RemoteDesktopInput::kEvdevLeftShift, false);
        })) << input->error().toStdString();
        EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return screenshot.area(topBar) != before; }))
            << "the top bar shows no item for the remote desktop session";
        settled(screenshot, topBar);
        s_input = std::move(input);
    }

    static RemoteDesktopInput& input() { return *s_input; }

    // Starts the program and waits until it has registered its item.
    QString startAndWaitForItem() {
        if (!m_lattica.start()) {
            return {};
        }
        QString item;
        VirtualDesktop::waitUntil([&] {
            item = itemOfProcess(m_lattica.processId());
            return !item.isEmpty() || !m_lattica.isRunning();
        });
        return item;
    }

    // A picture of the area once it has stopped changing (an opening or closing menu is animated).
    static QImage settled(ShellScreenshot& screenshot, const QRect& area) {
        QImage previous = screenshot.area(area);
        QImage current;
        VirtualDesktop::waitUntil([&] {
            current = screenshot.area(area);
            const bool same = !current.isNull() && current == previous;
            previous = current;
            return same;
        });
        return current;
    }

    // The session's monitors from its layout ("1920x1080,1280x720"), left to right; the first is primary.
    static QList<QRect> monitors() {
        QList<QRect> monitors;
        int x = 0;
        for (const QString& part :
             qEnvironmentVariable("LATTICA_GNOME_LAYOUT").split(QLatin1Char(','), Qt::SkipEmptyParts)) {
            const QSize size(part.section(QLatin1Char('x'), 0, 0).toInt(),
                             part.section(QLatin1Char('x'), 1, 1).toInt());
            monitors.append(QRect(QPoint(x, 0), size));
            x += size.width();
        }
        return monitors;
    }
    static int primaryWidth() { return monitors().value(0).width(); }

    // Where the program's icon showed in the top bar, from a picture of the bar taken before it started.
    // The host fades a new icon in and may move it once its picture is loaded: the place is read from the
    // bar once it has stopped changing, not from the first change.
    static QRect iconInTopBar(ShellScreenshot& screenshot, const QImage& bareTopBar) {
        const QRect topBar(QPoint(), bareTopBar.size());
        if (!VirtualDesktop::waitUntil([&] { return !newestItem(bareTopBar, screenshot.area(topBar)).isEmpty(); })) {
            return {};
        }
        return newestItem(bareTopBar, settled(screenshot, topBar));
    }

    // Where the icon's menu opens: below the icon, on the primary monitor.
    static QRect belowIcon(const QRect& icon) {
        return QRect(icon.center().x() - 300, kTopBarHeight, 600, 400).intersected(monitors().value(0));
    }

    // Waits for the icon's menu to open below the icon, from a picture of that area taken before; the
    // menu's place once it has stopped moving.
    static QRect openedMenu(ShellScreenshot& screenshot, const QRect& icon, const QImage& withoutMenu) {
        const QRect area = belowIcon(icon);
        QRect menu;
        if (!VirtualDesktop::waitUntil([&] {
                menu = changedArea(withoutMenu, screenshot.area(area));
                return menu.height() > 40;
            })) {
            return {};
        }
        return changedArea(withoutMenu, settled(screenshot, area)).translated(area.topLeft());
    }

    // The middle of the menu's first entry ("Open panel"): the entries are a little taller than a sixth
    // of this three-entry menu, below its top padding.
    static QPoint firstEntry(const QRect& menu) { return {menu.center().x(), menu.top() + menu.height() / 6}; }

    static inline std::unique_ptr<RemoteDesktopInput> s_input;
    QTemporaryDir m_config;
    GnomeSessionProgram m_lattica{m_config.path()};
};

// The AppIndicator extension (Debian's gnome-shell-extension-appindicator) hosts the icon in the top bar.
// A double click activates the item; a single click opens the item's menu once the double-click time
// has passed, and the menu's first item opens the panel.
TEST_F(GnomeTrayTest, TheIconSitsInTheTopBarAndADoubleClickOnItOrItsMenuOpensThePanel) {
    ShellScreenshot screenshot;
    const QRect topBar(0, 0, primaryWidth(), kTopBarHeight);
    const QImage bare = screenshot.area(topBar);
    ASSERT_FALSE(bare.isNull()) << screenshot.error().toStdString();

    const QString item = startAndWaitForItem();
    ASSERT_FALSE(item.isEmpty()) << m_lattica.output().toStdString();
    // The session has the program's icons installed: the host gets the monochrome one by name.
    EXPECT_EQ(itemProperty(item, QStringLiteral("IconName")).toString().toStdString(), "app.lattica.Lattica-symbolic");
    EXPECT_FALSE(m_lattica.output().contains(QLatin1String("no system tray is available")))
        << m_lattica.output().toStdString();

    // The icon is where the top bar changed once the item was shown.
    const QRect icon = iconInTopBar(screenshot, bare);
    ASSERT_FALSE(icon.isEmpty()) << screenshot.error().toStdString();
    EXPECT_LE(icon.width(), 3 * kTopBarHeight) << icon.width() << "x" << icon.height();

    ASSERT_TRUE(input().movePointerTo(icon.center())) << input().error().toStdString();
    ASSERT_TRUE(input().click()) << input().error().toStdString();
    ASSERT_TRUE(input().click()) << input().error().toStdString();
    EXPECT_TRUE(m_lattica.waitForOutput(QStringLiteral("shown at"))) << m_lattica.output().toStdString();

    const int openings = int(m_lattica.output().count(QStringLiteral("shown at")));

    // A single click opens the menu, once the double-click time has passed, below the icon (the panel
    // shows at the desktop's top left corner, away from it).
    const QImage withoutMenu = settled(screenshot, belowIcon(icon));
    ASSERT_FALSE(withoutMenu.isNull()) << screenshot.error().toStdString();
    ASSERT_TRUE(input().movePointerTo(icon.center())) << input().error().toStdString();
    ASSERT_TRUE(input().click()) << input().error().toStdString();
    const QRect menu = openedMenu(screenshot, icon, withoutMenu);
    ASSERT_FALSE(menu.isEmpty()) << "no menu below the icon";
    const QString savedMenu = QDir::current().filePath(QStringLiteral("gnome-tray-menu.png"));
    screenshot.area(menu.adjusted(-10, -10, 10, 10)).save(savedMenu);
    std::printf("[ picture ] the icon's menu at %d,%d %dx%d: %s\n", menu.x(), menu.y(), menu.width(), menu.height(),
                qPrintable(savedMenu));
    // What the program wrote meanwhile is read (the text is there already: this returns at once).
    m_lattica.waitForOutput(QStringLiteral("shown at"), 100);
    EXPECT_EQ(m_lattica.output().count(QStringLiteral("shown at")), openings) << "the single click opened the panel";

    // Its first entry, "Open panel", opens the panel, clicked with the pointer.
    const QList<MenuEntry> entries = menuEntries(item);
    ASSERT_FALSE(entries.isEmpty());
    EXPECT_EQ(entries.constFirst().label.toStdString(), "Open panel");
    ASSERT_TRUE(input().movePointerTo(firstEntry(menu))) << input().error().toStdString();
    ASSERT_TRUE(input().click()) << input().error().toStdString();
    EXPECT_TRUE(m_lattica.waitForCount(QStringLiteral("shown at"), openings + 1)) << m_lattica.output().toStdString();

    // The top bar around the icon as it is now, for a look.
    const QString saved = QDir::current().filePath(QStringLiteral("gnome-tray-icon.png"));
    screenshot.area(topBar)
        .copy(icon.adjusted(-60, -20, 60, 20).intersected(QRect(QPoint(), topBar.size())))
        .save(saved);
    std::printf("[ picture ] the icon in the top bar, at %d,%d %dx%d: %s\n", icon.x(), icon.y(), icon.width(),
                icon.height(), qPrintable(saved));
}

// Opened from the icon (its menu's first entry, as a single click on the icon offers it), the panel has
// the keyboard: Escape closes it, and so does a click on the desktop away from it, as on the other
// desktops. Each opening stays open until then.
TEST_F(GnomeTrayTest, ThePanelOpenedFromTheIconHasTheFocusAndClosesOnEscapeOrAClickOutside) {
    constexpr int kEvdevEscape = 1;
    constexpr int kOpenings = 4;
    ShellScreenshot screenshot;
    ASSERT_GE(monitors().size(), 2);
    // The primary monitor below the top bar, whose clock may change meanwhile.
    const QRect primary = monitors().at(0).adjusted(0, kTopBarHeight, 0, 0);
    const QImage bare = screenshot.area(QRect(0, 0, primaryWidth(), kTopBarHeight));
    ASSERT_FALSE(bare.isNull()) << screenshot.error().toStdString();
    ASSERT_FALSE(startAndWaitForItem().isEmpty()) << m_lattica.output().toStdString();
    const QRect icon = iconInTopBar(screenshot, bare);
    ASSERT_FALSE(icon.isEmpty()) << screenshot.error().toStdString();
    // The middle of the second monitor: bare desktop, far from the panel and the top bar.
    const QRect second = monitors().at(1);
    const QImage desktop = settled(screenshot, primary);
    ASSERT_FALSE(desktop.isNull()) << screenshot.error().toStdString();

    for (int opening = 1; opening <= kOpenings; ++opening) {
        SCOPED_TRACE(opening);
        // A click on the icon opens its menu, and one on its first entry the panel.
        const QImage withoutMenu = settled(screenshot, belowIcon(icon));
        ASSERT_TRUE(input().movePointerTo(icon.center())) << input().error().toStdString();
        ASSERT_TRUE(input().click()) << input().error().toStdString();
        const QRect menu = openedMenu(screenshot, icon, withoutMenu);
        ASSERT_FALSE(menu.isEmpty()) << "no menu below the icon at " << icon.x() << "," << icon.y() << " "
                                     << icon.width() << "x" << icon.height();
        ASSERT_TRUE(input().movePointerTo(firstEntry(menu))) << input().error().toStdString();
        ASSERT_TRUE(input().click()) << input().error().toStdString();
        ASSERT_TRUE(m_lattica.waitForCount(QStringLiteral("shown at"), opening)) << m_lattica.output().toStdString();
        // The panel gets the keyboard once it is on screen.
        ASSERT_TRUE(m_lattica.waitForCount(QStringLiteral("focused at"), opening)) << m_lattica.output().toStdString();
        // It is on screen, and still open once it has been drawn.
        QRect panel;
        ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
            panel = changedArea(desktop, screenshot.area(primary));
            return panel.width() > 100 && panel.height() > 100;
        })) << "the panel is not on screen";
        panel = changedArea(desktop, settled(screenshot, primary)).translated(primary.topLeft());
        EXPECT_EQ(m_lattica.countOf(QStringLiteral("hidden at")), opening - 1) << m_lattica.output().toStdString();
        if (opening == 1) {
            const QString saved = QDir::current().filePath(QStringLiteral("gnome-panel-open.png"));
            screenshot.area(panel.adjusted(-10, -10, 10, 10)).save(saved);
            std::printf("[ picture ] the open panel at %d,%d %dx%d: %s\n", panel.x(), panel.y(), panel.width(),
                        panel.height(), qPrintable(saved));
        }

        if (opening % 2 == 1) {
            ASSERT_TRUE(input().send(kEvdevEscape, true) && input().send(kEvdevEscape, false))
                << input().error().toStdString();
        } else {
            ASSERT_FALSE(panel.intersects(second));
            ASSERT_TRUE(input().movePointerTo(second.center())) << input().error().toStdString();
            ASSERT_TRUE(input().click()) << input().error().toStdString();
        }
        EXPECT_TRUE(m_lattica.waitForCount(QStringLiteral("hidden at"), opening))
            << (opening % 2 == 1 ? "Escape" : "a click on the desktop") << " did not close the panel\n"
            << m_lattica.output().toStdString();
        // Gone from the screen too.
        EXPECT_TRUE(VirtualDesktop::waitUntil([&] {
            const QImage now = screenshot.area(primary);
            return !now.isNull() && changedArea(desktop, now).height() < 100;
        })) << "the panel is still on screen";
    }
}

// Run from the build tree, with no icon theme holding the program's icons, the host gets the drawn icon's
// pixels and no name its theme would not know.
TEST_F(GnomeTrayTest, WithoutInstalledIconsTheHostGetsTheIconsPixels) {
    QTemporaryDir dataHome;
    ASSERT_TRUE(dataHome.isValid());
    const QByteArray savedDataHome = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", dataHome.path().toLocal8Bit());
    const QString item = startAndWaitForItem();
    qputenv("XDG_DATA_HOME", savedDataHome);
    ASSERT_FALSE(item.isEmpty()) << m_lattica.output().toStdString();

    const QString name = itemProperty(item, QStringLiteral("IconName")).toString();
    EXPECT_NE(name.toStdString(), "rectangle.on.rectangle.angled");
    EXPECT_TRUE(name.isEmpty()) << name.toStdString();
    const QList<QSize> sizes = pixmapSizes(itemProperty(item, QStringLiteral("IconPixmap")));
    EXPECT_FALSE(sizes.isEmpty());
    EXPECT_TRUE(sizes.contains(QSize(16, 16)) && sizes.contains(QSize(64, 64)));
}

}  // namespace
