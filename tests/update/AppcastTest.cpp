// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/update/Appcast.h"
#include "tests/update/AppcastFixtures.h"

namespace {

const QByteArray kFullItemFeed = R"(<?xml version="1.0" encoding="utf-8"?>
<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle" xmlns:dc="http://purl.org/dc/elements/1.1/">
  <channel>
    <title>Lattica Changelog</title>
    <link>https://lattica.example.test/</link>
    <item>
      <title>Version 1.4.0</title>
      <link>https://lattica.example.test/releases/1.4.0</link>
      <sparkle:version>140</sparkle:version>
      <sparkle:shortVersionString>1.4.0</sparkle:shortVersionString>
      <sparkle:minimumSystemVersion>11</sparkle:minimumSystemVersion>
      <sparkle:releaseNotesLink>https://lattica.example.test/notes/1.4.0.html</sparkle:releaseNotesLink>
      <description><![CDATA[<ul><li>Faster previews</li></ul>]]></description>
      <pubDate>Wed, 04 Nov 2026 09:30:00 +0000</pubDate>
      <dc:creator>Someone</dc:creator>
      <enclosure url="https://downloads.example.test/lattica-1.4.0.tar.gz" length="5242880" type="application/octet-stream" sparkle:edSignature="abc"/>
    </item>
  </channel>
</rss>)";

TEST(AppcastTest, ReadsEveryFieldOfAnItem) {
    const AppcastParseResult result = Appcast::parse(kFullItemFeed);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    ASSERT_EQ(result.items.size(), 1);
    const AppcastItem& item = result.items[0];
    EXPECT_EQ(item.title, QStringLiteral("Version 1.4.0"));
    EXPECT_EQ(item.version, QStringLiteral("140"));
    EXPECT_EQ(item.shortVersionString, QStringLiteral("1.4.0"));
    EXPECT_EQ(item.displayVersion(), QStringLiteral("1.4.0"));
    EXPECT_EQ(item.minimumSystemVersion, QStringLiteral("11"));
    EXPECT_EQ(item.infoURL, QUrl(QStringLiteral("https://lattica.example.test/releases/1.4.0")));
    EXPECT_EQ(item.releaseNotesURL, QUrl(QStringLiteral("https://lattica.example.test/notes/1.4.0.html")));
    EXPECT_EQ(item.itemDescription, QStringLiteral("<ul><li>Faster previews</li></ul>"));
    ASSERT_TRUE(item.publicationDate.has_value());
    EXPECT_EQ(item.publicationDate->toUTC(), QDateTime(QDate(2026, 11, 4), QTime(9, 30), Qt::UTC));
    EXPECT_EQ(item.downloadURL, QUrl(QStringLiteral("https://downloads.example.test/lattica-1.4.0.tar.gz")));
    EXPECT_EQ(item.contentLength, 5242880);
    EXPECT_EQ(item.contentType, QStringLiteral("application/octet-stream"));
}

TEST(AppcastTest, VersionsOnTheEnclosureAreUsedWhenTheItemHasNone) {
    const QByteArray feed = R"(<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle">
<channel><item><title>Old style</title>
<enclosure url="https://downloads.example.test/a.tgz" length="10" type="application/octet-stream"
  sparkle:version="77" sparkle:shortVersionString="0.7.7"/>
</item></channel></rss>)";
    const AppcastParseResult result = Appcast::parse(feed);
    ASSERT_TRUE(result.ok());
    ASSERT_EQ(result.items.size(), 1);
    EXPECT_EQ(result.items[0].version, QStringLiteral("77"));
    EXPECT_EQ(result.items[0].shortVersionString, QStringLiteral("0.7.7"));
}

TEST(AppcastTest, ShortVersionFallsBackToTheMachineVersionForDisplay) {
    const AppcastParseResult result = Appcast::parse(AppcastFixtures::feed({{QStringLiteral("2.1"), {}, {}}}));
    ASSERT_EQ(result.items.size(), 1);
    EXPECT_TRUE(result.items[0].shortVersionString.isEmpty());
    EXPECT_EQ(result.items[0].displayVersion(), QStringLiteral("2.1"));
}

