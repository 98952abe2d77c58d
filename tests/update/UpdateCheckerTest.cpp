// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include "app/update/UpdateChecker.h"
#include "tests/update/AppcastFixtures.h"
#include "tests/update/LoopbackHttpServer.h"

using AppcastFixtures::Release;
using Outcome = UpdateCheckResult::Outcome;

namespace {

class UpdateCheckerTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(server.isListening()); }

    void serveFeed(const QList<Release>& releases) {
        server.setRoute(QStringLiteral("/appcast.xml"), {200, AppcastFixtures::feed(releases)});
    }

    // Runs one check of the given feed and returns its one result.
    UpdateCheckResult check(const QUrl& feedURL, const QString& currentVersion = QStringLiteral("1.0"),
                            const QString& systemVersion = QStringLiteral("12")) {
        QSignalSpy finished(&checker, &UpdateChecker::finished);
        checker.start({feedURL, currentVersion, systemVersion});
        EXPECT_TRUE(finished.wait(10000));
        EXPECT_EQ(finished.count(), 1);
        EXPECT_FALSE(checker.isRunning());
        if (finished.isEmpty()) {
            return {};
        }
        return finished.first().first().value<UpdateCheckResult>();
    }

    QUrl feedURL() const { return server.url(QStringLiteral("/appcast.xml")); }

    // Runs a second checker against a feed that never answers, with a deadline three times the given one,
    // and waits for it to report its time-out. Anything left armed or queued by a check started earlier
    // with the given deadline has been delivered by then.
    void waitPastADeadlineOf(std::chrono::milliseconds deadline) {
        server.setRoute(QStringLiteral("/never.xml"), {200, {}, {}, true});
        UpdateChecker barrier;
        barrier.setTimeout(deadline * 3);
        QSignalSpy barrierFinished(&barrier, &UpdateChecker::finished);
        barrier.start({server.url(QStringLiteral("/never.xml")), QStringLiteral("1.0"), QStringLiteral("12")});
        ASSERT_TRUE(barrierFinished.wait(10000));
        EXPECT_EQ(barrierFinished.first().first().value<UpdateCheckResult>().outcome, Outcome::Failed);
    }

    LoopbackHttpServer server;
    UpdateChecker checker;
};

TEST_F(UpdateCheckerTest, NewerItemIsOffered) {
    serveFeed({{QStringLiteral("1.1"), QStringLiteral("1.1"), {}}});
    const UpdateCheckResult result = check(feedURL());
    EXPECT_EQ(result.outcome, Outcome::UpdateAvailable);
    ASSERT_TRUE(result.item.has_value());
    EXPECT_EQ(result.item->version, QStringLiteral("1.1"));
    EXPECT_EQ(result.item->downloadURL, QUrl(QStringLiteral("https://downloads.example.test/lattica-1.1.tar.gz")));
    EXPECT_EQ(server.requestedPaths(), QList<QString>{QStringLiteral("/appcast.xml")});
}

TEST_F(UpdateCheckerTest, SameVersionIsUpToDate) {
    serveFeed({{QStringLiteral("1.0"), QStringLiteral("1.0"), {}}});
    const UpdateCheckResult result = check(feedURL());
    EXPECT_EQ(result.outcome, Outcome::UpToDate);
    EXPECT_FALSE(result.item.has_value());
}

TEST_F(UpdateCheckerTest, OnlyOlderItemsIsUpToDate) {
    serveFeed({{QStringLiteral("0.9"), {}, {}}, {QStringLiteral("0.8.5"), {}, {}}});
    EXPECT_EQ(check(feedURL()).outcome, Outcome::UpToDate);
}

TEST_F(UpdateCheckerTest, EmptyChannelIsUpToDate) {
    serveFeed({});
    EXPECT_EQ(check(feedURL()).outcome, Outcome::UpToDate);
}

