// SPDX-License-Identifier: MIT
// The real program's update check at launch against feeds that misbehave: one that drips a byte a second,
// one of 100 MB, and one whose entities expand to gigabytes. Each check ends within a bounded time and
// memory, and the program keeps answering while it runs.
#include <gtest/gtest.h>

#include <QElapsedTimer>

#include "tests/faults/HostileFeedServer.h"
#include "tests/faults/LatticaProgram.h"
#include "tests/support/VirtualDesktop.h"

namespace {

// Memory the check may add to the program's peak: the feed is read up to 8 MB, parsed, then dropped.
// 0 (under the address sanitizer, whose redzones and quarantine of freed memory add their own growth):
// the figure is only reported.
constexpr qint64 kPeakGrowthLimitKiB = LATTICA_PEAK_GROWTH_LIMIT_KIB;

class HostileFeedDesktopTest : public ::testing::Test {
protected:
    // Starts the program against the server, with its launch check on.
    void startAgainst(HostileFeedServer& server) {
        ASSERT_TRUE(server.listen());
        m_lattica.environment().insert(QStringLiteral("LATTICA_APPCAST_URL"), server.url().toString());
        ASSERT_TRUE(m_lattica.start()) << qPrintable(m_lattica.errorOutput());
        m_startPeakKiB = m_lattica.peakResidentKiB();
        ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return server.requests() > 0; }, 15000))
            << "the launch check never asked for the feed";
    }

    // The time the program takes to answer a call on its bus; -1 when it does not answer in 5 s.
    qint64 answerTimeMs() {
        QElapsedTimer clock;
        clock.start();
        const QDBusMessage reply = m_lattica.call(QStringLiteral("Displays"), {}, 5000);
        return reply.type() == QDBusMessage::ReplyMessage ? clock.elapsed() : -1;
    }

    void expectBoundedPeak() {
        const qint64 peak = m_lattica.peakResidentKiB();
        std::printf("peak resident %lld KiB, %lld KiB at start\n", static_cast<long long>(peak),
                    static_cast<long long>(m_startPeakKiB));
        if (kPeakGrowthLimitKiB > 0) {
            EXPECT_LT(peak - m_startPeakKiB, kPeakGrowthLimitKiB);
        }
    }

    LatticaProgram m_lattica;
    qint64 m_startPeakKiB = 0;
};

TEST_F(HostileFeedDesktopTest, DrippingFeedIsGivenUpWithinTheCheckTimeLimitWhileTheProgramAnswers) {
    HostileFeedServer server(HostileFeedServer::Behaviour::DripOneBytePerSecond);
    QElapsedTimer clock;
    clock.start();
    startAgainst(server);
    // While bytes trickle in, every call is answered at once.
    while (!server.clientClosed() && clock.elapsed() < 30000) {
        const qint64 answer = answerTimeMs();
        ASSERT_GE(answer, 0) << "the program stopped answering after " << clock.elapsed() << " ms";
        EXPECT_LT(answer, 1000);
        VirtualDesktop::waitUntil([&] { return server.clientClosed(); }, 1000);
    }
    std::printf("the check gave up after %lld ms and %lld bytes\n", static_cast<long long>(clock.elapsed()),
                static_cast<long long>(server.bytesSent()));
    EXPECT_TRUE(server.clientClosed()) << "the check was still reading after 30 s";
    EXPECT_EQ(server.requests(), 1);
    EXPECT_GE(answerTimeMs(), 0);
    expectBoundedPeak();
}

TEST_F(HostileFeedDesktopTest, HundredMegabyteFeedIsCutOffEarlyWithBoundedMemory) {
    HostileFeedServer server(HostileFeedServer::Behaviour::HundredMegabytes);
    QElapsedTimer clock;
    clock.start();
    startAgainst(server);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return server.clientClosed(); }, 30000))
        << "still reading after " << server.bytesSent() << " bytes";
    std::printf("the check stopped reading after %lld bytes, %lld ms\n", static_cast<long long>(server.bytesSent()),
                static_cast<long long>(clock.elapsed()));
    // The network layer reads ahead of the size check, so more than the limit arrives; far from all of it.
    EXPECT_LT(server.bytesSent(), 64LL * 1024 * 1024);
    EXPECT_GE(answerTimeMs(), 0);
    expectBoundedPeak();
}

TEST_F(HostileFeedDesktopTest, EntityExpansionIsRefusedQuicklyWithBoundedMemory) {
    HostileFeedServer server(HostileFeedServer::Behaviour::EntityExpansion);
    QElapsedTimer clock;
    clock.start();
    startAgainst(server);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return server.clientClosed(); }, 15000));
    // The document is parsed on the program's main thread: once it answers, the parse is over.
    const qint64 answer = answerTimeMs();
    ASSERT_GE(answer, 0) << "the program stopped answering";
    EXPECT_LT(answer, 2000);
    std::printf("answered %lld ms after the document came, %lld ms after start\n", static_cast<long long>(answer),
                static_cast<long long>(clock.elapsed()));
    expectBoundedPeak();
    EXPECT_TRUE(m_lattica.stop());
    EXPECT_EQ(m_lattica.process().exitCode(), 0);
}

}  // namespace