TEST(AppcastTest, ElementsInAnotherNamespaceDoNotCountAsSparkleVersions) {
    const QByteArray feed = R"(<rss version="2.0" xmlns:other="urn:other">
<channel><item><title>Foreign</title><other:version>9.9</other:version></item></channel></rss>)";
    const AppcastParseResult result = Appcast::parse(feed);
    ASSERT_TRUE(result.ok());
    EXPECT_TRUE(result.items.isEmpty());
}

TEST(AppcastTest, ItemsWithoutAnyVersionAreLeftOut) {
    QByteArray feed = AppcastFixtures::feed({{QStringLiteral("3"), QStringLiteral("0.3"), {}}});
    feed.replace("<channel>", "<channel><item><title>No version</title></item>");
    const AppcastParseResult result = Appcast::parse(feed);
    ASSERT_TRUE(result.ok());
    ASSERT_EQ(result.items.size(), 1);
    EXPECT_EQ(result.items[0].version, QStringLiteral("3"));
}

TEST(AppcastTest, MalformedXmlIsAnErrorWithItsPosition) {
    const AppcastParseResult result =
        Appcast::parse("<rss version=\"2.0\"><channel><item><title>Broken</item></channel></rss>");
    EXPECT_FALSE(result.ok());
    EXPECT_TRUE(result.items.isEmpty());
    EXPECT_TRUE(result.error.contains(QStringLiteral("line 1"))) << result.error.toStdString();
}

TEST(AppcastTest, TruncatedDocumentIsAnError) {
    QByteArray feed = AppcastFixtures::feed({{QStringLiteral("3"), QStringLiteral("0.3"), {}}});
    feed.chop(20);
    const AppcastParseResult result = Appcast::parse(feed);
    EXPECT_FALSE(result.ok());
    EXPECT_TRUE(result.items.isEmpty());
}

TEST(AppcastTest, EmptyDocumentIsAnError) {
    EXPECT_FALSE(Appcast::parse(QByteArray()).ok());
}

TEST(AppcastTest, DocumentThatIsNotRssIsAnError) {
    const AppcastParseResult result = Appcast::parse("<html><body>Moved</body></html>");
    EXPECT_FALSE(result.ok());
    EXPECT_EQ(result.error, QStringLiteral("The document is not an RSS feed."));
}

TEST(AppcastTest, NewestApplicableItemIgnoresFeedOrder) {
    const AppcastParseResult result = Appcast::parse(AppcastFixtures::feed({
        {QStringLiteral("1.9"), {}, {}},
        {QStringLiteral("1.10"), {}, {}},
        {QStringLiteral("1.2"), {}, {}},
    }));
    const std::optional<AppcastItem> newest = Appcast::newestApplicableItem(result.items, QStringLiteral("12"));
    ASSERT_TRUE(newest.has_value());
    EXPECT_EQ(newest->version, QStringLiteral("1.10"));
}

TEST(AppcastTest, NewestApplicableItemSkipsReleasesForNewerSystems) {
    const AppcastParseResult result = Appcast::parse(AppcastFixtures::feed({
        {QStringLiteral("3.0"), {}, QStringLiteral("13")},
        {QStringLiteral("2.0"), {}, QStringLiteral("12")},
        {QStringLiteral("2.5"), {}, QStringLiteral("12.4")},
    }));
    const std::optional<AppcastItem> newest = Appcast::newestApplicableItem(result.items, QStringLiteral("12.2"));
    ASSERT_TRUE(newest.has_value());
    EXPECT_EQ(newest->version, QStringLiteral("2.0"));
    EXPECT_FALSE(Appcast::newestApplicableItem(result.items, QStringLiteral("11")).has_value());
}

}  // namespace
