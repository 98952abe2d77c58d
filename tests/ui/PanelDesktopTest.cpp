// SPDX-License-Identifier: MIT
// The real panel on the virtual desktop: X11 services, a tray host, a window manager and test clients.
#include <gtest/gtest.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <QApplication>
#include <QBackingStore>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QStyleHints>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <cstdio>
#include <cstdlib>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/controller/AppController.h"
#include "app/ui/LatticaApp.h"
#include "app/ui/WindowPresenter.h"
#include "app/ui/panel/DisplayCardView.h"
#include "app/ui/panel/PanelGeometry.h"
#include "app/ui/panel/TrayPanelView.h"
#include "platform/Monitors.h"
#include "platform/SettingsStore.h"
#include "platform/TaskbarPresence.h"
#include "platform/WindowControl.h"
#include "platform/WindowList.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Platform.h"
#include "tests/support/VirtualDesktop.h"
#include "tests/testclient/TestClient.h"

namespace {

// Notes when the cards were first painted as placeholders and when all of them were painted with previews.
class PaintWatcher : public QObject {
public:
    QElapsedTimer clock;
    qint64 cardsPainted = -1;
    bool firstPaintWasPlaceholder = false;
    qint64 previewsPainted = -1;
    int expectedCards = 0;
    QSet<QObject*> cardsWithPreview;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint && clock.isValid()) {
            if (auto* card = qobject_cast<DisplayCardView*>(watched)) {
                if (cardsPainted < 0) {
                    cardsPainted = clock.elapsed();
                    firstPaintWasPlaceholder = card->isLoadingPreview();
                }
                if (card->display().previewImage.has_value() && !card->scaledPreview().isNull()) {
                    cardsWithPreview.insert(card);
                    if (previewsPainted < 0 && cardsWithPreview.size() == expectedCards) {
                        previewsPainted = clock.elapsed();
                    }
                }
            }
        }
        return QObject::eventFilter(watched, event);
    }
};

struct ServerWindowState {
    bool exists = false;
    bool mapped = false;
};

