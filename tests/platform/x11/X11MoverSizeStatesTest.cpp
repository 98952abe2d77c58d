// SPDX-License-Identifier: MIT
// Maximised and full-screen windows moved between monitors of different shapes, with the machine busy:
// they arrive in their state every time, whether the size is kept or adjusted.
#include <QProcess>

#include "app/displays/ScreenSnapshotService.h"
#include "app/mover/WindowMover.h"
#include "tests/platform/x11/X11DesktopFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

constexpr int kRoundTrips = 5;

class X11MoverSizeStatesTest : public X11DesktopFixture {
protected:
    void SetUp() override {
        X11DesktopFixture::SetUp();
        // Busy processes that compete with the window manager for the processors.
        for (int i = 0; i < 3; ++i) {
            auto* burner = new QProcess;
            burner->start(QStringLiteral("sh"), {QStringLiteral("-c"), QStringLiteral("while :; do :; done")});
            ASSERT_TRUE(burner->waitForStarted());
            m_burners.append(burner);
        }
    }
    void TearDown() override {
        for (QProcess* burner : m_burners) {
            burner->kill();
            burner->waitForFinished();
            delete burner;
        }
        m_burners.clear();
        X11DesktopFixture::TearDown();
    }

    QString states(quint32 window) {
        return VirtualDesktop::output(
            QStringLiteral("xprop"), {QStringLiteral("-id"), QString::number(window), QStringLiteral("_NET_WM_STATE")});
    }
    bool inState(quint32 window, const QStringList& wanted) {
        const QString list = states(window);
        for (const QString& state : wanted) {
            if (!list.contains(state)) {
                return false;
            }
        }
        return true;
    }

    // Moves the window back and forth between the 1920 x 1080 and the 1280 x 1024 monitor; after each move
    // it must be on the target and in its state.
    void moveBackAndForth(quint32 window, const QStringList& wanted, bool adjustSize) {
        ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return inState(window, wanted); }));
        for (int move = 0; move < 2 * kRoundTrips; ++move) {
            const int from = move % 2 == 0 ? 0 : 2;
            const int to = move % 2 == 0 ? 2 : 0;
            const QRect target = monitors().value(to);
            const WindowMoveResult result =
                WindowMover::moveWindows(display(from), display(to), adjustSize, std::nullopt, false).counts;
            EXPECT_EQ(result, (WindowMoveResult{1, 1})) << "move " << move;
            const bool arrived = VirtualDesktop::waitUntil([&] {
                const QRect frame = frameFromTree(window);
                return target.contains(frame.center()) && inState(window, wanted) &&
                       frame.intersected(target).width() >= target.width() - 2 &&
                       frame.intersected(target).height() >= target.height() - 60;
            });
            EXPECT_TRUE(arrived) << "move " << move << " to monitor " << to << ": frame " << frameFromTree(window).x()
                                 << "," << frameFromTree(window).y() << " " << frameFromTree(window).width() << "x"
                                 << frameFromTree(window).height() << ", " << states(window).toStdString();
            if (!arrived) {
                return;
            }
        }
    }

private:
    QList<QProcess*> m_burners;
};

const QStringList kMaximised = {QStringLiteral("_NET_WM_STATE_MAXIMIZED_VERT"),
                                QStringLiteral("_NET_WM_STATE_MAXIMIZED_HORZ")};
const QStringList kFullScreen = {QStringLiteral("_NET_WM_STATE_FULLSCREEN")};

TEST_F(X11MoverSizeStatesTest, MaximisedWindowArrivesMaximisedWithAdjustedSize) {
    const quint32 window =
        client.open(QStringLiteral("big"), placement(0, 100, 100, 600, 400) + QStringLiteral(" states=maximized"));
    ASSERT_NE(window, 0u);
    moveBackAndForth(window, kMaximised, true);
}

TEST_F(X11MoverSizeStatesTest, MaximisedWindowArrivesMaximisedKeepingSize) {
    const quint32 window =
        client.open(QStringLiteral("big"), placement(0, 100, 100, 600, 400) + QStringLiteral(" states=maximized"));
    ASSERT_NE(window, 0u);
    moveBackAndForth(window, kMaximised, false);
}

TEST_F(X11MoverSizeStatesTest, FullScreenWindowArrivesFullScreenWithAdjustedSize) {
    const quint32 window =
        client.open(QStringLiteral("full"), placement(0, 100, 100, 600, 400) + QStringLiteral(" states=fullscreen"));
    ASSERT_NE(window, 0u);
    moveBackAndForth(window, kFullScreen, true);
}

TEST_F(X11MoverSizeStatesTest, FullScreenWindowArrivesFullScreenKeepingSize) {
    const quint32 window =
        client.open(QStringLiteral("full"), placement(0, 100, 100, 600, 400) + QStringLiteral(" states=fullscreen"));
    ASSERT_NE(window, 0u);
    moveBackAndForth(window, kFullScreen, false);
}

}  // namespace