TEST_F(UpdateCheckerTest, SeveralItemsOutOfOrderOfferTheNewest) {
    serveFeed({{QStringLiteral("1.2"), {}, {}},
               {QStringLiteral("1.10"), QStringLiteral("1.10 final"), {}},
               {QStringLiteral("0.5"), {}, {}},
               {QStringLiteral("1.9"), {}, {}}});
    const UpdateCheckResult result = check(feedURL());
    EXPECT_EQ(result.outcome, Outcome::UpdateAvailable);
    ASSERT_TRUE(result.item.has_value());
    EXPECT_EQ(result.item->version, QStringLiteral("1.10"));
    EXPECT_EQ(result.item->displayVersion(), QStringLiteral("1.10 final"));
}

TEST_F(UpdateCheckerTest, MinimumSystemVersionTooHighIsNotOffered) {
    serveFeed({{QStringLiteral("2.0"), {}, QStringLiteral("13.1")}});
    EXPECT_EQ(check(feedURL(), QStringLiteral("1.0"), QStringLiteral("12")).outcome, Outcome::UpToDate);
}

TEST_F(UpdateCheckerTest, MinimumSystemVersionTooHighFallsBackToAnOlderNewerRelease) {
    serveFeed({{QStringLiteral("2.0"), {}, QStringLiteral("13.1")}, {QStringLiteral("1.5"), {}, QStringLiteral("12")}});
    const UpdateCheckResult result = check(feedURL(), QStringLiteral("1.0"), QStringLiteral("12.4"));
    EXPECT_EQ(result.outcome, Outcome::UpdateAvailable);
    ASSERT_TRUE(result.item.has_value());
    EXPECT_EQ(result.item->version, QStringLiteral("1.5"));
}

TEST_F(UpdateCheckerTest, MalformedXmlFails) {
    server.setRoute(QStringLiteral("/appcast.xml"), {200, QByteArray("<rss><channel><item></channel>")});
    const UpdateCheckResult result = check(feedURL());
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_TRUE(result.errorMessage.startsWith(QStringLiteral("The update feed could not be read: ")))
        << result.errorMessage.toStdString();
}

TEST_F(UpdateCheckerTest, NotFoundFailsWithTheStatus) {
    const UpdateCheckResult result = check(server.url(QStringLiteral("/missing.xml")));
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_EQ(result.errorMessage, QStringLiteral("The update server answered with HTTP status 404."));
}

TEST_F(UpdateCheckerTest, ServerErrorFailsWithTheStatus) {
    server.setRoute(QStringLiteral("/appcast.xml"), {500, QByteArray("oops"), "text/plain"});
    const UpdateCheckResult result = check(feedURL());
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_EQ(result.errorMessage, QStringLiteral("The update server answered with HTTP status 500."));
}

TEST_F(UpdateCheckerTest, ServerThatNeverAnswersFailsAfterTheTimeout) {
    server.setRoute(QStringLiteral("/appcast.xml"), {200, {}, {}, true});
    checker.setTimeout(std::chrono::milliseconds(300));
    const UpdateCheckResult result = check(feedURL());
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_EQ(result.errorMessage, QStringLiteral("The update server did not answer within 0.3 seconds."));
    EXPECT_EQ(server.requestedPaths().size(), 1);
}

TEST_F(UpdateCheckerTest, OversizedFeedFails) {
    server.setRoute(QStringLiteral("/appcast.xml"), {200, QByteArray(UpdateChecker::kMaximumFeedSize + 4096, ' ')});
    const UpdateCheckResult result = check(feedURL());
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_EQ(result.errorMessage, QStringLiteral("The update feed is larger than an update feed can be."));
}

TEST_F(UpdateCheckerTest, HttpsFeedWithAnUntrustedCertificateFails) {
    LoopbackHttpServer tlsServer(LoopbackHttpServer::Transport::SelfSignedTls);
    ASSERT_TRUE(tlsServer.isListening());
    tlsServer.setRoute(QStringLiteral("/appcast.xml"), {200, AppcastFixtures::feed({{QStringLiteral("9.0"), {}, {}}})});
    const UpdateCheckResult result = check(tlsServer.url(QStringLiteral("/appcast.xml")));
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_TRUE(result.errorMessage.startsWith(QStringLiteral("The update feed could not be loaded: ")))
        << result.errorMessage.toStdString();
    EXPECT_TRUE(tlsServer.requestedPaths().isEmpty());
}