class PanelOnDesktop : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_config.isValid());
        qputenv("XDG_CONFIG_HOME", m_config.path().toUtf8());
        QApplication::setQuitOnLastWindowClosed(false);
        // The test clicks faster than a person: two clicks on the icon must not make a double click,
        // which the tray icon reports as something other than a click.
        QGuiApplication::styleHints()->setMouseDoubleClickInterval(0);
        platform = X11Platform::connect();
        ASSERT_NE(platform, nullptr);
        platform->install();
        // No update check over the network from tests.
        platform->services().settings->setBool(QStringLiteral("autoCheckForUpdatesOnLaunch"), false);
        monitors = VirtualDesktop::layout();
        controller = std::make_unique<AppController>();
        windows = std::make_unique<WindowPresenter>(*controller);
        app = std::make_unique<LatticaApp>(*controller, *windows);
        app->start();
        ASSERT_TRUE(app->hasTrayHost()) << "the virtual desktop runs a tray host";
        ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return trayIconIsClickable(); }, 10000));
    }

    void TearDown() override {
        for (QWidget* window : {windows->settingsWindow(), windows->permissionWindow()}) {
            if (window) {
                window->close();
            }
        }
        app->closePanel();
        if (m_focusThief != XCB_NONE) {
            xcb_destroy_window(xcb(), m_focusThief);
            xcb_flush(xcb());
        }
        QCoreApplication::processEvents();
        app.reset();
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
        windows.reset();
        controller.reset();
        platform.reset();
    }

    xcb_connection_t* xcb() const { return platform->connection().xcb(); }

    void movePointer(const QPoint& point) {
        xcb_test_fake_input(xcb(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, platform->connection().root(),
                            static_cast<int16_t>(point.x()), static_cast<int16_t>(point.y()), 0);
        xcb_flush(xcb());
        std::free(xcb_get_input_focus_reply(xcb(), xcb_get_input_focus(xcb()), nullptr));
    }

    void click(const QPoint& point) {
        movePointer(point);
        xcb_test_fake_input(xcb(), XCB_BUTTON_PRESS, 1, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        xcb_test_fake_input(xcb(), XCB_BUTTON_RELEASE, 1, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        xcb_flush(xcb());
    }

    bool panelIsUnmapped() {
        const auto window = static_cast<xcb_window_t>(app->panel()->winId());
        xcb_get_window_attributes_reply_t* attributes =
            xcb_get_window_attributes_reply(xcb(), xcb_get_window_attributes(xcb(), window), nullptr);
        const bool unmapped = attributes == nullptr || attributes->map_state == XCB_MAP_STATE_UNMAPPED;
        std::free(attributes);
        return unmapped;
    }

    // Whether some client (the open panel) holds the pointer: our own grab is then refused.
    bool pointerIsGrabbed() {
        xcb_grab_pointer_reply_t* reply =
            xcb_grab_pointer_reply(xcb(),
                                   xcb_grab_pointer(xcb(), 0, platform->connection().root(), 0, XCB_GRAB_MODE_ASYNC,
                                                    XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
                                   nullptr);
        const bool grabbed = reply != nullptr && reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
        if (reply != nullptr && reply->status == XCB_GRAB_STATUS_SUCCESS) {
            xcb_ungrab_pointer(xcb(), XCB_CURRENT_TIME);
            xcb_flush(xcb());
        }
        std::free(reply);
        return grabbed;
    }

    // The tray host has embedded the icon: its window is mapped, inside the host, where Qt reports it.
    bool trayIconIsClickable() { return trayIconWindow() != XCB_NONE; }

    // The icon's own window once it is embedded and placed where Qt reports it, or XCB_NONE.
    xcb_window_t trayIconWindow() {
        const QRect icon = app->trayIcon()->geometry();
        if (icon.width() <= 4 || icon.x() <= 0) {
            return XCB_NONE;
        }
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (qstrcmp(widget->metaObject()->className(), "QSystemTrayIconSys") != 0 || !widget->isVisible()) {
                continue;
            }
            const auto window = static_cast<xcb_window_t>(widget->winId());
            xcb_get_window_attributes_reply_t* attributes =
                xcb_get_window_attributes_reply(xcb(), xcb_get_window_attributes(xcb(), window), nullptr);
            xcb_translate_coordinates_reply_t* position = xcb_translate_coordinates_reply(
                xcb(), xcb_translate_coordinates(xcb(), window, platform->connection().root(), 0, 0), nullptr);
            const bool viewable = attributes != nullptr && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
            const bool placed = position != nullptr && position->dst_x == icon.x() && position->dst_y == icon.y();
            std::free(attributes);
            std::free(position);
            if (viewable && placed) {
                return window;
            }
        }
        return XCB_NONE;
    }

    // The deepest window under the pointer, as the server would pick it for a click there now.
    xcb_window_t windowUnderPointer() {
        xcb_window_t window = platform->connection().root();
        for (;;) {
            xcb_query_pointer_reply_t* reply =
                xcb_query_pointer_reply(xcb(), xcb_query_pointer(xcb(), window), nullptr);
            const xcb_window_t child = reply != nullptr ? reply->child : XCB_NONE;
            std::free(reply);
            if (child == XCB_NONE) {
                return window;
            }
            window = child;
        }
    }

    // The tray host lays its icons out again after embedding one. The icon has settled once it is embedded,
    // its window is the one under the pointer at its centre, and it is where it was on the previous look.
    bool waitUntilTrayIconSettled() {
        QRect previous;
        return VirtualDesktop::waitUntil(
            [&] {
                const xcb_window_t icon = trayIconWindow();
                const QRect now = app->trayIcon()->geometry();
                const bool same = now == previous;
                previous = now;
                if (icon == XCB_NONE || !same) {
                    return false;
                }
                movePointer(trayIconCentre());
                return windowUnderPointer() == icon && app->trayIcon()->geometry() == now && !pointerIsGrabbed();
            },
            10000);
    }

    // Gives the keyboard focus to a window of the test's own connection, which the program does not know:
    // an unmanaged one, so that no window manager hands the focus back.
    void takeTheFocusAway() {
        const xcb_window_t window = xcb_generate_id(xcb());
        const uint32_t overrideRedirect = 1;
        xcb_create_window(xcb(), XCB_COPY_FROM_PARENT, window, platform->connection().root(), -10, -10, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                          &overrideRedirect);
        xcb_map_window(xcb(), window);
        xcb_set_input_focus(xcb(), XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
        xcb_flush(xcb());
        if (m_focusThief != XCB_NONE) {
            xcb_destroy_window(xcb(), m_focusThief);
        }
        m_focusThief = window;
    }

    // The program had the focus in a window of its own, and is told that it lost it. On a busy machine the
    // toolkit sometimes keeps taking itself for active (it expects a focus-in that belongs to no window of
    // its own): the focus is handed over again, up to three times; false when the program is still active,
    // and the caller skips its test, saying so.
    bool makeTheProgramInactive() {
        QWidget other;
        other.setWindowTitle(QStringLiteral("other"));
        other.resize(200, 100);
        other.show();
        // Away from the program's windows: focus changes under the pointer are told to them too.
        movePointer(monitors[1].center());
        for (int attempt = 0; attempt < 3; ++attempt) {
            other.activateWindow();
            if (!VirtualDesktop::waitUntil([&] { return QGuiApplication::focusWindow() == other.windowHandle(); },
                                           5000)) {
                return false;
            }
            takeTheFocusAway();
            if (VirtualDesktop::waitUntil([&] { return QGuiApplication::applicationState() != Qt::ApplicationActive; },
                                          3000)) {
                return true;
            }
        }
        return false;
    }

    QPoint trayIconCentre() const {
        const QRect icon = app->trayIcon()->geometry();
        return {icon.x() + icon.width() / 2, icon.y() + icon.height() / 2};
    }

    // A client with count windows on a monitor, each 500 x 400, in one colour.
    quint32 openWindows(TestClient& client, const QString& name, int monitor, int count, const QString& colour) {
        quint32 last = 0;
        for (int i = 0; i < count; ++i) {
            const QRect area = monitors[monitor];
            last = client.open(name + QString::number(i), QStringLiteral("x=%1 y=%2 w=500 h=400 color=%3 pid=yes")
                                                              .arg(area.x() + 100 + i * 60)
                                                              .arg(area.y() + 100 + i * 60)
                                                              .arg(colour));
            EXPECT_NE(last, 0u);
        }
        return last;
    }

    // The window's frame in the window list, or an empty rectangle.
    static QRectF frameOf(quint32 window) {
        const std::optional<QList<WindowEntry>> list =
            Platform::services().windowList->windows(DesktopWindows::Include);
        for (const WindowEntry& entry : list.value_or(QList<WindowEntry>{})) {
            if (entry.id == window) {
                return entry.frame;
            }
        }
        return {};
    }

    int monitorOf(const QRectF& frame) const {
        for (int i = 0; i < monitors.size(); ++i) {
            if (monitors[i].contains(frame.center().toPoint())) {
                return i;
            }
        }
        return -1;
    }

    // One click on the settled tray icon; the panel must open from it.
    bool openPanelByClick(PaintWatcher* watcher = nullptr) {
        if (!waitUntilTrayIconSettled()) {
            ADD_FAILURE() << "the tray icon did not settle under the pointer";
            return false;
        }
        if (watcher) {
            watcher->expectedCards = static_cast<int>(monitors.size());
            watcher->clock.start();
        }
        click(trayIconCentre());
        return VirtualDesktop::waitUntil([&] { return app->panel() && app->panel()->isVisible(); }, 5000);
    }

    // Whether the X server knows the window and has it mapped.
    ServerWindowState serverState(xcb_window_t window) {
        xcb_get_window_attributes_reply_t* reply =
            xcb_get_window_attributes_reply(xcb(), xcb_get_window_attributes(xcb(), window), nullptr);
        const ServerWindowState state{reply != nullptr, reply != nullptr && reply->map_state != XCB_MAP_STATE_UNMAPPED};
        std::free(reply);
        return state;
    }

    bool previewsArrived() const {
        const QList<DisplayCardView*> cards = app->panelContent()->cards();
        if (cards.size() != monitors.size() || controller->isLoadingPreviews()) {
            return false;
        }
        for (DisplayCardView* card : cards) {
            if (!card->display().previewImage.has_value() || card->scaledPreview().isNull()) {
                return false;
            }
        }
        return true;
    }

    std::unique_ptr<X11Platform> platform;
    std::unique_ptr<AppController> controller;
    std::unique_ptr<WindowPresenter> windows;
    std::unique_ptr<LatticaApp> app;
    QList<QRect> monitors;

private:
    QTemporaryDir m_config;
    xcb_window_t m_focusThief = XCB_NONE;
};

TEST_F(PanelOnDesktop, TrayClickOpensThePanelWithOneCardPerMonitorAndPreviews) {
    TestClient client;
    ASSERT_TRUE(client.start());
    for (int i = 0; i < monitors.size(); ++i) {
        openWindows(client, QStringLiteral("w%1-").arg(i), i, 1, QStringLiteral("#3366cc"));
    }
    PaintWatcher watcher;
    qApp->installEventFilter(&watcher);
    ASSERT_TRUE(openPanelByClick(&watcher));
    EXPECT_TRUE(app->panel()->windowFlags().testFlag(Qt::Popup));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return previewsArrived(); }, 10000));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return watcher.previewsPainted >= 0; }, 5000));
    qApp->removeEventFilter(&watcher);

    const QList<DisplayCardView*> cards = app->panelContent()->cards();
    for (int i = 0; i < cards.size(); ++i) {
        EXPECT_EQ(cards[i]->display().index, i + 1);
        EXPECT_EQ(cards[i]->display().bounds, QRectF(monitors[i]));
        EXPECT_GE(cards[i]->display().visibleWindowCount.value_or(-1), 1);
    }
    // Placed next to the tray icon, inside the screen.
    const QRect panel = app->panel()->frameGeometry();
    const QScreen* screen = QGuiApplication::screenAt(trayIconCentre());
    ASSERT_NE(screen, nullptr);
    EXPECT_TRUE(screen->geometry().contains(panel)) << panel.x() << "," << panel.y();
    EXPECT_LE(std::abs(panel.center().x() - trayIconCentre().x()), panel.width() / 2);

    std::printf(
        "[ figures ] tray click to cards first painted: %lld ms (%s); to previews painted: %lld ms "
        "(%lld monitors)\n",
        static_cast<long long>(watcher.cardsPainted),
        watcher.firstPaintWasPlaceholder ? "placeholders" : "the capture had already arrived",
        static_cast<long long>(watcher.previewsPainted), static_cast<long long>(monitors.size()));
    EXPECT_GE(watcher.previewsPainted, watcher.cardsPainted);

    // Later openings reuse the panel and its cards.
    for (int opening = 2; opening <= 4; ++opening) {
        app->closePanel();
        ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return panelIsUnmapped(); }));
        watcher.cardsPainted = -1;
        watcher.previewsPainted = -1;
        watcher.cardsWithPreview.clear();
        qApp->installEventFilter(&watcher);
        ASSERT_TRUE(openPanelByClick(&watcher));
        ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return watcher.previewsPainted >= 0; }, 10000));
        qApp->removeEventFilter(&watcher);
        std::printf("[ figures ] opening %d: tray click to cards painted: %lld ms (%s); to previews painted: %lld ms\n",
                    opening, static_cast<long long>(watcher.cardsPainted),
                    watcher.firstPaintWasPlaceholder ? "placeholders" : "the capture had already arrived",
                    static_cast<long long>(watcher.previewsPainted));
    }
}

