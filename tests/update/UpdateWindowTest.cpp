// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>
#include <QTextBrowser>

#include "app/ui/update/UpdateWindow.h"
#include "platform/fake/FakePlatform.h"

namespace {

AppcastItem release(const QString& downloadURL, const QString& infoURL = {}) {
    AppcastItem item;
    item.version = QStringLiteral("200");
    item.shortVersionString = QStringLiteral("2.0");
    item.downloadURL = QUrl(downloadURL);
    item.infoURL = QUrl(infoURL);
    item.itemDescription = QStringLiteral(
        "<p>See <a href=\"https://lattica.example.test/blog\">the blog</a> or "
        "<a href=\"file:///etc/passwd\">this file</a>.</p>");
    return item;
}

class UpdateWindowTest : public ::testing::Test {
protected:
    FakePlatform platform;
    UpdateWindow window;
};

TEST_F(UpdateWindowTest, DownloadFallsBackToTheReleasePageWhenTheEnclosureIsNotAWebAddress) {
    window.showUpdateFound(release(QStringLiteral("file:///tmp/lattica.tgz"), QStringLiteral("https://x.test/2.0")),
                           QStringLiteral("1.0"));
    EXPECT_EQ(window.downloadURL(), QUrl(QStringLiteral("https://x.test/2.0")));
    EXPECT_TRUE(window.primaryButton()->isEnabled());
}

TEST_F(UpdateWindowTest, DownloadIsDisabledWithoutAnyWebAddress) {
    window.showUpdateFound(release(QStringLiteral("javascript:alert(1)")), QStringLiteral("1.0"));
    EXPECT_TRUE(window.downloadURL().isEmpty());
    EXPECT_FALSE(window.primaryButton()->isEnabled());
    window.primaryButton()->click();
    EXPECT_TRUE(platform.desktopLauncher.openedURLs.isEmpty());
    // The next state enables the button again.
    window.showUpToDate(QStringLiteral("1.0"));
    EXPECT_TRUE(window.primaryButton()->isEnabled());
}

TEST_F(UpdateWindowTest, LinksInTheNotesOpenOnlyWebPages) {
    window.showUpdateFound(release(QStringLiteral("https://x.test/a.tgz")), QStringLiteral("1.0"));
    auto* notes = window.findChild<QTextBrowser*>();
    ASSERT_NE(notes, nullptr);
    Q_EMIT notes->anchorClicked(QUrl(QStringLiteral("file:///etc/passwd")));
    EXPECT_TRUE(platform.desktopLauncher.openedURLs.isEmpty());
    Q_EMIT notes->anchorClicked(QUrl(QStringLiteral("https://lattica.example.test/blog")));
    EXPECT_EQ(platform.desktopLauncher.openedURLs,
              QList<QUrl>{QUrl(QStringLiteral("https://lattica.example.test/blog"))});
}

TEST_F(UpdateWindowTest, ReleaseNotesLinkOpensTheNotesPage) {
    AppcastItem item = release(QStringLiteral("https://x.test/a.tgz"));
    item.releaseNotesURL = QUrl(QStringLiteral("https://x.test/notes/2.0"));
    window.showUpdateFound(item, QStringLiteral("1.0"));
    QLabel* link = nullptr;
    for (QLabel* label : window.findChildren<QLabel*>()) {
        if (label->text().contains(QStringLiteral("Release notes"))) {
            link = label;
        }
    }
    ASSERT_NE(link, nullptr);
    EXPECT_FALSE(link->isHidden());
    Q_EMIT link->linkActivated(QStringLiteral("notes"));
    EXPECT_EQ(platform.desktopLauncher.openedURLs, QList<QUrl>{QUrl(QStringLiteral("https://x.test/notes/2.0"))});
}

TEST_F(UpdateWindowTest, ClosingWhileCheckingAsksToCancel) {
    int cancels = 0;
    QObject::connect(&window, &UpdateWindow::cancelRequested, [&cancels] { ++cancels; });
    window.showChecking();
    window.present();
    window.close();
    EXPECT_EQ(cancels, 1);
    window.showError(QStringLiteral("boom"));
    window.present();
    window.close();
    EXPECT_EQ(cancels, 1);
    EXPECT_EQ(window.messageText(), QStringLiteral("boom"));
}

}  // namespace
