// SPDX-License-Identifier: MIT
// The writes the window mover makes on a real window manager, seen between the mover and the X11 window
// control: an adjusted move still makes its three writes per window (position, size, final position),
// and the final one, which finds the window already in place, is confirmed without waiting.
#include <QElapsedTimer>
#include <memory>

#include "app/displays/ScreenSnapshotService.h"
#include "app/mover/WindowMover.h"
#include "platform/Platform.h"
#include "platform/x11/X11WindowPlacer.h"
#include "tests/platform/x11/X11DesktopFixture.h"
#include "tests/support/ForwardingWindowControl.h"

namespace {

// The desktop's own window control, recording every batch of placements and how long it took.
class RecordingWindowControl : public ForwardingWindowControl {
public:
    struct Batch {
        QList<WindowPlacement> placements;
        QList<PlacementResult> results;
        qint64 milliseconds = 0;
    };

    explicit RecordingWindowControl(WindowControl& real) : ForwardingWindowControl(real) {}

    const QList<Batch>& batches() const { return m_batches; }
    // The index of the window's placement in a batch; -1 when it has none.
    static qsizetype indexOf(const Batch& batch, WindowId window) {
        for (qsizetype i = 0; i < batch.placements.size(); ++i) {
            if (batch.placements[i].window == window) {
                return i;
            }
        }
        return -1;
    }
    int singleWrites() const { return m_singleWrites; }

    Result move(WindowId window, const QPointF& topLeft) override {
        ++m_singleWrites;
        return ForwardingWindowControl::move(window, topLeft);
    }
    Result resize(WindowId window, const QSizeF& size) override {
        ++m_singleWrites;
        return ForwardingWindowControl::resize(window, size);
    }
    QList<PlacementResult> place(const QList<WindowPlacement>& placements) override {
        QElapsedTimer timer;
        timer.start();
        Batch batch{placements, ForwardingWindowControl::place(placements), 0};
        batch.milliseconds = timer.elapsed();
        m_batches.append(batch);
        return batch.results;
    }

private:
    QList<Batch> m_batches;
    int m_singleWrites = 0;
};

class X11MoverWritesTest : public X11DesktopFixture {
protected:
    void SetUp() override {
        X11DesktopFixture::SetUp();
        m_recorder = std::make_unique<RecordingWindowControl>(*platform->services().windowControl);
        PlatformServices services = platform->services();
        services.windowControl = m_recorder.get();
        Platform::install(services);
    }
    const RecordingWindowControl& recorder() const { return *m_recorder; }

private:
    std::unique_ptr<RecordingWindowControl> m_recorder;
};

TEST_F(X11MoverWritesTest, AdjustedMoveMakesThreeWritesPerWindowAndTheFinalOneDoesNotWait) {
    // Sizes whose share of the source gives fractions on the target.
    const QList<QRect> places = {QRect(100, 100, 401, 303), QRect(700, 450, 517, 333), QRect(1200, 60, 371, 211)};
    QList<quint32> windows;
    for (int i = 0; i < places.size(); ++i) {
        const QRect& p = places[i];
        windows.append(client.open(QStringLiteral("w%1").arg(i), placement(0, p.x(), p.y(), p.width(), p.height())));
        ASSERT_NE(windows.last(), 0u);
    }
    const WindowMoveReport report = WindowMover::moveWindows(display(0), display(1), true, std::nullopt, false);
    EXPECT_EQ(report.counts, (WindowMoveResult{3, 3}));
    EXPECT_EQ(recorder().singleWrites(), 0);
    // One batch with each window's position and size, then one with each window's final position.
    ASSERT_EQ(recorder().batches().size(), 2);
    const RecordingWindowControl::Batch& first = recorder().batches()[0];
    const RecordingWindowControl::Batch& final = recorder().batches()[1];
    ASSERT_EQ(first.placements.size(), windows.size());
    ASSERT_EQ(final.placements.size(), windows.size());
    for (int w = 0; w < windows.size(); ++w) {
        SCOPED_TRACE(w);
        const qsizetype i = RecordingWindowControl::indexOf(first, windows[w]);
        const qsizetype f = RecordingWindowControl::indexOf(final, windows[w]);
        ASSERT_GE(i, 0);
        ASSERT_GE(f, 0);
        ASSERT_TRUE(first.placements[i].size.has_value());
        EXPECT_EQ(first.results[i].position, Result::Ok);
        EXPECT_EQ(first.results[i].size, Result::Ok);
        EXPECT_FALSE(final.placements[f].size.has_value());
        EXPECT_EQ(final.results[f].position, Result::Ok);
        // The window took the size it was asked for, so the final position is where it already stands.
        EXPECT_EQ(final.placements[f].topLeft, first.placements[i].topLeft);
        const QRectF landed(first.placements[i].topLeft, *first.placements[i].size);
        EXPECT_TRUE(near(frameFromTree(windows[w]), landed, 0.5));
        const WindowMoveRecord* record = report.window(windows[w]);
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(record->outcome, WindowMoveOutcome::Moved);
        EXPECT_EQ(record->writes, (WindowMoveWrites{Result::Ok, Result::Ok, Result::Ok}));
        ASSERT_TRUE(record->frameAfter.has_value());
        EXPECT_EQ(*record->frameAfter, QRectF(frameFromTree(windows[w])));
    }
    // A placement nothing answers would hold the batch for the whole limit.
    EXPECT_LT(final.milliseconds, X11WindowPlacer::kConfirmationMilliseconds / 2)
        << "final placements took " << final.milliseconds << " ms";
}

TEST_F(X11MoverWritesTest, KeptSizeMoveMakesOneWritePerWindowAndReportsTheFrameItLandedAt) {
    const QList<QRect> places = {QRect(100, 100, 400, 300), QRect(900, 500, 600, 400)};
    QList<quint32> windows;
    for (int i = 0; i < places.size(); ++i) {
        const QRect& p = places[i];
        windows.append(client.open(QStringLiteral("k%1").arg(i), placement(0, p.x(), p.y(), p.width(), p.height())));
        ASSERT_NE(windows.last(), 0u);
    }
    const WindowMoveReport report = WindowMover::moveWindows(display(0), display(1), false, std::nullopt, false);
    EXPECT_EQ(report.counts, (WindowMoveResult{2, 2}));
    ASSERT_EQ(recorder().batches().size(), 1);
    const RecordingWindowControl::Batch& batch = recorder().batches()[0];
    ASSERT_EQ(batch.placements.size(), windows.size());
    for (int w = 0; w < windows.size(); ++w) {
        SCOPED_TRACE(w);
        const qsizetype i = RecordingWindowControl::indexOf(batch, windows[w]);
        ASSERT_GE(i, 0);
        EXPECT_FALSE(batch.placements[i].size.has_value());
        EXPECT_EQ(batch.results[i].position, Result::Ok);
        // The frame the placement told is the one the window has, and the one the report gives.
        const QRectF landed = frameFromTree(windows[w]);
        EXPECT_EQ(batch.results[i].frame, landed);
        const WindowMoveRecord* record = report.window(windows[w]);
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(record->writes, (WindowMoveWrites{Result::Ok, std::nullopt, std::nullopt}));
        EXPECT_EQ(record->frameAfter, landed);
    }
}

}  // namespace