TEST_F(UpdateCheckerTest, ClosedPortFails) {
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost, 0));
    const quint16 port = closed.serverPort();
    closed.close();
    const UpdateCheckResult result = check(QUrl(QStringLiteral("http://127.0.0.1:%1/appcast.xml").arg(port)));
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_TRUE(result.errorMessage.startsWith(QStringLiteral("The update feed could not be loaded: ")))
        << result.errorMessage.toStdString();
}

TEST_F(UpdateCheckerTest, PlainHttpToAnotherHostIsRefusedWithoutConnecting) {
    const UpdateCheckResult result = check(QUrl(QStringLiteral("http://updates.example.test/appcast.xml")));
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_EQ(result.errorMessage, QStringLiteral("The update feed must be fetched over HTTPS."));
}

TEST_F(UpdateCheckerTest, RedirectToAnotherLoopbackAddressIsFollowed) {
    serveFeed({{QStringLiteral("1.1"), {}, {}}});
    server.setRoute(QStringLiteral("/old.xml"), {301, {}, "text/plain", false, feedURL().toEncoded()});
    const UpdateCheckResult result = check(server.url(QStringLiteral("/old.xml")));
    EXPECT_EQ(result.outcome, Outcome::UpdateAvailable);
    EXPECT_EQ(server.requestedPaths(), (QList<QString>{QStringLiteral("/old.xml"), QStringLiteral("/appcast.xml")}));
}

TEST_F(UpdateCheckerTest, RedirectToPlainHttpElsewhereIsRefused) {
    server.setRoute(QStringLiteral("/appcast.xml"),
                    {302, {}, "text/plain", false, QByteArray("http://updates.example.test/appcast.xml")});
    const UpdateCheckResult result = check(feedURL());
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_EQ(result.errorMessage, QStringLiteral("The update feed moved to an address that is not allowed: The "
                                                  "update feed must be fetched over HTTPS."));
}

TEST_F(UpdateCheckerTest, FeedRedirectingToItselfIsReportedAsARedirectLoop) {
    server.setRoute(QStringLiteral("/appcast.xml"), {302, {}, "text/plain", false, feedURL().toEncoded()});
    const UpdateCheckResult result = check(feedURL());
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_EQ(result.errorMessage, QStringLiteral("The update feed redirects in a loop."))
        << qPrintable(result.errorMessage);
}

TEST_F(UpdateCheckerTest, TwoAddressesRedirectingToEachOtherAreReportedAsARedirectLoop) {
    server.setRoute(QStringLiteral("/a.xml"),
                    {301, {}, "text/plain", false, server.url(QStringLiteral("/b.xml")).toEncoded()});
    server.setRoute(QStringLiteral("/b.xml"),
                    {307, {}, "text/plain", false, server.url(QStringLiteral("/a.xml")).toEncoded()});
    const UpdateCheckResult result = check(server.url(QStringLiteral("/a.xml")));
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_EQ(result.errorMessage, QStringLiteral("The update feed redirects in a loop."))
        << qPrintable(result.errorMessage);
}

TEST_F(UpdateCheckerTest, LongChainOfRedirectsIsReportedAsTooManyRedirects) {
    for (int step = 0; step < 10; ++step) {
        server.setRoute(
            QStringLiteral("/step%1.xml").arg(step),
            {302, {}, "text/plain", false, server.url(QStringLiteral("/step%1.xml").arg(step + 1)).toEncoded()});
    }
    serveFeed({{QStringLiteral("1.1"), {}, {}}});
    server.setRoute(QStringLiteral("/step10.xml"), {302, {}, "text/plain", false, feedURL().toEncoded()});
    const UpdateCheckResult result = check(server.url(QStringLiteral("/step0.xml")));
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_EQ(result.errorMessage, QStringLiteral("The update feed was redirected too many times."))
        << qPrintable(result.errorMessage);
}

