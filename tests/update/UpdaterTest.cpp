// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QPushButton>
#include <QSignalSpy>

#include "BuildConfig.h"
#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/controller/AppController.h"
#include "app/ui/update/UpdatePresenter.h"
#include "app/ui/update/UpdateWindow.h"
#include "app/update/Updater.h"
#include "platform/fake/FakePlatform.h"
#include "tests/update/AppcastFixtures.h"
#include "tests/update/LoopbackHttpServer.h"

using AppcastFixtures::Release;
using Outcome = UpdateCheckResult::Outcome;

namespace {

class UpdaterTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(server.isListening());
        qputenv("LATTICA_APPCAST_URL", server.url(QStringLiteral("/appcast.xml")).toEncoded());
        updater()->setHostVersions(QStringLiteral("100"), QStringLiteral("1.0.0"));
        updater()->setSystemVersion(QStringLiteral("12"));
        updater()->setCheckTimeout(std::chrono::milliseconds(5000));
    }

    void TearDown() override {
        updater()->setClock({});
        updater()->setSchedulePollInterval(Updater::kSchedulePollInterval);
        updater()->cancelCheck();
        if (UpdateWindow* window = presenter.updateWindow()) {
            window->hide();
        }
        qunsetenv("LATTICA_APPCAST_URL");
    }

    Updater* updater() { return &m_updater; }

    void serveFeed(const QList<Release>& releases) {
        server.setRoute(QStringLiteral("/appcast.xml"), {200, AppcastFixtures::feed(releases)});
    }

    // Waits for the running check to report, and returns whether it was user-initiated.
    bool waitForCheck(QSignalSpy& finished) {
        EXPECT_TRUE(finished.wait(10000));
        EXPECT_EQ(finished.count(), 1);
        return !finished.isEmpty() && finished.first().at(1).toBool();
    }

    bool windowVisible() { return presenter.updateWindow() && presenter.updateWindow()->isVisible(); }

    FakePlatform platform;
    LoopbackHttpServer server;
    Updater m_updater;
    KeyboardShortcuts::ActionShortcuts shortcuts;
    UpdatePresenter presenter{m_updater};
};

TEST_F(UpdaterTest, FeedUrlIsTheBuildsAppcastUnlessTheEnvironmentOverridesIt) {
    UpdateFeed feed;
    EXPECT_EQ(feed.feedURLString(), server.url(QStringLiteral("/appcast.xml")).toString());
    qunsetenv("LATTICA_APPCAST_URL");
    EXPECT_EQ(feed.feedURLString(), QString::fromLatin1(BuildConfig::kAppcastUrl));
}

TEST_F(UpdaterTest, UpdaterReadsTheFeedTheEnvironmentNames) {
    EXPECT_EQ(updater()->feedURL(), server.url(QStringLiteral("/appcast.xml")));
    const QUrl elsewhere = server.url(QStringLiteral("/elsewhere.xml"));
    qputenv("LATTICA_APPCAST_URL", elsewhere.toString().toUtf8());
    EXPECT_EQ(updater()->feedURL(), elsewhere);
}

TEST_F(UpdaterTest, PreferenceOffAtStartLeavesAutomaticChecksOff) {
    platform.settings.setBool(QStringLiteral("autoCheckForUpdatesOnLaunch"), false);
    updater()->setAutomaticallyChecksForUpdates(true);
    AppController appController(shortcuts, m_updater);
    EXPECT_FALSE(appController.autoCheckForUpdatesEnabled());
    EXPECT_FALSE(updater()->automaticallyChecksForUpdates());
}

TEST_F(UpdaterTest, PreferenceOnAtStartTurnsAutomaticChecksOn) {
    updater()->setAutomaticallyChecksForUpdates(false);
    AppController appController(shortcuts, m_updater);
    EXPECT_TRUE(appController.autoCheckForUpdatesEnabled());
    EXPECT_TRUE(updater()->automaticallyChecksForUpdates());
}

TEST_F(UpdaterTest, TogglingThePreferenceTakesEffectWithoutRestart) {
    AppController appController(shortcuts, m_updater);
    QSignalSpy changed(updater(), &Updater::automaticallyChecksForUpdatesChanged);
    appController.setAutoCheckForUpdatesEnabled(false);
    EXPECT_FALSE(updater()->automaticallyChecksForUpdates());
    EXPECT_FALSE(platform.settings.boolValue(QStringLiteral("autoCheckForUpdatesOnLaunch")));
    appController.setAutoCheckForUpdatesEnabled(true);
    EXPECT_TRUE(updater()->automaticallyChecksForUpdates());
    EXPECT_TRUE(platform.settings.boolValue(QStringLiteral("autoCheckForUpdatesOnLaunch")));
    EXPECT_EQ(changed.count(), 2);
}