// The panel is not in its own monitor's preview: where it stands, the preview shows what lies under it,
// and everywhere else what the windows drew, on the first opening (the panel built before the click) and
// on a later one.
TEST_F(PanelOnDesktop, PreviewsShowWhatLiesUnderThePanelNotThePanel) {
    ASSERT_TRUE(waitUntilTrayIconSettled());
    // Where the panel will open: as the program places it, next to the icon on the icon's screen.
    const QScreen* screen = QGuiApplication::screenAt(trayIconCentre());
    ASSERT_NE(screen, nullptr);
    const QRect icon = app->trayIcon()->geometry();
    const QRect panel(
        PanelGeometry::panelOrigin(app->panel()->size(), icon, trayIconCentre(), screen->availableGeometry()),
        app->panel()->size());
    int monitor = monitorOf(QRectF(panel));
    ASSERT_GE(monitor, 0);
    // One colour under the panel and a margin around it, short of the icon; another on the next monitor.
    QRect under = panel.adjusted(-40, -40, 40, 0);
    ASSERT_FALSE(under.intersects(icon)) << "the panel opens away from the icon";
    const QColor underColour(0xcc, 0x22, 0x88);
    const QColor otherColour(0x22, 0xaa, 0x44);
    TestClient client;
    ASSERT_TRUE(client.start());
    ASSERT_NE(client.open(QStringLiteral("under"), QStringLiteral("type=override x=%1 y=%2 w=%3 h=%4 color=%5")
                                                       .arg(under.x())
                                                       .arg(under.y())
                                                       .arg(under.width())
                                                       .arg(under.height())
                                                       .arg(underColour.name())),
              0u);
    const int other = (monitor + 1) % int(monitors.size());
    const QRect otherRect(monitors[other].topLeft() + QPoint(100, 100), QSize(300, 200));
    ASSERT_NE(client.open(QStringLiteral("other"), QStringLiteral("type=override x=%1 y=%2 w=300 h=200 color=%3")
                                                       .arg(otherRect.x())
                                                       .arg(otherRect.y())
                                                       .arg(otherColour.name())),
              0u);
    Monitors* screens = Platform::services().monitors;
    const auto colourOnScreen = [&](const QPoint& at) {
        const QImage picture = screens->captureArea(QRectF(at, QSizeF(1, 1)));
        return picture.isNull() ? QColor() : picture.pixelColor(0, 0);
    };
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        return colourOnScreen(panel.center()) == underColour && colourOnScreen(otherRect.center()) == otherColour;
    }));

    for (int opening = 1; opening <= 2; ++opening) {
        SCOPED_TRACE(opening == 1 ? "first opening" : "later opening");
        ASSERT_TRUE(openPanelByClick());
        ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return previewsArrived(); }, 10000));
        ASSERT_EQ(app->panel()->frameGeometry(), panel);
        // The panel is really on screen where the preview shows the window under it.
        EXPECT_NE(colourOnScreen(panel.center()), underColour);

        const QList<DisplayCardView*> cards = app->panelContent()->cards();
        const QImage preview = *cards[monitor]->display().previewImage;
        ASSERT_EQ(preview.size(), monitors[monitor].size());
        const QPoint offset = monitors[monitor].topLeft();
        int wrong = 0;
        for (int y = panel.top(); y <= panel.bottom(); y += 7) {
            for (int x = panel.left(); x <= panel.right(); x += 7) {
                wrong += preview.pixelColor(QPoint(x, y) - offset) == underColour ? 0 : 1;
            }
        }
        for (const QPoint& corner : {panel.topLeft(), panel.topRight(), panel.bottomLeft(), panel.bottomRight()}) {
            wrong += preview.pixelColor(corner - offset) == underColour ? 0 : 1;
        }
        EXPECT_EQ(wrong, 0) << "points of the panel's area that do not show the window under it";
        // The margin around the panel is the window as it drew itself, and so is the other monitor's window.
        EXPECT_EQ(preview.pixelColor(QPoint(panel.left() - 20, panel.center().y()) - offset), underColour);
        EXPECT_EQ(preview.pixelColor(QPoint(panel.center().x(), panel.top() - 20) - offset), underColour);
        const QImage otherPreview = *cards[other]->display().previewImage;
        EXPECT_EQ(otherPreview.pixelColor(otherRect.center() - monitors[other].topLeft()), otherColour);

        app->closePanel();
        ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return panelIsUnmapped(); }));
    }
}

