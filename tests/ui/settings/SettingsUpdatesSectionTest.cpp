// SPDX-License-Identifier: MIT
#include <QPushButton>
#include <QSignalSpy>

#include "app/ui/settings/SettingsToggle.h"
#include "app/ui/settings/SettingsUpdatesSection.h"
#include "app/ui/update/UpdatePresenter.h"
#include "app/ui/update/UpdateWindow.h"
#include "app/update/Updater.h"
#include "tests/ui/settings/SettingsFixture.h"
#include "tests/update/AppcastFixtures.h"
#include "tests/update/LoopbackHttpServer.h"

namespace {

class SettingsUpdatesSectionTest : public SettingsFixture {
protected:
    void TearDown() override {
        if (controller) {
            updater()->cancelCheck();
        }
        presenter.reset();
        SettingsFixture::TearDown();
    }

    SettingsUpdatesSection* updates() {
        makeView();
        // Shows the checks the section starts, as the program's window presenter does.
        presenter = std::make_unique<UpdatePresenter>(*controller->updater());
        view->setSelectedSection(SettingsSection::Updates);
        return view->findChild<SettingsUpdatesSection*>();
    }
    Updater* updater() { return controller->updater(); }

    std::unique_ptr<UpdatePresenter> presenter;
};

TEST_F(SettingsUpdatesSectionTest, ToggleShowsThePreference) {
    platform.settings.setBool(QStringLiteral("autoCheckForUpdatesOnLaunch"), false);
    SettingsUpdatesSection* section = updates();
    ASSERT_NE(section, nullptr);
    EXPECT_FALSE(section->automaticCheckToggle()->isChecked());
    EXPECT_FALSE(updater()->automaticallyChecksForUpdates());
}

TEST_F(SettingsUpdatesSectionTest, TogglingTakesEffectInTheUpdaterWithoutRestart) {
    SettingsUpdatesSection* section = updates();
    ASSERT_TRUE(section->automaticCheckToggle()->isChecked());
    ASSERT_TRUE(updater()->automaticallyChecksForUpdates());
    QTest::mouseClick(section->automaticCheckToggle(), Qt::LeftButton);
    EXPECT_FALSE(controller->autoCheckForUpdatesEnabled());
    EXPECT_FALSE(updater()->automaticallyChecksForUpdates());
    EXPECT_FALSE(platform.settings.boolValue(QStringLiteral("autoCheckForUpdatesOnLaunch")));
    QTest::mouseClick(section->automaticCheckToggle(), Qt::LeftButton);
    EXPECT_TRUE(updater()->automaticallyChecksForUpdates());
    EXPECT_TRUE(platform.settings.boolValue(QStringLiteral("autoCheckForUpdatesOnLaunch")));
}

TEST_F(SettingsUpdatesSectionTest, WithThePreferenceOffLaunchChecksNothing) {
    LoopbackHttpServer server;
    server.setRoute(QStringLiteral("/appcast.xml"),
                    {200, AppcastFixtures::feed({{QStringLiteral("999"), QStringLiteral("9.9.9"), {}}})});
    qputenv("LATTICA_APPCAST_URL", server.url(QStringLiteral("/appcast.xml")).toEncoded());
    platform.settings.setBool(QStringLiteral("autoCheckForUpdatesOnLaunch"), false);
    makeView(false);
    controller->start();
    EXPECT_FALSE(updater()->automaticallyChecksForUpdates());
    EXPECT_FALSE(updater()->sessionInProgress());

    // The same launch with the preference on does reach the feed, so the check above could have seen one.
    controller->setAutoCheckForUpdatesEnabled(true);
    controller->start();
    EXPECT_TRUE(QTest::qWaitFor([&server] { return server.requestedPaths().size() == 1; }, 5000));
}

TEST_F(SettingsUpdatesSectionTest, CheckButtonStartsAUserCheckWithProgressAndResult) {
    LoopbackHttpServer server;
    server.setRoute(QStringLiteral("/appcast.xml"),
                    {200, AppcastFixtures::feed({{QStringLiteral("999"), QStringLiteral("9.9.9"), {}}})});
    qputenv("LATTICA_APPCAST_URL", server.url(QStringLiteral("/appcast.xml")).toEncoded());
    SettingsUpdatesSection* section = updates();
    EXPECT_EQ(section->checkButton()->text(), QStringLiteral("Check for Updates"));
    EXPECT_FALSE(section->checkButton()->icon().isNull());

    QSignalSpy finished(updater(), &Updater::checkFinished);
    QTest::mouseClick(section->checkButton(), Qt::LeftButton);
    UpdateWindow* window = presenter->updateWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->state(), UpdateWindow::State::Checking);
    ASSERT_TRUE(finished.wait(10000));
    EXPECT_EQ(window->state(), UpdateWindow::State::UpdateFound);
    EXPECT_TRUE(window->messageText().contains(QStringLiteral("9.9.9")));
}

}  // namespace
