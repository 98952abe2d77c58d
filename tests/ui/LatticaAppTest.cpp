// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QMenu>
#include <QPixmapCache>
#include <QPointer>
#include <QPushButton>
#include <QSet>
#include <QTemporaryDir>
#include <QTimer>
#include <QtMath>
#include <algorithm>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/ui/LatticaApp.h"
#include "app/ui/panel/DisplayCardView.h"
#include "app/ui/panel/PanelGeometry.h"
#include "app/ui/panel/TrayPanelView.h"
#include "tests/ui/UiFixture.h"

namespace {

// The offscreen platform has no tray host, so these run the program's tray-less path.
class LatticaAppWithoutTray : public UiTest {
protected:
    void TearDown() override {
        app.reset();
        UiTest::TearDown();
    }
    void start() {
        platform.trayHost.available = false;
        app = std::make_unique<LatticaApp>(controller(), windows(), &platform.trayHost);
        ::testing::internal::CaptureStdout();
        app->start();
        output = QString::fromStdString(::testing::internal::GetCapturedStdout());
    }
    QSize expectedSize() {
        const bool granted =
            platform.sessionCheck.screenCaptureAvailable && platform.sessionCheck.windowControlAvailable;
        const int count = static_cast<int>(platform.monitors.monitors().size());
        return {qCeil(PanelGeometry::popupWidth(granted, count)), qCeil(PanelGeometry::popupHeight(granted, count))};
    }