// The toolkit closes popups when the program is told it lost the focus. Told before the panel has the
// focus it asked for, that is the focus leaving an earlier showing, read late (a busy program, a quick
// second click): the new opening stays open and paints. Once the panel has the focus, it closes.
TEST_F(PanelOnDesktop, DeactivationToldBeforeThePanelHasTheFocusLeavesItOpen) {
    if (!makeTheProgramInactive()) {
        GTEST_SKIP() << "the toolkit was not told that the program lost the focus; nothing to test";
    }
    app->openPanel();
    // What the toolkit does on a deactivation, before the panel's focus has been read.
    EXPECT_FALSE(app->panel()->close());
    EXPECT_TRUE(app->panel()->isVisible());
    ASSERT_TRUE(VirtualDesktop::waitUntil(
        [&] { return QGuiApplication::focusWindow() == app->panel()->windowHandle(); }, 5000));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return previewsArrived(); }, 10000));
    EXPECT_TRUE(app->panel()->isVisible());

    // Once the panel has its focus, the same closing closes it.
    EXPECT_TRUE(app->panel()->close());
    EXPECT_FALSE(app->panel()->isVisible());
}

// An opening that ended before the focus came leaves no refusal behind: the hidden panel closes when the
// toolkit asks, as on quitting, which gives up when any window refuses.
TEST_F(PanelOnDesktop, PanelHiddenBeforeItsFocusCameRefusesNoLaterClosing) {
    if (!makeTheProgramInactive()) {
        GTEST_SKIP() << "the toolkit was not told that the program lost the focus; nothing to test";
    }
    app->openPanel();
    EXPECT_FALSE(app->panel()->close());
    app->closePanel();
    ASSERT_FALSE(app->panel()->isVisible());
    EXPECT_NE(QGuiApplication::applicationState(), Qt::ApplicationActive);
    EXPECT_TRUE(app->panel()->close());
}

