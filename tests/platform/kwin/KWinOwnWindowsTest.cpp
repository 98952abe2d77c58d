// SPDX-License-Identifier: MIT
// Lattica's own windows on KWin, as the running program shows them: the panel placed by the bridge next
// to the pointer and kept out of the taskbar and Alt+Tab, the settings window in both.
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QProcess>
#include <QTemporaryDir>

#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "platform/kwin/KWinBridge.h"
#include "platform/xdg/FileSettingsStore.h"
#include "tests/platform/kwin/KWinSessionFixture.h"
#include "tests/support/VirtualDesktop.h"

// A tray host's watcher, so that the program docks its icon and opens the panel as the tray's pop-up.
class FakeStatusNotifierWatcher : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)
public:
    bool isHostRegistered() const { return true; }
    int protocolVersion() const { return 0; }
    QStringList items() const { return m_items; }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString& service) { m_items.append(service); }
    void RegisterStatusNotifierHost(const QString&) {}

Q_SIGNALS:
    void StatusNotifierItemRegistered(const QString& service);
    void StatusNotifierItemUnregistered(const QString& service);
    void StatusNotifierHostRegistered();

private:
    QStringList m_items;
};

namespace {

const QString kWatcherService = QStringLiteral("org.kde.StatusNotifierWatcher");

class KWinOwnWindowsTest : public KWinSessionFixture {
protected:
    void SetUp() override {
        KWinSessionFixture::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        QDBusConnection bus = QDBusConnection::sessionBus();
        ASSERT_TRUE(bus.registerObject(QStringLiteral("/StatusNotifierWatcher"), &m_watcher,
                                       QDBusConnection::ExportAllContents));
        ASSERT_TRUE(bus.registerService(kWatcherService));
        ASSERT_TRUE(m_keys.start());
        ASSERT_TRUE(m_config.isValid());
    }

    void TearDown() override {
        if (m_program.state() != QProcess::NotRunning) {
            run({QStringLiteral("quit")});
            if (!m_program.waitForFinished(10000)) {
                m_program.kill();
                m_program.waitForFinished();
            }
        }
        QDBusConnection::sessionBus().unregisterService(kWatcherService);
        QDBusConnection::sessionBus().unregisterObject(QStringLiteral("/StatusNotifierWatcher"));
        KWinSessionFixture::TearDown();
    }

    QProcessEnvironment environment() const {
        QProcessEnvironment environment = VirtualDesktop::programEnvironment(m_config.path());
        // The program chooses Wayland itself on KWin.
        environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
        return environment;
    }

    // Starts the program with "Show in taskbar" as given, and waits until its icon is in the tray and its
    // commands are on the bus.
    void startProgram(bool shownInTaskbar) {
        FileSettingsStore(m_config.path() + QStringLiteral("/lattica/defaults.json"))
            .setBool(QStringLiteral("dockIconVisible"), shownInTaskbar);
        m_program.setProcessEnvironment(environment());
        m_program.setProcessChannelMode(QProcess::ForwardedChannels);
        m_program.start(QStringLiteral(LATTICA_BINARY), {});
        ASSERT_TRUE(m_program.waitForStarted());
        ASSERT_TRUE(VirtualDesktop::waitUntil(
            [&] {
                return !m_watcher.items().isEmpty() && QDBusConnection::sessionBus().interface()->isServiceRegistered(
                                                           QStringLiteral("app.lattica.Lattica"));
            },
            20000))
            << "the program did not dock its icon";
    }