    std::unique_ptr<LatticaApp> app;
    QString output;
};

TEST_F(LatticaAppWithoutTray, SaysSoAndOpensThePanelAsAnOrdinaryWindow) {
    makeController();
    start();
    EXPECT_FALSE(app->hasTrayHost());
    EXPECT_TRUE(output.contains(QStringLiteral("no system tray is available"))) << output.toStdString();
    ASSERT_TRUE(waitUntil([&] { return app->panel() && app->panel()->isVisible(); }));
    EXPECT_FALSE(app->panel()->windowFlags().testFlag(Qt::Popup));
    EXPECT_EQ(app->panel()->windowTitle(), QStringLiteral("Lattica"));
}

TEST_F(LatticaAppWithoutTray, OpeningRefreshesAndSizesThePanelFromTheState) {
    setDisplayCount(3);
    makeController();
    start();
    ASSERT_TRUE(waitUntil([&] { return app->panel() && app->panel()->isVisible(); }));
    EXPECT_EQ(controller().displays().size(), 3);
    EXPECT_EQ(app->panel()->size(), expectedSize());
    EXPECT_EQ(app->panel()->size(), QSize(640, 412));
    EXPECT_EQ(app->panelContent()->cards().size(), 3);
}

TEST_F(LatticaAppWithoutTray, APanelBuiltAheadShowsTheDisplaysConnectedAtTheOpening) {
    setDisplayCount(3);
    makeController();
    controller().refreshPermissions();
    app = std::make_unique<LatticaApp>(controller(), windows(), &platform.trayHost);
    app->prebuildPanel();
    ASSERT_NE(app->panel(), nullptr);
    EXPECT_FALSE(app->panel()->isVisible());
    EXPECT_TRUE(app->panel()->windowFlags().testFlag(Qt::Popup));
    EXPECT_EQ(app->panel()->findChildren<DisplayCardView*>().size(), 3);
    // Nothing was published for it: the controller's state is what the launch left.
    EXPECT_TRUE(controller().displays().isEmpty());

    setDisplayCount(2);
    app->openPanel();
    ASSERT_TRUE(waitUntil([&] { return app->panel()->isVisible(); }));
    ASSERT_EQ(app->panelContent()->cards().size(), 2);
    EXPECT_EQ(app->panelContent()->cards()[1]->display().name, QStringLiteral("Display 2"));
    EXPECT_EQ(app->panel()->size(), expectedSize());
    app->closePanel();
}

// Qt's pixmap cache wakes the program every 10-30 s while it holds anything: with no window shown it
// must hold nothing.
TEST_F(LatticaAppWithoutTray, APanelBuiltAheadLeavesQtsPixmapCacheEmpty) {
    setDisplayCount(3);
    makeController();
    controller().refreshPermissions();
    app = std::make_unique<LatticaApp>(controller(), windows(), &platform.trayHost);
    const QString key = QStringLiteral("lattica-test-marker");
    ASSERT_TRUE(QPixmapCache::insert(key, QPixmap(8, 8)));
    app->prebuildPanel();
    // Kept while the painting's turn lasts, emptied after it.
    EXPECT_TRUE(QPixmapCache::find(key, nullptr));
    EXPECT_TRUE(waitUntil([&] { return !QPixmapCache::find(key, nullptr); }));
    EXPECT_FALSE(app->panel()->isVisible());
}

TEST_F(LatticaAppWithoutTray, HidingAnyWindowEmptiesQtsPixmapCacheButHidingAPartOfOneDoesNot) {
    makeController();
    start();
    ASSERT_TRUE(waitUntil([&] { return app->panel() && app->panel()->isVisible(); }));
    QPixmap marker(8, 8);
    marker.fill(Qt::red);
    const QString key = QStringLiteral("lattica-test-marker");
    auto cached = [&] { return QPixmapCache::find(key, nullptr); };

    QWidget window;
    auto* part = new QPushButton(QStringLiteral("part"), &window);
    window.show();
    ASSERT_TRUE(QPixmapCache::insert(key, marker));
    part->hide();
    QCoreApplication::processEvents();
    EXPECT_TRUE(cached());

    window.hide();
    EXPECT_TRUE(waitUntil([&] { return !cached(); }));

    ASSERT_TRUE(QPixmapCache::insert(key, marker));
    app->closePanel();
    EXPECT_TRUE(waitUntil([&] { return !cached(); }));
}

TEST_F(LatticaAppWithoutTray, EveryOpeningRunsTheRefresh) {
    makeController();
    start();
    ASSERT_TRUE(waitUntil([&] { return app->panel() && app->panel()->isVisible(); }));
    finishBackgroundWork();
    const int captures = platform.monitors.captureCount();
    app->closePanel();
    app->openPanel();
    EXPECT_TRUE(controller().isLoadingPreviews());
    finishBackgroundWork();
    EXPECT_EQ(platform.monitors.captureCount(), captures + 2);
}

TEST_F(LatticaAppWithoutTray, ClosingThePanelLetsThePreviewPicturesGo) {
    makeController();
    start();
    ASSERT_TRUE(waitUntil([&] { return app->panel() && app->panel()->isVisible(); }));
    finishBackgroundWork();
    auto pictures = [&] {
        return std::count_if(controller().displays().cbegin(), controller().displays().cend(),
                             [](const DisplaySnapshot& display) { return display.previewImage.has_value(); });
    };
    const qsizetype displays = controller().displays().size();
    ASSERT_GT(displays, 0);
    ASSERT_EQ(pictures(), displays);
    app->closePanel();
    EXPECT_EQ(pictures(), 0);
    EXPECT_EQ(controller().displays().size(), displays);
    // A move's refresh while the panel is closed keeps none either; the next opening takes them again.
    controller().refreshForMenuOpen();
    finishBackgroundWork();
    EXPECT_EQ(pictures(), 0);
    app->openPanel();
    finishBackgroundWork();
    EXPECT_EQ(pictures(), displays);
}

TEST_F(LatticaAppWithoutTray, PanelResizesWhenTheStateChangesTheFormulas) {
    makeController();
    start();
    ASSERT_TRUE(waitUntil([&] { return app->panel() && app->panel()->isVisible(); }));
    EXPECT_EQ(app->panel()->size(), QSize(460, 388));
    platform.sessionCheck.windowControlAvailable = false;
    controller().refreshForMenuOpen();
    EXPECT_EQ(app->panel()->size(), QSize(460, 235));
    platform.sessionCheck.windowControlAvailable = true;
    setDisplayCount(4);
    controller().refreshForMenuOpen();
    EXPECT_EQ(app->panel()->size(), QSize(848, 444));
}

TEST_F(LatticaAppWithoutTray, EscapeClosesThePanel) {
    makeController();
    start();
    ASSERT_TRUE(waitUntil([&] { return app->panel() && app->panel()->isVisible(); }));
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(app->panel(), &escape);
    EXPECT_FALSE(app->panel()->isVisible());
}

TEST_F(LatticaAppWithoutTray, SettingsButtonClosesThePanel) {
    makeController();
    start();
    ASSERT_TRUE(waitUntil([&] { return app->panel() && app->panel()->isVisible(); }));
    Q_EMIT app->panelContent()->dismissRequested();
    EXPECT_FALSE(app->panel()->isVisible());
}

TEST_F(LatticaAppWithoutTray, PanelSettingsButtonOpensTheSettingsWindow) {
    makeController();
    start();
    ASSERT_TRUE(waitUntil([&] { return app->panel() && app->panel()->isVisible(); }));
    ASSERT_EQ(windows().settingsWindow(), nullptr);
    app->panelContent()->findChild<QPushButton*>(QStringLiteral("settingsButton"))->click();
    ASSERT_NE(windows().settingsWindow(), nullptr);
    EXPECT_TRUE(windows().settingsWindow()->isVisible());
    windows().settingsWindow()->close();
}

// Sees the application asked to quit (QCoreApplication::quit() sends it a Quit event).
class QuitWatcher : public QObject {
public:
    QuitWatcher() { qApp->installEventFilter(this); }
    ~QuitWatcher() override { qApp->removeEventFilter(this); }
    bool asked = false;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == qApp && event->type() == QEvent::Quit) {
            asked = true;
        }
        return QObject::eventFilter(watched, event);
    }
};