TEST_F(PanelOnDesktop, ClickOnTheTrayIconWhileOpenClosesThePanel) {
    ASSERT_TRUE(openPanelByClick());
    // A person clicks again only after the panel has taken the pointer.
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return pointerIsGrabbed(); }));
    click(trayIconCentre());
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return !app->panel()->isVisible(); }, 5000));
}

TEST_F(PanelOnDesktop, ClickOutsideThePanelClosesIt) {
    ASSERT_TRUE(openPanelByClick());
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return pointerIsGrabbed(); }));
    click(monitors[1].center());
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return !app->panel()->isVisible(); }, 5000));
}

TEST_F(PanelOnDesktop, ThePanelHasItsNativeWindowAndItsBufferBeforeTheFirstClick) {
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return app->panel() && app->panel()->internalWinId() != 0; }));
    const xcb_window_t window = static_cast<xcb_window_t>(app->panel()->internalWinId());
    EXPECT_FALSE(app->panel()->isVisible());
    const ServerWindowState state = serverState(window);
    EXPECT_TRUE(state.exists);
    EXPECT_FALSE(state.mapped);
    ASSERT_NE(app->panel()->backingStore(), nullptr);
    EXPECT_EQ(app->panel()->backingStore()->size(), app->panel()->size());

    ASSERT_TRUE(openPanelByClick());
    EXPECT_EQ(app->panel()->internalWinId(), WId(window));
}

