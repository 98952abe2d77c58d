// SPDX-License-Identifier: MIT
#include <QDate>
#include <QLabel>
#include <QPushButton>
#include <QUrlQuery>

#include "BuildConfig.h"
#include "app/ui/settings/SettingsAboutSection.h"
#include "tests/ui/settings/SettingsFixture.h"

namespace {

class SettingsAboutSectionTest : public SettingsFixture {
protected:
    SettingsAboutSection* about() {
        makeView();
        view->setSelectedSection(SettingsSection::About);
        return view->findChild<SettingsAboutSection*>();
    }
};

TEST_F(SettingsAboutSectionTest, ShowsNameTaglineVersionAndCredits) {
    about();
    EXPECT_EQ(find<QLabel>(QStringLiteral("appName"))->text(), QStringLiteral("Lattica"));
    EXPECT_EQ(find<QLabel>(QStringLiteral("tagline"))->text(), QStringLiteral("Find Lost Windows Instantly"));
    EXPECT_EQ(find<QLabel>(QStringLiteral("versionLine"))->text(),
              QStringLiteral("Version ") + QString::fromLatin1(BuildConfig::kVersion) + QStringLiteral(" (") +
                  QString::fromLatin1(BuildConfig::kBuildNumber) + QStringLiteral(")"));
    const QString credits = find<QLabel>(QStringLiteral("creditsLine"))->text();
    EXPECT_TRUE(credits.contains(QString::number(QDate::currentDate().year()))) << credits.toStdString();
    EXPECT_TRUE(find<QLabel>(QStringLiteral("appName"))->isVisible());
}

TEST_F(SettingsAboutSectionTest, ContactSupportComposesTheSupportMail) {
    SettingsAboutSection* section = about();
    EXPECT_EQ(section->contactSupportButton()->text(), QStringLiteral("Contact Support"));
    EXPECT_FALSE(section->contactSupportButton()->icon().isNull());
    QTest::mouseClick(section->contactSupportButton(), Qt::LeftButton);
    ASSERT_EQ(platform.desktopLauncher.openedURLs.size(), 1);
    const QUrl mail = platform.desktopLauncher.openedURLs.first();
    EXPECT_EQ(mail.scheme(), QStringLiteral("mailto"));
    EXPECT_EQ(mail.path(), QString::fromLatin1(BuildConfig::kSupportEmail));
    EXPECT_EQ(QUrlQuery(mail).queryItemValue(QStringLiteral("subject")), QStringLiteral("Lattica Support"));
}

TEST_F(SettingsAboutSectionTest, GitHubLinkOpensTheProjectPage) {
    SettingsAboutSection* section = about();
    EXPECT_EQ(section->gitHubButton()->text(), QStringLiteral("GitHub"));
    EXPECT_FALSE(section->gitHubButton()->icon().isNull());
    EXPECT_NE(find<QWidget>(QStringLiteral("creditsCard")), nullptr);
    QTest::mouseClick(section->gitHubButton(), Qt::LeftButton);
    ASSERT_EQ(platform.desktopLauncher.openedURLs.size(), 1);
    EXPECT_EQ(platform.desktopLauncher.openedURLs.first(), QUrl(QString::fromLatin1(BuildConfig::kProjectUrl)));
}

TEST_F(SettingsAboutSectionTest, LinesAreComposedFromTheBuild) {
    EXPECT_EQ(SettingsAboutSection::versionLine(),
              QStringLiteral("Version %1 (%2)")
                  .arg(QString::fromLatin1(BuildConfig::kVersion), QString::fromLatin1(BuildConfig::kBuildNumber)));
    EXPECT_TRUE(SettingsAboutSection::creditsLine().contains(QString::number(QDate::currentDate().year())));
}

}  // namespace
