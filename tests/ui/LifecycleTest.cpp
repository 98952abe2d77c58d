// SPDX-License-Identifier: MIT
#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QSignalSpy>
#include <QUrlQuery>

#include "BuildConfig.h"
#include "app/ui/guide/PermissionGuideView.h"
#include "app/update/Updater.h"
#include "tests/ui/UiFixture.h"

namespace {

class Lifecycle : public UiTest {
protected:
    void TearDown() override {
        for (QWidget* window : {windows().settingsWindow(), windows().permissionWindow()}) {
            if (window) {
                window->close();
            }
        }
        UiTest::TearDown();
    }
    static QPoint topCentreOrigin(const QWidget& window) {
        const QRect visible = QGuiApplication::primaryScreen()->availableGeometry();
        return {visible.x() + visible.width() / 2 - window.width() / 2, visible.y() + 24};
    }
};

TEST_F(Lifecycle, SettingsWindowRequestedTwiceIsTheSameWindowPlacedAgain) {
    makeController();
    windows().showSettingsWindow();
    QWidget* first = windows().settingsWindow();
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(first->isVisible());
    EXPECT_EQ(first->size(), QSize(760, 540));
    EXPECT_EQ(first->pos(), topCentreOrigin(*first));

    first->close();
    EXPECT_FALSE(first->isVisible());
    first->move(3, 3);
    windows().showSettingsWindow();
    EXPECT_EQ(windows().settingsWindow(), first);
    EXPECT_TRUE(first->isVisible());
    EXPECT_EQ(first->pos(), topCentreOrigin(*first));
    EXPECT_EQ(first->windowTitle(), QString());
}

TEST_F(Lifecycle, GuideOpensAtLaunchWithoutPermissions) {
    platform.sessionCheck.screenCaptureAvailable = false;
    makeController();
    controller().start();
    QWidget* guide = windows().permissionWindow();
    ASSERT_NE(guide, nullptr);
    EXPECT_TRUE(guide->isVisible());
    EXPECT_EQ(guide->windowTitle(), QStringLiteral("Grant Required Permissions"));
    EXPECT_NE(guide->findChild<PermissionGuideView*>(), nullptr);
    EXPECT_EQ(guide->width(), 640);
    EXPECT_GE(guide->height(), 480);
    EXPECT_EQ(guide->pos(), topCentreOrigin(*guide));
}

TEST_F(Lifecycle, GuideStaysClosedAtLaunchWithBothPermissions) {
    makeController();
    controller().start();
    EXPECT_EQ(windows().permissionWindow(), nullptr);
}

TEST_F(Lifecycle, GuideRequestedTwiceIsTheSameWindow) {
    platform.sessionCheck.windowControlAvailable = false;
    makeController();
    windows().showPermissionGuideWindow();
    QWidget* first = windows().permissionWindow();
    first->close();
    windows().showPermissionGuideWindow();
    EXPECT_EQ(windows().permissionWindow(), first);
    EXPECT_TRUE(first->isVisible());
}

TEST_F(Lifecycle, LaunchMakesTheProgramAnAccessoryByDefault) {
    platform.taskbarPresence.shown = true;
    makeController();
    controller().start();
    EXPECT_FALSE(platform.taskbarPresence.shown);
}

TEST_F(Lifecycle, LaunchShowsTheProgramInTheTaskbarWhenTheDockIconIsWanted) {
    platform.settings.setBool(QStringLiteral("dockIconVisible"), true);
    platform.taskbarPresence.shown = false;
    makeController();
    controller().start();
    EXPECT_TRUE(platform.taskbarPresence.shown);
}

TEST_F(Lifecycle, LaunchRereadsThePermissions) {
    makeController();
    platform.sessionCheck.screenCaptureAvailable = false;
    controller().start();
    EXPECT_FALSE(controller().permissionState().screenRecordingGranted);
    ASSERT_NE(windows().permissionWindow(), nullptr);
}

TEST_F(Lifecycle, PresentingAWindowBringsTheProgramToTheFront) {
    makeController();
    const int before = platform.foregroundActivation.activations;
    windows().showSettingsWindow();
    EXPECT_GT(platform.foregroundActivation.activations, before);
}

TEST_F(Lifecycle, ActiveScreenIsTheOneUnderThePointer) {
    makeController();
    QScreen* screen = QGuiApplication::primaryScreen();
    QCursor::setPos(screen->geometry().center());
    windows().showSettingsWindow();
    EXPECT_TRUE(screen->geometry().contains(windows().settingsWindow()->geometry().center()));
}

TEST_F(Lifecycle, SupportMailCarriesSubjectAndBody) {
    makeController();
    controller().contactSupport();
    ASSERT_EQ(platform.desktopLauncher.openedURLs.size(), 1);
    const QUrl url = platform.desktopLauncher.openedURLs[0];
    EXPECT_EQ(url.scheme(), QStringLiteral("mailto"));
    EXPECT_EQ(url.path(), QString::fromLatin1(BuildConfig::kSupportEmail));
    const QUrlQuery query(url);
    EXPECT_EQ(query.queryItemValue(QStringLiteral("subject"), QUrl::FullyDecoded), QStringLiteral("Lattica Support"));
    const QString expectedBody = QStringLiteral("Please describe your issue here.\n\n---\nApp: Lattica\nVersion: ") +
                                 QString::fromLatin1(BuildConfig::kVersion) + QStringLiteral(" (") +
                                 QString::fromLatin1(BuildConfig::kBuildNumber) +
                                 QStringLiteral(
                                     ")\nDistribution: Test Linux 1.0\nKernel: Linux 6.1\nDesktop: "
                                     "TestDesktop\nSession: x11\nBackend: Fake");
    EXPECT_EQ(query.queryItemValue(QStringLiteral("body"), QUrl::FullyDecoded), expectedBody);
    // Line feeds and blanks travel percent-encoded.
    const QString encoded = url.toString(QUrl::FullyEncoded);
    EXPECT_TRUE(encoded.contains(QStringLiteral("subject=Lattica%20Support"))) << encoded.toStdString();
    EXPECT_TRUE(encoded.contains(QStringLiteral("%0A%0A---%0AApp:%20Lattica"))) << encoded.toStdString();
}

}  // namespace

