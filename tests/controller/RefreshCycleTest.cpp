// SPDX-License-Identifier: MIT
#include <QThreadPool>
#include <algorithm>
#include <utility>

#include "tests/controller/ControllerFixture.h"

namespace {

// The two flags of a permission state: screen capture, then window control.
std::pair<bool, bool> grants(const PermissionState& state) {
    return {state.screenRecordingGranted, state.accessibilityGranted};
}

using RefreshCycle = ControllerTest;

bool captured(const QList<DisplaySnapshot>& displays) {
    return !displays.isEmpty() && displays[0].visibleWindowCount.has_value();
}

TEST_F(RefreshCycle, OpenPublishesPlaceholdersAtOnceThenCapturedSnapshotsInOrder) {
    platform.runningApplications.addApplication(100, QStringLiteral("Editor"));
    platform.windowList.setWindows(
        {{.id = 1, .pid = 100, .ownerName = QStringLiteral("Editor"), .frame = QRectF(100, 100, 800, 600)}});
    holdNextCapture();
    signalLog().clear();
    controller().refreshForMenuOpen();

    ASSERT_EQ(controller().displays().size(), 2);
    for (const DisplaySnapshot& placeholder : controller().displays()) {
        EXPECT_FALSE(placeholder.previewImage.has_value());
        EXPECT_FALSE(placeholder.visibleWindowCount.has_value());
        EXPECT_FALSE(placeholder.invisibleWindowCount.has_value());
        EXPECT_TRUE(placeholder.appGroups.isEmpty());
    }
    EXPECT_EQ(controller().displays()[0].name, QStringLiteral("Left"));
    EXPECT_EQ(controller().displays()[1].bounds, QRectF(1920, 0, 2560, 1440));
    EXPECT_TRUE(controller().isLoadingPreviews());
    EXPECT_EQ(signalLog(), (QStringList{QStringLiteral("permissionState"), QStringLiteral("connectedShortcutDisplays"),
                                        QStringLiteral("disconnectedShortcutDisplays"), QStringLiteral("displays"),
                                        QStringLiteral("isLoadingPreviews=1")}));

    ASSERT_TRUE(heldCaptureStarted());
    release();
    ASSERT_TRUE(waitUntil([&] { return !controller().isLoadingPreviews(); }));
    ASSERT_TRUE(captured(controller().displays()));
    EXPECT_EQ(controller().displays()[0].visibleWindowCount, 1);
    EXPECT_EQ(controller().displays()[1].visibleWindowCount, 0);
    EXPECT_TRUE(controller().displays()[0].previewImage.has_value());
    EXPECT_EQ(signalLog().mid(5), (QStringList{QStringLiteral("displays"), QStringLiteral("isLoadingPreviews=0")}));
}

TEST_F(RefreshCycle, AnOpeningReadsTheMonitorsOnceForTheShortcutRecordsAndThePanel) {
    holdNextCapture();
    const int before = platform.monitors.readCount();
    controller().refreshForMenuOpen();
    EXPECT_EQ(platform.monitors.readCount(), before + 1);
    // Both got what that reading found.
    ASSERT_EQ(controller().displays().size(), 2);
    EXPECT_EQ(controller().connectedShortcutDisplays().size(), 2);
    ASSERT_TRUE(heldCaptureStarted());
    release();
    ASSERT_TRUE(waitUntil([&] { return !controller().isLoadingPreviews(); }));
}

TEST_F(RefreshCycle, TwoOpensInQuickSuccessionPublishOnlyTheSecondCapture) {
    platform.runningApplications.addApplication(100, QStringLiteral("Editor"));
    platform.windowList.setWindows(
        {{.id = 1, .pid = 100, .ownerName = QStringLiteral("Editor"), .frame = QRectF(100, 100, 800, 600)}});
    holdNextCapture();
    controller().refreshForMenuOpen();
    const QUuid firstToken = controller().previewLoadID();
    ASSERT_TRUE(heldCaptureStarted());

    // The second open sees two windows; the first capture has already taken the list with one.
    platform.windowList.setWindows({
        {.id = 1, .pid = 100, .ownerName = QStringLiteral("Editor"), .frame = QRectF(100, 100, 800, 600)},
        {.id = 2, .pid = 100, .ownerName = QStringLiteral("Editor"), .frame = QRectF(300, 100, 800, 600)},
    });
    controller().refreshForMenuOpen();
    EXPECT_NE(controller().previewLoadID(), firstToken);
    ASSERT_TRUE(waitUntil([&] { return captured(controller().displays()); }));
    EXPECT_EQ(controller().displays()[0].visibleWindowCount, 2);
    EXPECT_FALSE(controller().isLoadingPreviews());

    // The first capture ends later and is dropped.
    release();
    finishBackgroundWork();
    EXPECT_EQ(platform.windowList.queryCount(), 2);
    EXPECT_EQ(controller().displays()[0].visibleWindowCount, 2);
    EXPECT_FALSE(controller().isLoadingPreviews());
}

TEST_F(RefreshCycle, RevokingScreenRecordingDuringCaptureDropsItsResult) {
    holdNextCapture();
    controller().refreshForMenuOpen();
    const QUuid token = controller().previewLoadID();
    ASSERT_TRUE(heldCaptureStarted());

    platform.sessionCheck.screenCaptureAvailable = false;
    controller().refreshPermissions();
    EXPECT_NE(controller().previewLoadID(), token);
    EXPECT_FALSE(controller().isLoadingPreviews());
    EXPECT_FALSE(controller().permissionState().screenRecordingGranted);
    // refreshPermissions alone leaves the cards as they are.
    EXPECT_EQ(controller().displays().size(), 2);

    release();
    finishBackgroundWork();
    EXPECT_EQ(platform.windowList.queryCount(), 1);
    ASSERT_EQ(controller().displays().size(), 2);
    EXPECT_FALSE(captured(controller().displays()));
    EXPECT_FALSE(controller().isLoadingPreviews());
}

TEST_F(RefreshCycle, OpenWithoutScreenRecordingClearsCardsWithoutCapture) {
    controller().refreshForMenuOpen();
    ASSERT_TRUE(waitUntil([&] { return !controller().isLoadingPreviews(); }));
    ASSERT_EQ(controller().displays().size(), 2);

    platform.sessionCheck.screenCaptureAvailable = false;
    const QUuid token = controller().previewLoadID();
    const int queries = platform.windowList.queryCount();
    controller().refreshForMenuOpen();
    EXPECT_TRUE(controller().displays().isEmpty());
    EXPECT_FALSE(controller().isLoadingPreviews());
    EXPECT_NE(controller().previewLoadID(), token);
    finishBackgroundWork();
    EXPECT_EQ(platform.windowList.queryCount(), queries);
}

TEST_F(RefreshCycle, OpenWithoutAccessibilityClearsCardsWithoutCapture) {
    platform.sessionCheck.windowControlAvailable = false;
    controller().refreshForMenuOpen();
    EXPECT_TRUE(controller().displays().isEmpty());
    EXPECT_FALSE(controller().isLoadingPreviews());
    EXPECT_FALSE(controller().permissionState().accessibilityGranted);
    finishBackgroundWork();
    EXPECT_EQ(platform.windowList.queryCount(), 0);
}

TEST_F(RefreshCycle, ZeroDisplaysLeaveTheTokenUnchanged) {
    platform.monitors.setMonitors({});
    const QUuid token = controller().previewLoadID();
    controller().refreshForMenuOpen();
    EXPECT_TRUE(controller().displays().isEmpty());
    EXPECT_FALSE(controller().isLoadingPreviews());
    EXPECT_EQ(controller().previewLoadID(), token);
    finishBackgroundWork();
    EXPECT_EQ(platform.windowList.queryCount(), 0);
}

TEST_F(RefreshCycle, PermissionRefreshWithBothGrantedTouchesNothingElse) {
    const QUuid token = controller().previewLoadID();
    signalLog().clear();
    controller().refreshPermissions();
    EXPECT_EQ(controller().previewLoadID(), token);
    EXPECT_EQ(signalLog(), QStringList{QStringLiteral("permissionState")});
    EXPECT_EQ(grants(controller().permissionState()), std::make_pair(true, true));
}

TEST_F(RefreshCycle, PermissionRefreshReadsBothAnswersAfresh) {
    platform.sessionCheck.windowControlAvailable = false;
    controller().refreshPermissions();
    EXPECT_EQ(grants(controller().permissionState()), std::make_pair(true, false));
    platform.sessionCheck.windowControlAvailable = true;
    platform.sessionCheck.screenCaptureAvailable = false;
    controller().refreshPermissions();
    EXPECT_EQ(grants(controller().permissionState()), std::make_pair(false, true));
}

TEST_F(RefreshCycle, OpenFollowsDisplayChangesInShortcutLists) {
    controller().refreshForMenuOpen();
    finishBackgroundWork();  // the fake displays are not meant to change under a running capture
    platform.monitors.setMonitors({platform.monitors.monitors()[0]});
    controller().refreshForMenuOpen();
    EXPECT_EQ(controller().connectedShortcutDisplays().size(), 1);
    EXPECT_EQ(controller().disconnectedShortcutDisplays().size(), 1);
    ASSERT_TRUE(waitUntil([&] { return !controller().isLoadingPreviews(); }));
    EXPECT_EQ(controller().displays().size(), 1);
}

TEST_F(RefreshCycle, DisplayChangeRebuildsShortcutListsButLeavesCardsUntilNextOpen) {
    controller().refreshForMenuOpen();
    ASSERT_TRUE(waitUntil([&] { return !controller().isLoadingPreviews(); }));
    finishBackgroundWork();
    const int queries = platform.windowList.queryCount();
    platform.monitors.changeMonitors({platform.monitors.monitors()[0]});
    ASSERT_TRUE(waitUntil([&] { return controller().connectedShortcutDisplays().size() == 1; }));
    EXPECT_EQ(controller().displays().size(), 2);
    EXPECT_FALSE(controller().isLoadingPreviews());
    finishBackgroundWork();
    EXPECT_EQ(platform.windowList.queryCount(), queries);
}

TEST_F(RefreshCycle, CaptureFinishingAfterControllerIsGoneIsDiscarded) {
    holdNextCapture();
    controller().refreshForMenuOpen();
    ASSERT_TRUE(heldCaptureStarted());
    destroyController();
    release();
    finishBackgroundWork();
    // The capture ran to its end; its hand-over found no controller and did nothing.
    EXPECT_EQ(platform.windowList.queryCount(), 1);
    EXPECT_EQ(platform.monitors.captureCount(), 2);
}

}  // namespace

