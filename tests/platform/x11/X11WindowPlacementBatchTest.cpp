// SPDX-License-Identifier: MIT
// Many windows placed in one batch on a real window manager: every frame lands where and as large as
// asked, each window answers for itself, and the batch waits for the window manager once, not per window.
#include <QElapsedTimer>
#include <QPointF>
#include <QSizeF>

#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "platform/WindowPlacer.h"
#include "platform/x11/X11WindowPlacer.h"
#include "tests/platform/x11/X11DesktopFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

class X11WindowPlacementBatchTest : public X11DesktopFixture {
protected:
    WindowControl& control() { return *Platform::services().windowControl; }
    WindowPlacer& placer() { return dynamic_cast<WindowPlacer&>(control()); }

    QRectF readFrame(quint32 window) {
        const Reading<QRectF> frame = control().frame(window);
        return frame.result == Result::Ok ? frame.value.value_or(QRectF()) : QRectF();
    }
    // What a placement answered for its writes, without the frame it told.
    static PlacementResult answers(PlacementResult result) {
        result.frame.reset();
        return result;
    }
    static QString describe(const QRectF& r) {
        return QStringLiteral("(%1,%2 %3x%4)").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
    }
    QList<quint32> openWindows(const QString& prefix, int count) {
        QList<quint32> windows;
        for (int i = 0; i < count; ++i) {
            windows.append(client.open(prefix + QString::number(i), placement(0, 50 + 40 * i, 60 + 30 * i, 300, 200)));
        }
        return windows;
    }
};

TEST_F(X11WindowPlacementBatchTest, EveryFrameLandsAtItsPlaceAndSize) {
    const QList<quint32> windows = openWindows(QStringLiteral("batch"), 6);
    ASSERT_FALSE(windows.contains(0u));
    const QRect target = monitors().value(1);
    QList<WindowPlacement> placements;
    QList<QRectF> expected;
    for (int i = 0; i < windows.size(); ++i) {
        const QRectF frame(target.topLeft() + QPoint(30 + 150 * i, 40 + 90 * i), QSizeF(500 + 20 * i, 350 + 10 * i));
        placements.append({windows[i], frame.topLeft(), frame.size()});
        expected.append(frame);
    }
    const QList<PlacementResult> results = placer().place(placements);
    ASSERT_EQ(results.size(), windows.size());
    for (int i = 0; i < windows.size(); ++i) {
        EXPECT_EQ(answers(results[i]), (PlacementResult{Result::Ok, Result::Ok})) << "window " << i;
        // The frame told with the result is the one a read finds.
        EXPECT_EQ(results[i].frame, readFrame(windows[i])) << "window " << i;
        EXPECT_TRUE(near(frameFromTree(windows[i]), expected[i]))
            << "window " << i << " at " << describe(frameFromTree(windows[i])).toStdString() << ", expected "
            << describe(expected[i]).toStdString();
        // Read right after the batch, without waiting for anything more.
        EXPECT_TRUE(near(readFrame(windows[i]), expected[i])) << "window " << i;
    }
}

TEST_F(X11WindowPlacementBatchTest, PositionsAloneKeepEverySize) {
    const QList<quint32> windows = openWindows(QStringLiteral("moved"), 4);
    ASSERT_FALSE(windows.contains(0u));
    const QRect target = monitors().value(2);
    QList<WindowPlacement> placements;
    QList<QRectF> expected;
    for (int i = 0; i < windows.size(); ++i) {
        const QRectF before = readFrame(windows[i]);
        const QRectF after(target.topLeft() + QPoint(20 + 60 * i, 30 + 50 * i), before.size());
        placements.append({windows[i], after.topLeft(), std::nullopt});
        expected.append(after);
    }
    const QList<PlacementResult> results = placer().place(placements);
    for (int i = 0; i < windows.size(); ++i) {
        EXPECT_EQ(answers(results.value(i)), (PlacementResult{Result::Ok, std::nullopt})) << "window " << i;
        EXPECT_EQ(results.value(i).frame, expected[i]) << "window " << i;
        EXPECT_EQ(readFrame(windows[i]), expected[i]) << "window " << i;
        EXPECT_TRUE(near(frameFromTree(windows[i]), expected[i])) << "window " << i;
    }
}