namespace {

// The update feed points at a closed port on this machine, so a check ends at once without the network.
class LifecycleUpdates : public Lifecycle {
protected:
    void SetUp() override {
        Lifecycle::SetUp();
        qputenv("LATTICA_APPCAST_URL", "http://127.0.0.1:9/appcast.xml");
    }
    void TearDown() override {
        Updater* updater = controller().updater();
        waitUntil([&] { return !updater->sessionInProgress(); });
        qunsetenv("LATTICA_APPCAST_URL");
        Lifecycle::TearDown();
    }
};

TEST_F(LifecycleUpdates, LaunchChecksForUpdatesInTheBackgroundWhenEnabled) {
    platform.settings.setBool(QStringLiteral("autoCheckForUpdatesOnLaunch"), true);
    makeController();
    Updater* updater = controller().updater();
    QSignalSpy finished(updater, &Updater::checkFinished);
    controller().start();
    ASSERT_TRUE(waitUntil([&] { return finished.count() == 1; }, 10000));
    EXPECT_FALSE(finished[0][1].toBool()) << "a background check, not one the user asked for";
}

TEST_F(LifecycleUpdates, LaunchLeavesUpdatesAloneWhenDisabled) {
    makeController();
    Updater* updater = controller().updater();
    QSignalSpy finished(updater, &Updater::checkFinished);
    controller().start();
    EXPECT_FALSE(updater->sessionInProgress());
    QCoreApplication::processEvents();
    EXPECT_EQ(finished.count(), 0);
}

}  // namespace