// A clock the test moves by hand.
struct ManualClock {
    QDateTime now = QDateTime(QDate(2026, 3, 1), QTime(9, 0), Qt::UTC);
    Updater::Clock source() {
        return [this] { return now; };
    }
};

TEST_F(UpdaterTest, WhileOnAScheduledCheckRunsOnceADay) {
    serveFeed({{QStringLiteral("100"), QStringLiteral("1.0.0"), {}}});
    ManualClock clock;
    updater()->setClock(clock.source());
    updater()->setAutomaticallyChecksForUpdates(true);
    QSignalSpy finished(updater(), &Updater::checkFinished);
    updater()->checkForUpdatesInBackground();  // the check at launch
    waitForCheck(finished);
    finished.clear();
    EXPECT_EQ(updater()->lastCheckStarted(), clock.now);
    const QDateTime launch = clock.now;

    clock.now = launch.addSecs(24 * 3600 - 60);
    EXPECT_FALSE(updater()->runScheduledCheckIfDue());
    EXPECT_FALSE(updater()->sessionInProgress());
    clock.now = launch.addSecs(24 * 3600);
    ASSERT_TRUE(updater()->runScheduledCheckIfDue());
    EXPECT_FALSE(waitForCheck(finished));
    finished.clear();
    clock.now = launch.addSecs(40 * 3600);
    EXPECT_FALSE(updater()->runScheduledCheckIfDue());
    clock.now = launch.addSecs(48 * 3600);
    ASSERT_TRUE(updater()->runScheduledCheckIfDue());
    EXPECT_FALSE(waitForCheck(finished));
    EXPECT_EQ(server.requestedPaths().size(), 3);
}

TEST_F(UpdaterTest, WithThePreferenceOffNoScheduledCheckRunsUntilItIsTurnedOn) {
    serveFeed({{QStringLiteral("100"), QStringLiteral("1.0.0"), {}}});
    ManualClock clock;
    updater()->setClock(clock.source());
    platform.settings.setBool(QStringLiteral("autoCheckForUpdatesOnLaunch"), false);
    AppController appController(shortcuts, m_updater);
    clock.now = clock.now.addDays(30);
    EXPECT_FALSE(updater()->scheduleTimer().isActive());
    EXPECT_FALSE(updater()->runScheduledCheckIfDue());
    EXPECT_FALSE(updater()->sessionInProgress());

    // Turned on in the settings: the schedule runs again without a restart.
    appController.setAutoCheckForUpdatesEnabled(true);
    EXPECT_TRUE(updater()->scheduleTimer().isActive());
    EXPECT_LE(updater()->scheduleTimer().intervalAsDuration(), std::chrono::hours(1));
    QSignalSpy finished(updater(), &Updater::checkFinished);
    ASSERT_TRUE(updater()->runScheduledCheckIfDue());
    waitForCheck(finished);
    appController.setAutoCheckForUpdatesEnabled(false);
    EXPECT_FALSE(updater()->scheduleTimer().isActive());
}

TEST_F(UpdaterTest, TheScheduleTimerStartsTheCheckThatIsDue) {
    serveFeed({{QStringLiteral("100"), QStringLiteral("1.0.0"), {}}});
    ManualClock clock;
    updater()->setClock(clock.source());
    updater()->setAutomaticallyChecksForUpdates(false);
    updater()->setAutomaticallyChecksForUpdates(true);
    QSignalSpy finished(updater(), &Updater::checkFinished);
    updater()->checkForUpdatesInBackground();
    waitForCheck(finished);
    finished.clear();

    // The poll is made short; the clock says a day has passed, so the timer alone starts a check.
    updater()->setSchedulePollInterval(std::chrono::milliseconds(5));
    clock.now = clock.now.addDays(1);
    EXPECT_FALSE(waitForCheck(finished));
    EXPECT_EQ(updater()->lastCheckStarted(), clock.now);
    EXPECT_EQ(server.requestedPaths().size(), 2);
}

TEST_F(UpdaterTest, BackgroundCheckWithoutNewerVersionShowsNothing) {
    serveFeed({{QStringLiteral("100"), QStringLiteral("1.0.0"), {}}});
    QSignalSpy finished(updater(), &Updater::checkFinished);
    updater()->checkForUpdatesInBackground();
    EXPECT_FALSE(waitForCheck(finished));
    EXPECT_EQ(finished.first().first().value<UpdateCheckResult>().outcome, Outcome::UpToDate);
    EXPECT_FALSE(windowVisible());
}

