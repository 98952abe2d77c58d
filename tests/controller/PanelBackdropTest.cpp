// SPDX-License-Identifier: MIT
// The opening's capture on a platform that can take a picture of an area: what lies under the panel is
// taken before the panel shows, the monitors only once it has been painted, and the previews show the
// first picture where the panel stands.
#include <QColor>
#include <QCoreApplication>
#include <QThreadPool>

#include "app/controller/PreviewBackdrop.h"
#include "tests/controller/ControllerFixture.h"

namespace {

using PanelBackdrop = ControllerTest;

const QColor kUnderThePanel(0x20, 0x40, 0xc0);

// The monitors' pictures at their full size, so that the area lands on whole pixels.
void useFullSizePictures(FakePlatform& platform) {
    for (const Monitor& monitor : platform.monitors.monitors()) {
        QImage picture(monitor.bounds.size().toSize(), QImage::Format_RGB32);
        picture.fill(Qt::darkGreen);
        platform.monitors.setPicture(monitor.id, picture);
    }
}

bool previewsArrived(const AppController& controller) {
    return !controller.isLoadingPreviews() && !controller.displays().isEmpty() &&
           controller.displays()[0].previewImage.has_value();
}

TEST_F(PanelBackdrop, TheAreaIsTakenWhenThePanelShowsAndTheMonitorsOnceItIsPainted) {
    useFullSizePictures(platform);
    platform.monitors.setAreaColour(kUnderThePanel);
    controller().refreshForMenuOpen();
    // The panel shows in the same turn of the event loop as the refresh, in the second monitor's corner.
    const QRectF panel(1920 + 2560 - 700, 1440 - 24 - 420, 700, 420);
    controller().previewsViewShowing(panel);
    ASSERT_EQ(platform.monitors.capturedAreas(), QList<QRectF>{panel});
    EXPECT_EQ(platform.monitors.capturesBeforeAreas(), QList<int>{0});

    // Until the panel has been painted, no monitor is captured.
    QCoreApplication::processEvents();
    QThreadPool::globalInstance()->waitForDone();
    EXPECT_EQ(platform.monitors.captureCount(), 0);
    EXPECT_TRUE(controller().isLoadingPreviews());

    controller().previewsViewPainted();
    ASSERT_TRUE(waitUntil([&] { return previewsArrived(controller()); }));
    EXPECT_EQ(platform.monitors.captureCount(), 2);
    // Where the panel stands, the second monitor's preview shows what was under it; elsewhere the capture.
    const QImage right = *controller().displays()[1].previewImage;
    const QPoint inside = (panel.center() - QPointF(1920, 0)).toPoint();
    EXPECT_EQ(right.pixelColor(inside), kUnderThePanel);
    EXPECT_EQ(right.pixelColor(QPoint(int(panel.left() - 1920), int(panel.top()))), kUnderThePanel);
    EXPECT_EQ(right.pixelColor(QPoint(int(panel.left() - 1920) - 1, int(panel.top()))), QColor(Qt::darkGreen));
    EXPECT_EQ(right.pixelColor(QPoint(10, 10)), QColor(Qt::darkGreen));
    // The first monitor lies outside the panel.
    const QImage left = *controller().displays()[0].previewImage;
    EXPECT_EQ(left.pixelColor(QPoint(1919, 1079)), QColor(Qt::darkGreen));
}

TEST_F(PanelBackdrop, ARefreshWithoutAPanelShowingCapturesInTheNextTurnAndLeavesThePicturesAlone) {
    useFullSizePictures(platform);
    platform.monitors.setAreaColour(kUnderThePanel);
    // A move's refresh while the panel is open: no showing follows.
    controller().refreshForMenuOpen();
    ASSERT_TRUE(waitUntil([&] { return previewsArrived(controller()); }));
    EXPECT_TRUE(platform.monitors.capturedAreas().isEmpty());
    EXPECT_EQ(controller().displays()[1].previewImage->pixelColor(QPoint(2000, 1000)), QColor(Qt::darkGreen));
}

TEST_F(PanelBackdrop, APanelThatIsNeverPaintedKeepsTheCaptureWaitingOnlyBriefly) {
    platform.monitors.setAreaColour(kUnderThePanel);
    controller().refreshForMenuOpen();
    controller().previewsViewShowing(QRectF(100, 100, 400, 300));
    // No paint is told: the capture starts after its time limit all the same.
    ASSERT_TRUE(waitUntil([&] { return previewsArrived(controller()); }, 2000));
    EXPECT_EQ(platform.monitors.captureCount(), 2);
}

TEST_F(PanelBackdrop, APanelHiddenBeforeItWasPaintedStartsTheCapture) {
    platform.monitors.setAreaColour(kUnderThePanel);
    controller().setPreviewsShown(true);
    controller().refreshForMenuOpen();
    controller().previewsViewShowing(QRectF(100, 100, 400, 300));
    controller().setPreviewsShown(false);
    // Started at once: by the time the threads are done, the monitors have been captured.
    QThreadPool::globalInstance()->waitForDone();
    EXPECT_EQ(platform.monitors.captureCount(), 2);
    ASSERT_TRUE(waitUntil([&] { return !controller().isLoadingPreviews(); }));
    EXPECT_EQ(controller().displays()[0].visibleWindowCount, 0);
}

TEST_F(PanelBackdrop, APanelWithoutAKnownAreaHasTheMonitorsCapturedBeforeItIsMapped) {
    platform.monitors.setAreaColour(kUnderThePanel);
    controller().refreshForMenuOpen();
    // An ordinary window, which a window manager may still move: no area.
    controller().previewsViewShowing(QRectF());
    EXPECT_TRUE(platform.monitors.capturedAreas().isEmpty());
    // Started at once, without a turn of the event loop.
    QThreadPool::globalInstance()->waitForDone();
    EXPECT_EQ(platform.monitors.captureCount(), 2);
    ASSERT_TRUE(waitUntil([&] { return previewsArrived(controller()); }));
}

TEST_F(PanelBackdrop, AnAreaWithoutAPictureHasTheMonitorsCapturedBeforeThePanelIsMapped) {
    platform.monitors.setAreaColour(kUnderThePanel);
    controller().refreshForMenuOpen();
    // Reaching past the monitors: the fake, like the X11 platform, takes no picture of it.
    controller().previewsViewShowing(QRectF(-500, -500, 400, 300));
    ASSERT_EQ(platform.monitors.capturedAreas().size(), 1);
    QThreadPool::globalInstance()->waitForDone();
    EXPECT_EQ(platform.monitors.captureCount(), 2);
    ASSERT_TRUE(waitUntil([&] { return previewsArrived(controller()); }));
}

TEST_F(PanelBackdrop, APlatformWithoutAreaPicturesCapturesTheMonitorsBeforeThePanelShows) {
    // The fake takes no area pictures unless told to.
    controller().refreshForMenuOpen();
    QThreadPool::globalInstance()->waitForDone();
    EXPECT_EQ(platform.monitors.captureCount(), 2) << "captured without a turn of the event loop";
    controller().previewsViewShowing(QRectF(100, 100, 400, 300));
    EXPECT_TRUE(platform.monitors.capturedAreas().isEmpty());
    ASSERT_TRUE(waitUntil([&] { return previewsArrived(controller()); }));
}

TEST_F(PanelBackdrop, RevokedPermissionsKeepAWaitingCaptureFromStarting) {
    platform.monitors.setAreaColour(kUnderThePanel);
    controller().refreshForMenuOpen();
    controller().previewsViewShowing(QRectF(100, 100, 400, 300));
    platform.sessionCheck.screenCaptureAvailable = false;
    controller().refreshPermissions();
    controller().previewsViewPainted();
    finishBackgroundWork();
    QCoreApplication::processEvents();
    QThreadPool::globalInstance()->waitForDone();
    EXPECT_EQ(platform.monitors.captureCount(), 0);
    EXPECT_FALSE(controller().isLoadingPreviews());
}

TEST(PreviewBackdropDrawing, ScalesTheAreaAsThePreviewIsScaled) {
    DisplaySnapshot snapshot;
    snapshot.bounds = QRectF(1000, 0, 400, 200);
    QImage preview(200, 100, QImage::Format_RGB32);  // half size
    preview.fill(Qt::black);
    snapshot.previewImage = preview;
    QImage picture(100, 50, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QList<DisplaySnapshot> snapshots{snapshot};
    PreviewBackdrop{QRectF(1200, 100, 100, 50), picture}.drawInto(snapshots);
    const QImage drawn = *snapshots[0].previewImage;
    EXPECT_EQ(drawn.pixelColor(100, 50), QColor(Qt::white));
    EXPECT_EQ(drawn.pixelColor(149, 74), QColor(Qt::white));
    EXPECT_EQ(drawn.pixelColor(150, 74), QColor(Qt::black));
    EXPECT_EQ(drawn.pixelColor(99, 50), QColor(Qt::black));
    EXPECT_EQ(drawn.pixelColor(100, 75), QColor(Qt::black));
}

}  // namespace