// Whether closing the ordinary panel window ends the program: the event loop runs until a call queued
// after the close, and the quit the close may have asked for comes before it.
bool closingThePanelQuits(QWidget* panel) {
    QuitWatcher watcher;
    panel->close();
    QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(0); });
    QCoreApplication::exec();
    return watcher.asked;
}

TEST_F(LatticaAppWithoutTray, TrayHostThatAppearsLaterTakesThePanel) {
    makeController();
    start();
    ASSERT_TRUE(waitUntil([&] { return app->panel() && app->panel()->isVisible(); }));
    EXPECT_FALSE(app->hasTrayHost());
    const QPointer<QWidget> ordinaryWindow = app->panel();

    ::testing::internal::CaptureStdout();
    platform.trayHost.setAvailable(true);
    const QString said = QString::fromStdString(::testing::internal::GetCapturedStdout());
    EXPECT_TRUE(said.contains(QStringLiteral("a system tray is available now"))) << said.toStdString();
    EXPECT_TRUE(app->hasTrayHost());
    EXPECT_TRUE(ordinaryWindow.isNull()) << "the ordinary window gave way to the tray icon";
    // In its place the tray's popup is built ahead of the first click, and waits hidden.
    ASSERT_NE(app->panel(), nullptr);
    EXPECT_FALSE(app->panel()->isVisible());
    EXPECT_TRUE(app->panel()->windowFlags().testFlag(Qt::Popup));

    app->openPanel();
    ASSERT_NE(app->panel(), nullptr);
    EXPECT_TRUE(app->panel()->windowFlags().testFlag(Qt::Popup));
    app->closePanel();
}

TEST_F(LatticaAppWithoutTray, ClosingTheWindowEndsTheProgramWhenNothingElseReachesIt) {
    makeController();
    start();
    ASSERT_TRUE(waitUntil([&] { return app->panel() && app->panel()->isVisible(); }));
    EXPECT_TRUE(closingThePanelQuits(app->panel()));
}