TEST_F(PanelOnDesktop, APanelClosedByAClickOutsideKeepsItsNativeWindowForTheNextOpening) {
    ASSERT_TRUE(openPanelByClick());
    const xcb_window_t window = static_cast<xcb_window_t>(app->panel()->internalWinId());
    ASSERT_NE(window, XCB_NONE);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return pointerIsGrabbed(); }));
    click(monitors[1].center());
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return !app->panel()->isVisible(); }, 5000));
    // Closed as a popup closes, letting the pointer go, but only unmapped.
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return !pointerIsGrabbed(); }));
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] {
        const ServerWindowState state = serverState(window);
        return state.exists && !state.mapped;
    }));
    EXPECT_EQ(app->panel()->internalWinId(), WId(window));
    EXPECT_FALSE(controller->displays().isEmpty());
    EXPECT_FALSE(controller->displays().first().previewImage.has_value());

    ASSERT_TRUE(openPanelByClick());
    EXPECT_EQ(app->panel()->internalWinId(), WId(window));
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return serverState(window).mapped; }));
}

TEST_F(PanelOnDesktop, PresentedSettingsWindowBecomesTheActiveWindow) {
    windows->showSettingsWindow();
    const auto window = static_cast<xcb_window_t>(windows->settingsWindow()->winId());
    X11Connection& x11 = platform->connection();
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] {
        xcb_get_property_reply_t* reply = xcb_get_property_reply(
            xcb(), xcb_get_property(xcb(), 0, x11.root(), x11.atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW, 0, 1),
            nullptr);
        const bool active = reply != nullptr && xcb_get_property_value_length(reply) == 4 &&
                            *static_cast<const xcb_window_t*>(xcb_get_property_value(reply)) == window;
        std::free(reply);
        return active;
    }));
}

TEST_F(PanelOnDesktop, MoveButtonSendsTheMonitorsWindowsToTheTargetAndRefreshes) {
    TestClient client;
    ASSERT_TRUE(client.start());
    openWindows(client, QStringLiteral("a"), 0, 2, QStringLiteral("#cc3333"));
    const quint32 first = client.window(QStringLiteral("a0"));
    const quint32 second = client.window(QStringLiteral("a1"));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return monitorOf(frameOf(second)) == 0; }));

    ASSERT_TRUE(openPanelByClick());
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return previewsArrived(); }, 10000));
    DisplayCardView* card = app->panelContent()->cards()[0];
    const int before = card->display().visibleWindowCount.value_or(0);
    QPushButton* target = nullptr;
    for (QPushButton* button : card->findChildren<QPushButton*>(QStringLiteral("moveTargetButton"))) {
        if (button->isVisible() &&
            button->property("targetDisplayID") == app->panelContent()->cards()[1]->display().id) {
            target = button;
        }
    }
    ASSERT_NE(target, nullptr);
    click(target->mapToGlobal(target->rect().center()));

    ASSERT_TRUE(VirtualDesktop::waitUntil(
        [&] { return controller->statusMessage().startsWith(QStringLiteral("Moved ")); }, 10000));
    EXPECT_EQ(controller->statusMessage(), QStringLiteral("Moved %1 of %1 windows.").arg(before));
    EXPECT_EQ(monitorOf(frameOf(first)), 1);
    EXPECT_EQ(monitorOf(frameOf(second)), 1);
    // The panel shows the new arrangement once the new capture is in.
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return previewsArrived(); }, 10000));
    EXPECT_EQ(app->panelContent()->cards()[0]->display().visibleWindowCount, 0);
    EXPECT_GE(app->panelContent()->cards()[1]->display().visibleWindowCount.value_or(0), 2);
}

TEST_F(PanelOnDesktop, KeyboardAloneReachesAndPressesAMoveButtonAndEscapeCloses) {
    TestClient client;
    ASSERT_TRUE(client.start());
    openWindows(client, QStringLiteral("k"), 0, 2, QStringLiteral("#3366cc"));
    const quint32 first = client.window(QStringLiteral("k0"));
    const quint32 second = client.window(QStringLiteral("k1"));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return monitorOf(frameOf(second)) == 0; }));

    ASSERT_TRUE(openPanelByClick());
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return previewsArrived(); }, 10000));
    ASSERT_GE(app->panelContent()->cards().size(), 3);
    const QList<QWidget*> controls = app->panelContent()->cards()[0]->keyboardControls();
    ASSERT_GE(controls.size(), 3);
    EXPECT_EQ(app->panelContent()->focusWidget(), controls[0]) << "the panel opens ready for the keyboard";

    // Tab, then Space, typed on the keyboard (X keycodes 23 and 65): the first card's second button,
    // which sends the windows to the third display.
    const auto tap = [this](uint8_t key) {
        xcb_test_fake_input(xcb(), XCB_KEY_PRESS, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        xcb_test_fake_input(xcb(), XCB_KEY_RELEASE, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
        xcb_flush(xcb());
    };
    tap(23);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return app->panelContent()->focusWidget() == controls[1]; }));
    tap(65);
    ASSERT_TRUE(VirtualDesktop::waitUntil(
        [&] { return controller->statusMessage().startsWith(QStringLiteral("Moved ")); }, 10000));
    EXPECT_EQ(monitorOf(frameOf(first)), 2);
    EXPECT_EQ(monitorOf(frameOf(second)), 2);

    // Escape (keycode 9) closes the panel.
    ASSERT_TRUE(app->panel()->isVisible());
    tap(9);
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return !app->panel()->isVisible(); }));
}