TEST_F(X11WindowPlacementBatchTest, AWindowNobodyMovesCostsTheBatchOneBoundedWait) {
    const QList<quint32> windows = openWindows(QStringLiteral("answered"), 8);
    ASSERT_FALSE(windows.contains(0u));
    // The window manager leaves override-redirect windows alone: these requests are never answered.
    QList<quint32> ignored;
    for (int i = 0; i < 3; ++i) {
        ignored.append(client.open(QStringLiteral("ignored%1").arg(i),
                                   placement(0, 500 + 50 * i, 500, 200, 100) + QStringLiteral(" type=override")));
    }
    ASSERT_FALSE(ignored.contains(0u));
    const QRect target = monitors().value(1);
    QList<WindowPlacement> placements;
    for (int i = 0; i < windows.size(); ++i) {
        placements.append({windows[i], QPointF(target.topLeft() + QPoint(100 + 10 * i, 100 + 10 * i)), std::nullopt});
    }
    QList<QRectF> ignoredBefore;
    for (int i = 0; i < ignored.size(); ++i) {
        ignoredBefore.append(readFrame(ignored[i]));
        placements.append({ignored[i], QPointF(target.topLeft() + QPoint(900, 100 + 150 * i)), std::nullopt});
    }
    QElapsedTimer timer;
    timer.start();
    const QList<PlacementResult> results = placer().place(placements);
    const qint64 elapsed = timer.elapsed();
    std::printf("batch with %lld unanswered windows: %lld ms\n", static_cast<long long>(ignored.size()),
                static_cast<long long>(elapsed));
    for (int i = 0; i < windows.size(); ++i) {
        EXPECT_EQ(results.value(i).position, Result::Ok) << "window " << i;
    }
    for (int i = 0; i < ignored.size(); ++i) {
        EXPECT_EQ(results.value(windows.size() + i).position, Result::CannotComplete) << "ignored window " << i;
        EXPECT_EQ(readFrame(ignored[i]), ignoredBefore[i]);
        // Where it still is, as read once the time was up.
        EXPECT_EQ(results.value(windows.size() + i).frame, ignoredBefore[i]);
    }
    // One after another, the three unanswered windows would each wait the whole limit.
    EXPECT_GE(elapsed, X11WindowPlacer::kConfirmationMilliseconds - 5);
    EXPECT_LT(elapsed, 3 * X11WindowPlacer::kConfirmationMilliseconds);
}

TEST_F(X11WindowPlacementBatchTest, FixedSizeWindowMovesAndAnswersForItsSize) {
    const quint32 stubborn =
        client.open(QStringLiteral("stubborn"), placement(0, 100, 100, 300, 200) + QStringLiteral(" fixed=yes"));
    const quint32 plain = client.open(QStringLiteral("plain"), placement(0, 500, 100, 300, 200));
    ASSERT_NE(stubborn, 0u);
    ASSERT_NE(plain, 0u);
    const QSizeF before = readFrame(stubborn).size();
    const QPoint target = monitors().value(1).topLeft() + QPoint(200, 200);
    const QList<PlacementResult> results = placer().place(
        {{stubborn, QPointF(target), QSizeF(900, 700)}, {plain, QPointF(target + QPoint(1000, 0)), QSizeF(600, 500)}});
    ASSERT_EQ(results.size(), 2);
    EXPECT_EQ(results[0].position, Result::Ok);
    EXPECT_EQ(readFrame(stubborn).topLeft(), QPointF(target));
    // Window managers differ here (some honour the size hints, some do not); the answer must match the outcome.
    if (results[0].size == Result::Ok) {
        EXPECT_EQ(readFrame(stubborn).size(), QSizeF(900, 700));
    } else {
        EXPECT_EQ(results[0].size, Result::CannotComplete);
        EXPECT_EQ(readFrame(stubborn).size(), before);
    }
    EXPECT_EQ(answers(results[1]), (PlacementResult{Result::Ok, Result::Ok}));
    EXPECT_EQ(readFrame(plain), QRectF(QPointF(target + QPoint(1000, 0)), QSizeF(600, 500)));
    EXPECT_EQ(results[0].frame, readFrame(stubborn));
}

TEST_F(X11WindowPlacementBatchTest, EachPlacementThatCannotBeMadeAnswersOnItsOwn) {
    const quint32 doomed = client.open(QStringLiteral("doomed"), placement(0, 100, 100, 300, 200));
    const quint32 plain = client.open(QStringLiteral("plain"), placement(0, 500, 100, 300, 200));
    ASSERT_NE(doomed, 0u);
    ASSERT_NE(plain, 0u);
    ASSERT_TRUE(client.close(QStringLiteral("doomed")));
    const QPointF target = QPointF(monitors().value(1).topLeft() + QPoint(100, 100));
    const QList<PlacementResult> results = placer().place({
        {doomed, target, QSizeF(400, 300)},
        {0, target, std::nullopt},
        {plain, QPointF(qQNaN(), 10), QSizeF(400, 300)},
        {plain, target, QSizeF(0, 300)},
    });
    ASSERT_EQ(results.size(), 4);
    EXPECT_EQ(results[0], (PlacementResult{Result::Gone, Result::Gone}));
    EXPECT_EQ(results[1], (PlacementResult{Result::Gone, std::nullopt}));
    EXPECT_EQ(results[2], (PlacementResult{Result::Failure, Result::Failure}));
    // A size no window can take fails; the move goes ahead.
    EXPECT_EQ(answers(results[3]), (PlacementResult{Result::Ok, Result::Failure}));
    EXPECT_EQ(readFrame(plain).topLeft(), target);
}