TEST_F(UpdaterTest, BackgroundCheckThatFailsShowsNothing) {
    QSignalSpy finished(updater(), &Updater::checkFinished);
    server.setRoute(QStringLiteral("/appcast.xml"), {404, QByteArray("gone"), "text/plain"});
    updater()->checkForUpdatesInBackground();
    EXPECT_FALSE(waitForCheck(finished));
    EXPECT_EQ(finished.first().first().value<UpdateCheckResult>().outcome, Outcome::Failed);
    EXPECT_FALSE(windowVisible());
}

TEST_F(UpdaterTest, BackgroundCheckWithNewerVersionShowsTheUpdate) {
    serveFeed({{QStringLiteral("101"), QStringLiteral("1.0.1"), {}}});
    QSignalSpy finished(updater(), &Updater::checkFinished);
    updater()->checkForUpdatesInBackground();
    waitForCheck(finished);
    ASSERT_TRUE(windowVisible());
    UpdateWindow* window = presenter.updateWindow();
    EXPECT_EQ(window->state(), UpdateWindow::State::UpdateFound);
    EXPECT_EQ(window->titleText(), QStringLiteral("A new version of Lattica is available!"));
    EXPECT_TRUE(window->messageText().contains(QStringLiteral("Lattica 1.0.1 is now available")));
    EXPECT_TRUE(window->messageText().contains(QStringLiteral("you have 1.0.0")));
    EXPECT_EQ(window->releaseNotesText(), QStringLiteral("Notes for 101"));
}

TEST_F(UpdaterTest, UserCheckShowsProgressThenUpToDate) {
    server.setRoute(QStringLiteral("/appcast.xml"), {200, AppcastFixtures::feed({{QStringLiteral("99"), {}, {}}})});
    QSignalSpy finished(updater(), &Updater::checkFinished);
    updater()->checkForUpdates();
    ASSERT_TRUE(windowVisible());
    UpdateWindow* window = presenter.updateWindow();
    EXPECT_EQ(window->state(), UpdateWindow::State::Checking);
    EXPECT_EQ(window->titleText(), QStringLiteral("Checking for updates…"));
    EXPECT_TRUE(waitForCheck(finished));
    EXPECT_EQ(window->state(), UpdateWindow::State::UpToDate);
    EXPECT_EQ(window->titleText(), QStringLiteral("You're up to date!"));
    EXPECT_EQ(window->messageText(), QStringLiteral("Lattica 1.0.0 is currently the newest version available."));
    EXPECT_TRUE(window->isVisible());
}

TEST_F(UpdaterTest, UserCheckShowsTheErrorOfA404) {
    QSignalSpy finished(updater(), &Updater::checkFinished);
    server.setRoute(QStringLiteral("/appcast.xml"), {404, QByteArray("gone"), "text/plain"});
    updater()->checkForUpdates();
    EXPECT_TRUE(waitForCheck(finished));
    ASSERT_TRUE(windowVisible());
    EXPECT_EQ(presenter.updateWindow()->state(), UpdateWindow::State::Error);
    EXPECT_EQ(presenter.updateWindow()->titleText(), QStringLiteral("Update Error!"));
    EXPECT_EQ(presenter.updateWindow()->messageText(),
              QStringLiteral("The update server answered with HTTP status 404."));
}

TEST_F(UpdaterTest, UserCheckOfAServerThatNeverAnswersEndsInAnError) {
    updater()->setCheckTimeout(std::chrono::milliseconds(200));
    server.setRoute(QStringLiteral("/appcast.xml"), {200, {}, {}, true});
    QSignalSpy finished(updater(), &Updater::checkFinished);
    updater()->checkForUpdates();
    EXPECT_TRUE(waitForCheck(finished));
    ASSERT_TRUE(windowVisible());
    EXPECT_EQ(presenter.updateWindow()->state(), UpdateWindow::State::Error);
    EXPECT_TRUE(presenter.updateWindow()->messageText().contains(QStringLiteral("did not answer")));
}

TEST_F(UpdaterTest, DownloadButtonOpensTheReleasesDownload) {
    serveFeed({{QStringLiteral("120"), QStringLiteral("1.2.0"), {}}});
    QSignalSpy finished(updater(), &Updater::checkFinished);
    updater()->checkForUpdates();
    EXPECT_TRUE(waitForCheck(finished));
    UpdateWindow* window = presenter.updateWindow();
    ASSERT_EQ(window->state(), UpdateWindow::State::UpdateFound);
    EXPECT_EQ(window->primaryButton()->text(), QStringLiteral("Download"));
    window->primaryButton()->click();
    ASSERT_EQ(platform.desktopLauncher.openedURLs.size(), 1);
    EXPECT_EQ(platform.desktopLauncher.openedURLs.first(),
              QUrl(QStringLiteral("https://downloads.example.test/lattica-120.tar.gz")));
    EXPECT_FALSE(window->isVisible());
}