TEST_F(PanelOnDesktop, DisplayShortcutMovesTheFocusedWindowWhileThePanelIsOpen) {
    TestClient client;
    ASSERT_TRUE(client.start());
    const quint32 window = client.open(QStringLiteral("w"), QStringLiteral("x=300 y=200 w=640 h=400 title=Focused"));
    ASSERT_NE(window, 0u);
    ASSERT_EQ(VirtualDesktop::run(QStringLiteral("xdotool"), {QStringLiteral("windowactivate"),
                                                              QStringLiteral("--sync"), QString::number(window)}),
              0);
    // The shortcut moves the window that had the focus before the panel: wait until the moves see it
    // focused. xdotool's --sync is not enough; on a busy machine a key once came while no window had it.
    ASSERT_TRUE(VirtualDesktop::waitUntil(
        [&] {
            const Reading<WindowId> focused = Platform::services().windowControl->focusedWindow();
            return focused.result == Result::Ok && focused.value == WindowId(window);
        },
        10000))
        << "the window manager did not give the window the focus";
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return monitorOf(frameOf(window)) == 0; }));
    ASSERT_TRUE(openPanelByClick());
    ASSERT_GE(controller->connectedShortcutDisplays().size(), 2);
    const ShortcutDisplayItem target = controller->connectedShortcutDisplays().at(1);
    controller->shortcuts().setShortcut(
        KeyboardShortcuts::Shortcut(19 /* the 2 key */, 0x1000 | 0x0800 /* control, option */),
        KeyboardShortcuts::Name(AppController::shortcutNameRawValue(target.id)));

    // Control+Alt+2 typed on the keyboard while the panel is open (X keycodes 37, 64, 11).
    for (const uint8_t key : {37, 64, 11}) {
        xcb_test_fake_input(xcb(), XCB_KEY_PRESS, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    }
    for (const uint8_t key : {11, 64, 37}) {
        xcb_test_fake_input(xcb(), XCB_KEY_RELEASE, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    }
    xcb_flush(xcb());
    const QString moved = QStringLiteral("Moved focused window to ") + target.name + QLatin1Char('.');
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return controller->statusMessage() == moved; }, 10000))
        << qPrintable(controller->statusMessage());
    EXPECT_NE(monitorOf(frameOf(window)), 0);
}

TEST_F(PanelOnDesktop, ApplicationMenuMovesOnlyThatApplicationsWindows) {
    TestClient mail;
    TestClient notes;
    ASSERT_TRUE(mail.start());
    ASSERT_TRUE(notes.start());
    openWindows(mail, QStringLiteral("m"), 0, 2, QStringLiteral("#33aa55"));
    openWindows(notes, QStringLiteral("n"), 0, 1, QStringLiteral("#aa7733"));

    ASSERT_TRUE(openPanelByClick());
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return previewsArrived(); }, 10000));
    DisplayCardView* card = app->panelContent()->cards()[0];
    QAction* mailGroup = nullptr;
    for (QAction* action : card->appMenu()->actions()) {
        if (action->menu() && action->menu()->property("pid").toLongLong() == mail.pid()) {
            mailGroup = action;
        }
    }
    ASSERT_NE(mailGroup, nullptr) << "menu: " << card->appMenuReloadKey().toStdString();
    EXPECT_TRUE(mailGroup->text().endsWith(QStringLiteral(" (2)"))) << mailGroup->text().toStdString();
    QAction* toThird = mailGroup->menu()->actions().value(1);
    ASSERT_NE(toThird, nullptr);
    toThird->trigger();

    EXPECT_TRUE(controller->statusMessage().startsWith(QStringLiteral("Moved 2 of 2 ")))
        << controller->statusMessage().toStdString();
    EXPECT_EQ(monitorOf(frameOf(mail.window(QStringLiteral("m0")))), 2);
    EXPECT_EQ(monitorOf(frameOf(mail.window(QStringLiteral("m1")))), 2);
    EXPECT_EQ(monitorOf(frameOf(notes.window(QStringLiteral("n0")))), 0);
}

TEST_F(PanelOnDesktop, SettingsWindowOpenedTwiceIsTheSameWindowPlacedUnderThePointer) {
    movePointer(monitors[1].center());
    windows->showSettingsWindow();
    QWidget* window = windows->settingsWindow();
    ASSERT_NE(window, nullptr);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return monitorOf(window->frameGeometry()) == 1; }, 5000))
        << window->frameGeometry().x();
    const QRect onSecond = window->geometry();
    EXPECT_NEAR(onSecond.center().x(), monitors[1].center().x(), 2);
    EXPECT_LE(std::abs(window->frameGeometry().top() - (monitors[1].top() + 24)), 2);

    movePointer(monitors[2].center());
    windows->showSettingsWindow();
    EXPECT_EQ(windows->settingsWindow(), window);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return monitorOf(window->frameGeometry()) == 2; }, 5000));
    EXPECT_NEAR(window->geometry().center().x(), monitors[2].center().x(), 2);
}