TEST_F(X11WindowPlacementBatchTest, PlacementsTheWindowsAlreadyHaveAreConfirmedWithoutWaiting) {
    const QList<quint32> windows = openWindows(QStringLiteral("inplace"), 6);
    ASSERT_FALSE(windows.contains(0u));
    // Each window asked for the frame it has, half of them with their size too: the window manager
    // reports nothing for such a request, so a placer waiting for its report would wait the whole limit.
    QList<WindowPlacement> placements;
    QList<QRectF> before;
    for (int i = 0; i < windows.size(); ++i) {
        before.append(readFrame(windows[i]));
        ASSERT_FALSE(before.last().isEmpty()) << "window " << i;
        placements.append(
            {windows[i], before[i].topLeft(), i % 2 == 0 ? std::optional(before[i].size()) : std::nullopt});
    }
    QElapsedTimer timer;
    timer.start();
    const QList<PlacementResult> results = placer().place(placements);
    const qint64 elapsed = timer.elapsed();
    ASSERT_EQ(results.size(), windows.size());
    for (int i = 0; i < windows.size(); ++i) {
        const std::optional<Result> size = i % 2 == 0 ? std::optional(Result::Ok) : std::nullopt;
        EXPECT_EQ(answers(results[i]), (PlacementResult{Result::Ok, size})) << "window " << i;
        EXPECT_EQ(results[i].frame, before[i]) << "window " << i;
        EXPECT_EQ(readFrame(windows[i]), before[i]) << "window " << i;
    }
    EXPECT_LT(elapsed, X11WindowPlacer::kConfirmationMilliseconds / 2);

    // Mixed with a window that does move, the batch waits only for that one's report.
    const QPointF elsewhere = QPointF(monitors().value(1).topLeft() + QPoint(60, 70));
    placements[0].topLeft = elsewhere;
    timer.restart();
    const QList<PlacementResult> mixed = placer().place(placements);
    const qint64 mixedElapsed = timer.elapsed();
    ASSERT_EQ(mixed.size(), windows.size());
    EXPECT_EQ(answers(mixed[0]), (PlacementResult{Result::Ok, Result::Ok}));
    EXPECT_EQ(readFrame(windows[0]), QRectF(elsewhere, before[0].size()));
    EXPECT_EQ(mixed[0].frame, QRectF(elsewhere, before[0].size()));
    for (int i = 1; i < windows.size(); ++i) {
        EXPECT_EQ(mixed[i].position, Result::Ok) << "window " << i;
        EXPECT_EQ(readFrame(windows[i]), before[i]) << "window " << i;
    }
    EXPECT_LT(mixedElapsed, X11WindowPlacer::kConfirmationMilliseconds / 2);
}

TEST_F(X11WindowPlacementBatchTest, MaximisedWindowInABatchEndsMaximisedOnTheTargetMonitor) {
    const quint32 big =
        client.open(QStringLiteral("big"), placement(0, 100, 100, 600, 400) + QStringLiteral(" states=maximized"));
    const quint32 plain = client.open(QStringLiteral("plain"), placement(0, 500, 100, 300, 200));
    ASSERT_NE(big, 0u);
    ASSERT_NE(plain, 0u);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return readFrame(big).width() > 1800; }));
    const QRect target = monitors().value(1);
    const QSizeF plainSize = readFrame(plain).size();
    const QList<PlacementResult> results =
        placer().place({{big, QPointF(target.topLeft()), QSizeF(800, 600)},
                        {plain, QPointF(target.topLeft() + QPoint(50, 50)), std::nullopt}});
    ASSERT_EQ(results.size(), 2);
    EXPECT_EQ(answers(results[0]), (PlacementResult{Result::Ok, Result::Ok}));
    EXPECT_EQ(answers(results[1]), (PlacementResult{Result::Ok, std::nullopt}));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return target.contains(frameFromTree(big).center()); }));
    // Still maximised: it spans the target monitor's width, whatever size was asked for.
    const QRect frame = frameFromTree(big);
    EXPECT_GE(frame.intersected(target).width(), target.width() - 2);
    const QString list = VirtualDesktop::output(
        QStringLiteral("xprop"), {QStringLiteral("-id"), QString::number(big), QStringLiteral("_NET_WM_STATE")});
    EXPECT_TRUE(list.contains(QStringLiteral("_NET_WM_STATE_MAXIMIZED_HORZ"))) << list.toStdString();
    EXPECT_EQ(readFrame(plain), QRectF(QPointF(target.topLeft() + QPoint(50, 50)), plainSize));
}

}  // namespace