namespace {

bool holdsPictures(const QList<DisplaySnapshot>& displays) {
    return std::any_of(displays.cbegin(), displays.cend(),
                       [](const DisplaySnapshot& display) { return display.previewImage.has_value(); });
}

TEST_F(RefreshCycle, ClosingThePanelLetsThePicturesGoAndKeepsTheCounts) {
    controller().refreshForMenuOpen();
    ASSERT_TRUE(waitUntil([&] { return captured(controller().displays()); }));
    ASSERT_TRUE(holdsPictures(controller().displays()));

    controller().setPreviewsShown(false);
    EXPECT_FALSE(holdsPictures(controller().displays()));
    ASSERT_EQ(controller().displays().size(), 2);
    EXPECT_TRUE(controller().displays()[0].visibleWindowCount.has_value());

    // The next opening takes new pictures.
    controller().setPreviewsShown(true);
    controller().refreshForMenuOpen();
    ASSERT_TRUE(waitUntil([&] { return captured(controller().displays()); }));
    EXPECT_TRUE(holdsPictures(controller().displays()));
}

TEST_F(RefreshCycle, ACaptureThatEndsAfterThePanelClosedKeepsNoPictures) {
    holdNextCapture();
    controller().refreshForMenuOpen();
    ASSERT_TRUE(heldCaptureStarted());
    controller().setPreviewsShown(false);
    release();
    ASSERT_TRUE(waitUntil([&] { return !controller().isLoadingPreviews(); }));
    ASSERT_TRUE(captured(controller().displays()));
    EXPECT_FALSE(holdsPictures(controller().displays()));
}

}  // namespace