    // Runs a command of the running program (lattica panel, lattica settings) and waits for it.
    void run(const QStringList& arguments) {
        QProcess command;
        command.setProcessEnvironment(environment());
        command.start(QStringLiteral(LATTICA_BINARY), arguments);
        // Served while it waits: the program may ask the tray's watcher meanwhile.
        ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return command.waitForFinished(1); }, 20000));
        EXPECT_EQ(command.exitCode(), 0) << arguments.join(QLatin1Char(' ')).toStdString();
    }

    // The program's windows in KWin (pop-up menus aside).
    QList<KWinWindow> programWindows() const {
        QList<KWinWindow> windows;
        for (const KWinWindow& window : platform->bridge().state().windows) {
            if (window.pid == m_program.processId() && !window.popup) {
                windows.append(window);
            }
        }
        return windows;
    }
    std::optional<KWinWindow> panel(const QSize& size) const {
        for (const KWinWindow& window : programWindows()) {
            if (window.frame.size() == QSizeF(size)) {
                return window;
            }
        }
        return std::nullopt;
    }
    std::string describeWindows() const {
        std::string text = "the program's windows:";
        for (const KWinWindow& window : programWindows()) {
            text += " [" + window.caption.toStdString() + " " + std::to_string(window.frame.width()) + "x" +
                    std::to_string(window.frame.height()) + (window.skipTaskbar ? " skipTaskbar" : "") + "]";
        }
        return text;
    }
    std::optional<KWinWindow> settingsWindow() const {
        for (const KWinWindow& window : programWindows()) {
            // Its content alone is 760 by 540.
            if (window.frame.width() >= 760 && window.frame.height() >= 540) {
                return window;
            }
        }
        return std::nullopt;
    }
    // Gives the focus to another application's window, as a click on the tray does: while one of the
    // program's own windows has the focus, the toolkit opens the panel as a pop-up of that window.
    void focusElsewhere() {
        ASSERT_TRUE(wayland.open(QStringLiteral("focus"), QStringLiteral("title=focus-holder w=200 h=150")));
        const std::optional<WindowEntry> holder = waitForWindow(QStringLiteral("focus-holder"));
        ASSERT_TRUE(holder);
        ASSERT_EQ(Platform::services().windowControl->activate(holder->id), Result::Ok);
    }

    // The size the panel opens with, from its first opening anywhere.
    QSize panelSize() {
        std::optional<QSize> size;
        run({QStringLiteral("panel")});
        EXPECT_TRUE(VirtualDesktop::waitUntil([&] {
            for (const KWinWindow& window : programWindows()) {
                if (window.skipSwitcher && window.frame.width() < 760) {
                    size = window.frame.size().toSize();
                }
            }
            return size.has_value();
        })) << "no panel appeared";
        closePanel();
        return size.value_or(QSize());
    }
    void closePanel() {
        EXPECT_TRUE(m_keys.send("down", FakeKeys::kEvdevEscape));
        EXPECT_TRUE(m_keys.send("up", FakeKeys::kEvdevEscape));
        EXPECT_TRUE(VirtualDesktop::waitUntil([&] {
            for (const KWinWindow& window : programWindows()) {
                if (window.skipSwitcher) {
                    return false;
                }
            }
            return true;
        })) << "Escape did not close the panel: it does not have the focus";
    }

    // Where the panel belongs with the pointer at a point: centred on it across, below it in the upper
    // half of the work area and above it in the lower half, inside the work area.
    static QPointF expectedCorner(const QPointF& pointer, const QSizeF& size, const QRectF& area) {
        double x = pointer.x() - std::floor(size.width() / 2);
        double y = pointer.y() > area.center().y() ? pointer.y() - size.height() : pointer.y();
        x = std::max(area.left(), std::min(x, area.right() - size.width()));
        y = std::max(area.top(), std::min(y, area.bottom() - size.height()));
        return {x, y};
    }

    // Opens the panel with the pointer at a point of a screen and checks where KWin has put it.
    void openAtPointer(int screenIndex, const QPoint& pointer, const QSize& size) {
        const KWinState state = platform->bridge().state();
        ASSERT_LT(screenIndex, state.screens.size());
        const KWinScreen screen = state.screens[screenIndex];
        ASSERT_TRUE(screen.geometry.contains(pointer));
        ASSERT_TRUE(m_keys.movePointer(pointer));
        run({QStringLiteral("panel")});
        const QPointF wanted = expectedCorner(pointer, size, screen.workArea);
        std::optional<KWinWindow> opened;
        const bool placed = VirtualDesktop::waitUntil([&] {
            opened = panel(size);
            return opened && opened->frame.topLeft() == wanted;
        });
        ASSERT_TRUE(opened) << "no panel appeared";
        ASSERT_TRUE(placed) << "the panel is at " << opened->frame.x() << "," << opened->frame.y() << ", not at "
                            << wanted.x() << "," << wanted.y();
        EXPECT_TRUE(screen.workArea.contains(opened->frame));
        EXPECT_EQ(opened->screen, screenIndex);
        EXPECT_TRUE(opened->skipTaskbar);
        EXPECT_TRUE(opened->skipSwitcher);
    }

    FakeStatusNotifierWatcher m_watcher;
    FakeKeys m_keys;
    QTemporaryDir m_config;
    QProcess m_program;
};

TEST_F(KWinOwnWindowsTest, ThePanelOpensAtThePointerInsideTheWorkAreaOfItsScreen) {
    startProgram(false);
    const QSize size = panelSize();
    ASSERT_FALSE(size.isEmpty());
    const QList<KWinScreen> screens = platform->bridge().state().screens;
    ASSERT_EQ(screens.size(), 3);
    // Near the bottom-right corner of the middle screen: above the pointer, pushed left to fit.
    const QRectF middle = screens[1].geometry;
    openAtPointer(1, (middle.bottomRight() - QPointF(20, 30)).toPoint(), size);
    closePanel();
    // Near the top-left corner of the first screen: below the pointer, pushed right to fit.
    openAtPointer(0, screens[0].geometry.topLeft().toPoint() + QPoint(30, 40), size);
    closePanel();
    // In the middle of the last, small screen.
    openAtPointer(2, screens[2].geometry.center().toPoint() + QPoint(0, 10), size);
}

TEST_F(KWinOwnWindowsTest, TheSettingsShowInTaskbarAndSwitcherInTrayOnlyModeWhileThePanelNeverDoes) {
    startProgram(false);
    const QSize size = panelSize();
    run({QStringLiteral("settings")});
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return settingsWindow().has_value(); })) << describeWindows();
    focusElsewhere();
    // Everything the program asked of KWin for the settings window came before the panel's placement.
    openAtPointer(0, QPoint(200, 200), size);
    const std::optional<KWinWindow> settings = settingsWindow();
    ASSERT_TRUE(settings);
    EXPECT_FALSE(settings->skipTaskbar);
    EXPECT_FALSE(settings->skipSwitcher);
}

TEST_F(KWinOwnWindowsTest, WithShowInTaskbarOnThePanelStillKeepsOut) {
    startProgram(true);
    const QSize size = panelSize();
    run({QStringLiteral("settings")});
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return settingsWindow().has_value(); })) << describeWindows();
    focusElsewhere();
    openAtPointer(1, QPoint(2400, 300), size);
    const std::optional<KWinWindow> settings = settingsWindow();
    ASSERT_TRUE(settings);
    EXPECT_FALSE(settings->skipTaskbar);
    EXPECT_FALSE(settings->skipSwitcher);
}

}  // namespace

#include "KWinOwnWindowsTest.moc"