TEST_F(LatticaAppWithoutTray, ClosingTheWindowKeepsTheProgramWhileADisplayShortcutIsSet) {
    makeController();
    start();
    ASSERT_TRUE(waitUntil([&] { return app->panel() && app->panel()->isVisible(); }));
    ASSERT_FALSE(controller().connectedShortcutDisplays().isEmpty());
    const QString display = controller().connectedShortcutDisplays().first().id;
    controller().shortcuts().setShortcut(
        KeyboardShortcuts::Shortcut(19 /* the 2 key */, 0x1000 | 0x0800 /* control, alt */),
        KeyboardShortcuts::Name(AppController::shortcutNameRawValue(display)));
    EXPECT_FALSE(closingThePanelQuits(app->panel()));
    controller().shortcuts().setShortcut(std::nullopt,
                                         KeyboardShortcuts::Name(AppController::shortcutNameRawValue(display)));
}

TEST_F(LatticaAppWithoutTray, TrayMenuOffersThePanelFirstThenSettingsAndQuit) {
    makeController();
    start();
    QList<QAction*> actions;
    QStringList texts;
    for (QAction* action : app->trayMenu()->actions()) {
        if (!action->isSeparator()) {
            actions.append(action);
            texts.append(action->text());
        }
    }
    ASSERT_EQ(texts, (QStringList{QStringLiteral("Open panel"), QStringLiteral("Settings"), QStringLiteral("Quit")}));
    // The panel's item is the one a host may show as the default.
    EXPECT_EQ(app->trayMenu()->defaultAction(), actions[0]);

    actions[1]->trigger();
    ASSERT_NE(windows().settingsWindow(), nullptr);
    EXPECT_TRUE(windows().settingsWindow()->isVisible());
    windows().settingsWindow()->close();

    // Without a tray the panel window is open from the start: closed, the menu's item opens it again.
    ASSERT_TRUE(waitUntil([&] { return app->panel() && app->panel()->isVisible(); }));
    app->closePanel();
    ASSERT_FALSE(app->panel()->isVisible());
    int shown = 0;
    QObject::connect(app.get(), &LatticaApp::panelShown, [&shown] { ++shown; });
    actions[0]->trigger();
    EXPECT_EQ(shown, 1);
    EXPECT_TRUE(app->panel()->isVisible());
}

TEST_F(LatticaAppWithoutTray, LaunchSequenceRunsOnceTheEventLoopRuns) {
    platform.sessionCheck.windowControlAvailable = false;
    makeController();
    start();
    EXPECT_EQ(windows().permissionWindow(), nullptr);
    ASSERT_TRUE(waitUntil([&] { return windows().permissionWindow() != nullptr; }));
    EXPECT_TRUE(windows().permissionWindow()->isVisible());
    EXPECT_FALSE(platform.taskbarPresence.shown);
    windows().permissionWindow()->close();
}

// Icon themes looked up in a folder of the test's own, restored afterwards.
class ProgramIcon : public ::testing::Test {
protected:
    void SetUp() override {
        m_savedPaths = QIcon::themeSearchPaths();
        m_savedTheme = QIcon::themeName();
        QIcon::setThemeSearchPaths({m_themes.path()});
        QIcon::setThemeName(QStringLiteral("hicolor"));
    }
    void TearDown() override {
        QIcon::setThemeSearchPaths(m_savedPaths);
        QIcon::setThemeName(m_savedTheme);
    }

    // The hicolor theme with the program's icons where the package installs them.
    bool installIcons() const {
        const QString theme = m_themes.filePath(QStringLiteral("hicolor"));
        QFile index(theme + QStringLiteral("/index.theme"));
        if (!QDir().mkpath(theme + QStringLiteral("/scalable/apps")) ||
            !QDir().mkpath(theme + QStringLiteral("/symbolic/apps")) || !index.open(QIODevice::WriteOnly)) {
            return false;
        }
        index.write(
            "[Icon Theme]\nName=Hicolor\nDirectories=scalable/apps,symbolic/apps\n\n"
            "[scalable/apps]\nSize=128\nMinSize=1\nMaxSize=256\nType=Scalable\n\n"
            "[symbolic/apps]\nSize=16\nMinSize=8\nMaxSize=512\nType=Scalable\n");
        index.close();
        const QString icons = QStringLiteral(LATTICA_SOURCE_DIR "/packaging/icons/");
        return QFile::copy(icons + QStringLiteral("app.lattica.Lattica.svg"),
                           theme + QStringLiteral("/scalable/apps/app.lattica.Lattica.svg")) &&
               QFile::copy(icons + QStringLiteral("app.lattica.Lattica-symbolic.svg"),
                           theme + QStringLiteral("/symbolic/apps/app.lattica.Lattica-symbolic.svg"));
    }

private:
    QTemporaryDir m_themes;
    QStringList m_savedPaths;
    QString m_savedTheme;
};