TEST_F(UpdaterTest, RemindMeLaterClosesWithoutOpeningAnything) {
    serveFeed({{QStringLiteral("120"), QStringLiteral("1.2.0"), {}}});
    QSignalSpy finished(updater(), &Updater::checkFinished);
    updater()->checkForUpdates();
    EXPECT_TRUE(waitForCheck(finished));
    UpdateWindow* window = presenter.updateWindow();
    ASSERT_EQ(window->state(), UpdateWindow::State::UpdateFound);
    window->secondaryButton()->click();
    EXPECT_TRUE(platform.desktopLauncher.openedURLs.isEmpty());
    EXPECT_FALSE(window->isVisible());
}

TEST_F(UpdaterTest, UserCheckOfAnUnusableFeedAddressShowsWhy) {
    qputenv("LATTICA_APPCAST_URL", QByteArrayLiteral("http://updates.example.test/appcast.xml"));
    QSignalSpy finished(updater(), &Updater::checkFinished);
    updater()->checkForUpdates();
    EXPECT_TRUE(waitForCheck(finished));
    ASSERT_TRUE(windowVisible());
    EXPECT_EQ(presenter.updateWindow()->state(), UpdateWindow::State::Error);
    EXPECT_EQ(presenter.updateWindow()->messageText(), QStringLiteral("The update feed must be fetched over HTTPS."));
    EXPECT_TRUE(server.requestedPaths().isEmpty());
}

TEST_F(UpdaterTest, RunningSystemVersionIsKnown) {
    EXPECT_FALSE(Updater::runningSystemVersion().isEmpty());
}

TEST_F(UpdaterTest, CancellingTheProgressStopsTheCheck) {
    server.setRoute(QStringLiteral("/appcast.xml"), {200, {}, {}, true});
    updater()->checkForUpdates();
    ASSERT_TRUE(updater()->sessionInProgress());
    presenter.updateWindow()->primaryButton()->click();
    EXPECT_FALSE(updater()->sessionInProgress());
    EXPECT_FALSE(windowVisible());
}

TEST_F(UpdaterTest, UserCheckDuringABackgroundCheckReportsItsResult) {
    serveFeed({{QStringLiteral("100"), {}, {}}});
    QSignalSpy finished(updater(), &Updater::checkFinished);
    updater()->checkForUpdatesInBackground();
    updater()->checkForUpdates();
    EXPECT_TRUE(waitForCheck(finished));
    EXPECT_EQ(server.requestedPaths().size(), 1);
    ASSERT_TRUE(windowVisible());
    EXPECT_EQ(presenter.updateWindow()->state(), UpdateWindow::State::UpToDate);
}

}  // namespace

namespace {

// The found-update window with notes and buttons, kept as an image when LATTICA_SCREENSHOT_DIR is set.
TEST_F(UpdaterTest, FoundUpdateWindowShowsNotesAndBothButtons) {
    QByteArray feed = AppcastFixtures::feed({{QStringLiteral("130"), QStringLiteral("1.3.0"), {}}});
    feed.replace("<![CDATA[<p>Notes for 130</p>]]>",
                 "<![CDATA[<h3>What's new</h3><ul><li>Shortcuts for every display</li>"
                 "<li>Faster previews on large monitors</li></ul>]]>");
    feed.replace("</item>",
                 "<sparkle:releaseNotesLink>https://lattica.example.test/notes/1.3.0</sparkle:releaseNotesLink>"
                 "</item>");
    server.setRoute(QStringLiteral("/appcast.xml"), {200, feed});
    QSignalSpy finished(updater(), &Updater::checkFinished);
    updater()->checkForUpdates();
    EXPECT_TRUE(waitForCheck(finished));
    UpdateWindow* window = presenter.updateWindow();
    ASSERT_EQ(window->state(), UpdateWindow::State::UpdateFound);
    EXPECT_TRUE(window->releaseNotesText().contains(QStringLiteral("Shortcuts for every display")));
    EXPECT_TRUE(window->primaryButton()->isVisible());
    EXPECT_TRUE(window->primaryButton()->isEnabled());
    EXPECT_TRUE(window->secondaryButton()->isVisible());
    EXPECT_EQ(window->secondaryButton()->text(), QStringLiteral("Remind Me Later"));
    const QImage image = window->grab().toImage();
    EXPECT_GE(image.width(), 460);
    const QString directory = qEnvironmentVariable("LATTICA_SCREENSHOT_DIR");
    if (!directory.isEmpty()) {
        EXPECT_TRUE(image.save(directory + QStringLiteral("/settings-update-found.png")));
    }
}

}  // namespace
