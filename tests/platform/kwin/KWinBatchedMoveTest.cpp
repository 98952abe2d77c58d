// SPDX-License-Identifier: MIT
#include "app/displays/ScreenSnapshotService.h"
#include "app/mover/WindowMover.h"
#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "platform/WindowPlacer.h"
#include "platform/kwin/KWinBridge.h"
#include "tests/platform/kwin/KWinSessionFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

// Moves of many windows go to KWin as one script that answers for every window at once.
class KWinBatchedMoveTest : public KWinSessionFixture {
protected:
    void SetUp() override {
        KWinSessionFixture::SetUp();
        if (HasFatalFailure() || IsSkipped()) {
            return;
        }
        for (const DisplayDescriptor& descriptor : ScreenSnapshotService::currentDisplayDescriptors()) {
            displays.append(DisplaySnapshot::placeholder(descriptor));
        }
        ASSERT_EQ(displays.size(), 3);
    }

    WindowControl& control() { return *Platform::services().windowControl; }
    WindowPlacer& placer() { return *dynamic_cast<WindowPlacer*>(Platform::services().windowControl); }
    int commands() { return platform->bridge().commandCount(); }

    // Opens native windows on the first output, each at its own place; their ids.
    QList<WindowId> openOnFirstOutput(int count) {
        QList<WindowId> ids;
        for (int i = 0; i < count; ++i) {
            const QString title = QStringLiteral("batch-%1").arg(i);
            if (!wayland.open(title,
                              QStringLiteral("title=%1 w=%2 h=%3").arg(title).arg(200 + 20 * i).arg(150 + 10 * i))) {
                return {};
            }
            const auto entry = waitForWindow(title);
            if (!entry || control().move(entry->id, QPointF(40 + 150 * i, 60 + 70 * i)) != Result::Ok) {
                return {};
            }
            ids.append(entry->id);
        }
        return ids;
    }

    QRectF frameOf(WindowId id) { return control().frame(id).value.value_or(QRectF()); }

    // Where the mover puts a frame of the source display on the destination display.
    static QRectF expected(const QRectF& frame, const QRectF& source, const QRectF& destination, bool adjustSize) {
        const QSizeF size = adjustSize ? WindowMover::adjustedSize(frame, source, destination) : frame.size();
        return QRectF(WindowMover::destinationOrigin(WindowMover::normalizedCenter(frame, source), size, destination),
                      size);
    }

    QList<DisplaySnapshot> displays;
};

TEST_F(KWinBatchedMoveTest, MovingAllWindowsOfAnOutputIsOneScriptAndEachLandsInItsPlace) {
    const QList<WindowId> ids = openOnFirstOutput(6);
    ASSERT_EQ(ids.size(), 6);
    QList<QRectF> before;
    for (WindowId id : ids) {
        before.append(frameOf(id));
    }
    const int commandsBefore = commands();
    const WindowMoveReport report = WindowMover::moveWindows(displays[0], displays[1], false,
                                                             QSet<pid_t>{static_cast<pid_t>(wayland.pid())}, false);
    EXPECT_EQ(commands() - commandsBefore, 1);
    EXPECT_EQ(report.counts, (WindowMoveResult{6, 6}));
    for (qsizetype i = 0; i < ids.size(); ++i) {
        const QRectF wanted = expected(before[i], displays[0].bounds, displays[1].bounds, false);
        EXPECT_TRUE(near(frameOf(ids[i]), wanted)) << i;
        const WindowMoveRecord* record = report.window(ids[i]);
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(record->outcome, WindowMoveOutcome::Moved);
        EXPECT_EQ(record->writes.position, Result::Ok);
        ASSERT_TRUE(record->frameAfter);
        EXPECT_TRUE(near(*record->frameAfter, wanted)) << i;
    }
}

TEST_F(KWinBatchedMoveTest, AdjustingSizesTakesAtMostTwoScriptsAndEachWindowKeepsItsShare) {
    const QList<WindowId> ids = openOnFirstOutput(4);
    ASSERT_EQ(ids.size(), 4);
    QList<QRectF> before;
    for (WindowId id : ids) {
        before.append(frameOf(id));
    }
    const int commandsBefore = commands();
    const WindowMoveReport report =
        WindowMover::moveWindows(displays[0], displays[2], true, QSet<pid_t>{static_cast<pid_t>(wayland.pid())}, false);
    EXPECT_LE(commands() - commandsBefore, 2);
    EXPECT_EQ(report.counts, (WindowMoveResult{4, 4}));
    for (qsizetype i = 0; i < ids.size(); ++i) {
        const QRectF wanted = expected(before[i], displays[0].bounds, displays[2].bounds, true);
        EXPECT_TRUE(near(frameOf(ids[i]), wanted))
            << i << ": " << frameOf(ids[i]).width() << "x" << frameOf(ids[i]).height() << " wanted " << wanted.width()
            << "x" << wanted.height();
        EXPECT_EQ(report.window(ids[i])->writes, (WindowMoveWrites{Result::Ok, Result::Ok, Result::Ok}));
    }
}

TEST_F(KWinBatchedMoveTest, ABatchAnswersForEachWindowGoneMovedOrMaximised) {
    const QList<WindowId> ids = openOnFirstOutput(2);
    ASSERT_EQ(ids.size(), 2);
    ASSERT_TRUE(wayland.open(QStringLiteral("big"), QStringLiteral("title=batch-maximised state=maximized")));
    std::optional<WindowEntry> maximised;
    int from = -1;
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        maximised = waitForWindow(QStringLiteral("batch-maximised"), 100);
        for (int i = 0; maximised && i < displays.size(); ++i) {
            if (near(maximised->frame, displays[i].bounds)) {
                from = i;
            }
        }
        return from >= 0;
    }));
    const int to = (from + 1) % 3;
    // One window closes before the batch reaches KWin.
    ASSERT_TRUE(wayland.close(QStringLiteral("batch-1")));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return control().frame(ids[1]).result == Result::Gone; }));

    const QPointF first = displays[to].bounds.topLeft() + QPointF(30, 40);
    const int commandsBefore = commands();
    const QList<PlacementResult> results =
        placer().place({{ids[0], first, QSizeF(320, 240)},
                        {ids[1], displays[to].bounds.topLeft() + QPointF(300, 40), std::nullopt},
                        {maximised->id, displays[to].bounds.topLeft() + QPointF(10, 10), std::nullopt}});
    // The closed window is known gone before anything is sent; the two others go in one script.
    EXPECT_EQ(commands() - commandsBefore, 1);
    ASSERT_EQ(results.size(), 3);
    EXPECT_EQ(results[0], (PlacementResult{Result::Ok, Result::Ok}));
    EXPECT_EQ(results[1], (PlacementResult{Result::Gone, std::nullopt}));
    EXPECT_EQ(results[2], (PlacementResult{Result::Ok, std::nullopt}));
    EXPECT_TRUE(near(frameOf(ids[0]), QRectF(first, QSizeF(320, 240))));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return near(frameOf(maximised->id), displays[to].bounds); }))
        << frameOf(maximised->id).x() << "," << frameOf(maximised->id).y() << " " << frameOf(maximised->id).width()
        << "x" << frameOf(maximised->id).height();
}

}  // namespace