// The share of a picture's pixels in the program's blue, opaque.
double blueShare(const QImage& image) {
    int blue = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            blue += colour.alpha() > 200 && colour.blue() > 200 && colour.red() < 120 ? 1 : 0;
        }
    }
    return double(blue) / (image.width() * image.height());
}

TEST_F(ProgramIcon, IsDrawnAtTheSizeTheTrayAsksFor) {
    // No theme has the program's icons: the program's icon and an XEmbed tray's are the drawn symbol.
    EXPECT_EQ(LatticaApp::programIcon().name(), QStringLiteral("rectangle.on.rectangle.angled"));
    EXPECT_EQ(LatticaApp::trayIconImage(false).name(), QStringLiteral("rectangle.on.rectangle.angled"));
    for (const int size : {16, 22, 24, 48}) {
        const QImage image = LatticaApp::programIcon().pixmap(size, size).toImage();
        ASSERT_EQ(image.size(), QSize(size, size));
        EXPECT_GT(blueShare(image), 1.0 / 8) << size;
    }
}

TEST_F(ProgramIcon, AStatusNotifierHostGetsTheDrawnIconAsPixelsWhenNoneIsInstalled) {
    // A name the host's theme does not know would show as a placeholder: the icon has none, so the
    // toolkit hands the host its pixels.
    const QIcon tray = LatticaApp::trayIconImage(true);
    EXPECT_TRUE(tray.name().isEmpty()) << tray.name().toStdString();
    const QList<QSize> sizes = tray.availableSizes();
    for (const int size : {16, 22, 24, 32, 48, 64}) {
        EXPECT_TRUE(sizes.contains(QSize(size, size))) << size;
        const QImage image = tray.pixmap(QSize(size, size)).toImage();
        ASSERT_EQ(image.size(), QSize(size, size));
        EXPECT_GT(blueShare(image), 1.0 / 8) << size;
    }
}

TEST_F(ProgramIcon, InstalledIconsComeFromTheThemeAndATrayThatRecoloursGetsTheMonochromeOne) {
    ASSERT_TRUE(installIcons());
    EXPECT_EQ(LatticaApp::programIcon().name(), QStringLiteral("app.lattica.Lattica"));
    // An XEmbed tray paints pixels as given: the full-colour icon.
    EXPECT_EQ(LatticaApp::trayIconImage(false).name(), QStringLiteral("app.lattica.Lattica"));
    const QIcon tray = LatticaApp::trayIconImage(true);
    // The name is what a StatusNotifierItem host is given, and recolours.
    EXPECT_EQ(tray.name(), QStringLiteral("app.lattica.Lattica-symbolic"));
    for (const int size : {16, 22, 48}) {
        const QImage image = tray.pixmap(size, size).toImage();
        ASSERT_EQ(image.size(), QSize(size, size));
        QSet<QRgb> colours;
        int painted = 0;
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x) {
                const QColor colour = image.pixelColor(x, y);
                if (colour.alpha() == 255) {
                    colours.insert(colour.rgb());
                    ++painted;
                }
            }
        }
        EXPECT_GT(painted, size * size / 4) << size;
        EXPECT_EQ(colours.size(), 1) << size;
    }
    // The full-colour icon is not monochrome: its tile is blue, its monitors white.
    const QImage full = LatticaApp::programIcon().pixmap(64, 64).toImage();
    EXPECT_GT(full.pixelColor(32, 8).blue(), 200);
    EXPECT_LT(full.pixelColor(32, 8).red(), 120);
}

}  // namespace
