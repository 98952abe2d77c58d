// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <QThreadPool>
#include <algorithm>
#include <utility>

#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "app/permissions/PermissionService.h"
#include "platform/Monitors.h"
#include "platform/Platform.h"

namespace {

QList<DisplaySnapshot> withoutPreviews(QList<DisplaySnapshot> displays) {
    for (DisplaySnapshot& display : displays) {
        display.previewImage.reset();
    }
    return displays;
}

}  // namespace

void AppController::refreshPermissions() {
    setPermissionState(PermissionService::currentState());
    if (m_permissionState.bothGranted()) {
        return;
    }
    // A capture still running is dropped when it ends; the cards stay as they are.
    m_previewLoadID = QUuid::createUuid();
    setIsLoadingPreviews(false);
}

void AppController::refreshForMenuOpen() {
    refreshPermissions();
    // One reading of the monitors serves the shortcut records and the panel: each is a round trip to the
    // display server while the panel waits.
    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();
    refreshShortcutDisplays(descriptors);

    if (!m_permissionState.bothGranted()) {
        m_previewLoadID = QUuid::createUuid();
        setIsLoadingPreviews(false);
        setDisplays({});
        return;
    }

    if (descriptors.isEmpty()) {
        // No capture starts, so there is nothing to invalidate: the token stays. An earlier refresh's
        // capture that has not started yet never will.
        m_pendingCapture.reset();
        setIsLoadingPreviews(false);
        setDisplays({});
        return;
    }

    QList<DisplaySnapshot> placeholders;
    for (const DisplayDescriptor& descriptor : descriptors) {
        placeholders.append(DisplaySnapshot::placeholder(descriptor));
    }
    setDisplays(placeholders);
    setIsLoadingPreviews(true);

    const QUuid token = QUuid::createUuid();
    m_previewLoadID = token;

    // This refresh's picture of what lies under the panel comes with the panel's showing, if at all.
    m_backdrop = {};
    m_viewPaintBound.stop();
    if (!Platform::services().monitors->canCaptureAreas()) {
        // The panel cannot be left out of the pictures afterwards: they are asked for before it shows.
        m_pendingCapture.reset();
        startCapture(descriptors, token, {});
        return;
    }
    // The panel, if this refresh opens it, shows before the next turn of the event loop and then makes
    // the capture wait for its paint; otherwise the capture starts in that turn.
    m_pendingCapture = PendingCapture{descriptors, token};
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (!m_viewPaintBound.isActive()) {
                startPendingCapture();
            }
        },
        Qt::QueuedConnection);
}

void AppController::previewsViewShowing(const QRectF& area) {
    if (!m_pendingCapture || m_viewPaintBound.isActive()) {
        return;
    }
    // Taken before the panel is mapped: the platform answers once the picture is taken.
    const QImage under = area.isEmpty() ? QImage() : Platform::services().monitors->captureArea(area);
    if (under.isNull()) {
        // Nothing to show in the panel's place: the monitors are captured now, before the panel is mapped.
        startPendingCapture();
        return;
    }
    m_backdrop = {area, under};
    m_viewPaintBound.start();
}

void AppController::previewsViewPainted() {
    if (!m_viewPaintBound.isActive()) {
        return;
    }
    m_viewPaintBound.stop();
    // Posted: the paint goes to the display server at the end of this turn of the event loop, ahead of
    // the capture's requests, which would otherwise keep the server from drawing it.
    QMetaObject::invokeMethod(this, &AppController::startPendingCapture, Qt::QueuedConnection);
}

void AppController::preparePreviews(const QRectF& area) {
    Platform::services().monitors->prepareCapture(area);
}

void AppController::startPendingCapture() {
    if (!m_pendingCapture) {
        return;
    }
    const PendingCapture pending = *std::exchange(m_pendingCapture, std::nullopt);
    // The capture holds the only reference to the backdrop's picture from now on.
    const PreviewBackdrop backdrop = std::exchange(m_backdrop, {});
    m_viewPaintBound.stop();
    // Cancelled before it began (permissions lost): its result would be dropped anyway.
    if (pending.token != m_previewLoadID) {
        return;
    }
    startCapture(pending.descriptors, pending.token, backdrop);
}

void AppController::startCapture(const QList<DisplayDescriptor>& descriptors, const QUuid& token,
                                 const PreviewBackdrop& backdrop) {
    // The capture runs in the background; its result comes back through a queued call on the main
    // thread that holds the controller only weakly.
    const QPointer<AppController> weakSelf(this);
    QThreadPool::globalInstance()->start([descriptors, token, weakSelf, backdrop] {
        QList<DisplaySnapshot> snapshots = ScreenSnapshotService::captureDisplaySnapshots(descriptors);
        backdrop.drawInto(snapshots);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [snapshots, token, weakSelf] {
                if (weakSelf) {
                    weakSelf->applyCapturedSnapshots(snapshots, token);
                }
            },
            Qt::QueuedConnection);
    });
}

void AppController::applyCapturedSnapshots(const QList<DisplaySnapshot>& snapshots, const QUuid& token) {
    // A newer refresh or a cancellation owns the state now.
    if (m_previewLoadID != token) {
        return;
    }
    if (m_previewsShown) {
        setDisplays(snapshots);
    } else {
        setDisplays(withoutPreviews(snapshots));
    }
    setIsLoadingPreviews(false);
}

void AppController::setPreviewsShown(bool shown) {
    m_previewsShown = shown;
    if (shown) {
        return;
    }
    // The panel went before it was painted: its capture waits no longer.
    if (m_viewPaintBound.isActive()) {
        startPendingCapture();
    }
    const bool holdsPictures = std::any_of(m_displays.cbegin(), m_displays.cend(),
                                           [](const DisplaySnapshot& display) { return display.previewImage; });
    if (holdsPictures) {
        // Letting tens of megabytes of pictures go takes milliseconds (the shared memory is unmapped):
        // the last reference goes on a background thread, so that the program answers the next click at once.
        QList<DisplaySnapshot> withPictures = m_displays;
        setDisplays(withoutPreviews(m_displays));
        QThreadPool::globalInstance()->start([pictures = std::move(withPictures)]() mutable { pictures.clear(); });
    }
}