TEST_F(UpdateCheckerTest, FeedAddressesOtherThanHttpsAreRefused) {
    EXPECT_TRUE(UpdateChecker::isAllowedFeedURL(QUrl(QStringLiteral("https://lattica.example.test/appcast.xml"))));
    EXPECT_TRUE(UpdateChecker::isAllowedFeedURL(QUrl(QStringLiteral("http://127.0.0.1:8080/a.xml"))));
    EXPECT_TRUE(UpdateChecker::isAllowedFeedURL(QUrl(QStringLiteral("http://[::1]:8080/a.xml"))));
    EXPECT_TRUE(UpdateChecker::isAllowedFeedURL(QUrl(QStringLiteral("http://localhost/a.xml"))));
    EXPECT_FALSE(UpdateChecker::isAllowedFeedURL(QUrl(QStringLiteral("http://10.0.0.1/a.xml"))));
    EXPECT_FALSE(UpdateChecker::isAllowedFeedURL(QUrl(QStringLiteral("ftp://lattica.example.test/a.xml"))));
    EXPECT_FALSE(UpdateChecker::isAllowedFeedURL(QUrl(QStringLiteral("file:///etc/passwd"))));
    EXPECT_FALSE(UpdateChecker::isAllowedFeedURL(QUrl()));
    QString message;
    EXPECT_FALSE(UpdateChecker::isAllowedFeedURL(QUrl(QStringLiteral("not a url at all")), &message));
    EXPECT_FALSE(message.isEmpty());
}

TEST_F(UpdateCheckerTest, EmptyFeedAddressFails) {
    const UpdateCheckResult result = check(QUrl());
    EXPECT_EQ(result.outcome, Outcome::Failed);
    EXPECT_FALSE(result.errorMessage.isEmpty());
}

TEST_F(UpdateCheckerTest, CancelledCheckReportsNothing) {
    server.setRoute(QStringLiteral("/appcast.xml"), {200, {}, {}, true});
    // A short deadline: if cancelling left it armed, it would report a time-out below.
    checker.setTimeout(std::chrono::milliseconds(100));
    QSignalSpy finished(&checker, &UpdateChecker::finished);
    checker.start({feedURL(), QStringLiteral("1.0"), QStringLiteral("12")});
    ASSERT_TRUE(checker.isRunning());
    // Let the request reach the server before giving up on it.
    EXPECT_TRUE(QTest::qWaitFor([this] { return !server.requestedPaths().isEmpty(); }, 5000));
    checker.cancel();
    EXPECT_FALSE(checker.isRunning());
    waitPastADeadlineOf(std::chrono::milliseconds(100));
    EXPECT_EQ(finished.count(), 0);
}

TEST_F(UpdateCheckerTest, ANewCheckReplacesARunningOne) {
    server.setRoute(QStringLiteral("/slow.xml"), {200, {}, {}, true});
    serveFeed({{QStringLiteral("1.1"), {}, {}}});
    // A short deadline: if the replaced check were still armed, it would report a time-out below.
    checker.setTimeout(std::chrono::milliseconds(500));
    QSignalSpy finished(&checker, &UpdateChecker::finished);
    checker.start({server.url(QStringLiteral("/slow.xml")), QStringLiteral("1.0"), QStringLiteral("12")});
    checker.start({feedURL(), QStringLiteral("1.0"), QStringLiteral("12")});
    ASSERT_TRUE(finished.wait(10000));
    waitPastADeadlineOf(std::chrono::milliseconds(500));
    ASSERT_EQ(finished.count(), 1);
    EXPECT_EQ(finished.first().first().value<UpdateCheckResult>().outcome, Outcome::UpdateAvailable);
}

}  // namespace