TEST_F(PanelOnDesktop, WorkWindowsStayInTheTaskbarAndOtherWindowsFollowTheChoice) {
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return !platform->services().taskbarPresence->isShownInTaskbar(); }));
    X11Connection& x11 = platform->connection();
    auto atomList = [&](xcb_window_t window, const char* property) {
        QList<xcb_atom_t> atoms;
        xcb_get_property_reply_t* reply = xcb_get_property_reply(
            xcb(), xcb_get_property(xcb(), 0, window, x11.atom(property), XCB_ATOM_ANY, 0, 1024), nullptr);
        if (reply) {
            const auto* values = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply));
            for (int i = 0; i < xcb_get_property_value_length(reply) / 4; ++i) {
                atoms.append(values[i]);
            }
        }
        std::free(reply);
        return atoms;
    };
    auto states = [&](QWidget* window) {
        return atomList(static_cast<xcb_window_t>(window->winId()), "_NET_WM_STATE");
    };
    // The window manager lists the windows it manages on the root window; taskbars and Alt+Tab read it.
    auto managed = [&](QWidget* window) {
        return atomList(x11.root(), "_NET_CLIENT_LIST").contains(static_cast<xcb_atom_t>(window->winId()));
    };
    x11.internAtoms({"_NET_CLIENT_LIST"});
    const xcb_atom_t skipTaskbar = x11.atom("_NET_WM_STATE_SKIP_TASKBAR");
    const xcb_atom_t skipPager = x11.atom("_NET_WM_STATE_SKIP_PAGER");

    windows->showSettingsWindow();
    windows->showPermissionGuideWindow();
    QWidget* settings = windows->settingsWindow();
    QWidget* guide = windows->permissionWindow();
    ASSERT_NE(settings, nullptr);
    ASSERT_NE(guide, nullptr);
    // Another ordinary window of ours, as the panel is on a desktop without a tray: it follows the choice.
    QWidget other;
    other.setWindowTitle(QStringLiteral("other window"));
    other.resize(240, 120);
    other.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&other));

    auto workWindowsListed = [&] {
        for (QWidget* window : {settings, guide}) {
            if (!managed(window) || states(window).contains(skipTaskbar) || states(window).contains(skipPager)) {
                return false;
            }
        }
        return true;
    };
    // The other window's state shows that the window manager has taken in all three.
    EXPECT_TRUE(VirtualDesktop::waitUntil(
        [&] { return managed(&other) && states(&other).contains(skipTaskbar) && states(&other).contains(skipPager); }));
    EXPECT_TRUE(workWindowsListed());

    controller->setDockIconVisible(true);
    EXPECT_TRUE(VirtualDesktop::waitUntil(
        [&] { return !states(&other).contains(skipTaskbar) && !states(&other).contains(skipPager); }));
    EXPECT_TRUE(workWindowsListed());

    controller->setDockIconVisible(false);
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return states(&other).contains(skipTaskbar); }));
    EXPECT_TRUE(workWindowsListed());

    // Closed and opened again while Lattica keeps out of the taskbar: listed again.
    settings->close();
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return !managed(settings); }));
    windows->showSettingsWindow();
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return managed(settings); }));
    EXPECT_TRUE(workWindowsListed()) << "the settings window came back without the taskbar";
}

// Some tray hosts report one double click on the icon as two activations, one right after the other (the
// GNOME Shell host does, until it knows the icon takes them): the second, within the double-click time of
// the one that opened the panel, leaves it open. Once that time is over, an activation closes it.
TEST_F(PanelOnDesktop, AnActivationWithinTheDoubleClickTimeOfTheOpeningLeavesThePanelOpen) {
    // Longer than the opening can take on a loaded machine.
    QGuiApplication::styleHints()->setMouseDoubleClickInterval(60000);
    Q_EMIT app->trayIcon()->activated(QSystemTrayIcon::Trigger);
    ASSERT_TRUE(app->panel() && app->panel()->isVisible());
    Q_EMIT app->trayIcon()->activated(QSystemTrayIcon::DoubleClick);
    EXPECT_TRUE(app->panel()->isVisible());

    QGuiApplication::styleHints()->setMouseDoubleClickInterval(0);
    Q_EMIT app->trayIcon()->activated(QSystemTrayIcon::Trigger);
    EXPECT_FALSE(app->panel()->isVisible());
}

}  // namespace
