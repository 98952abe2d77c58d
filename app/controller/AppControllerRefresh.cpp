// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <QThreadPool>
#include <algorithm>

#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "app/permissions/PermissionService.h"

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
    refreshShortcutDisplays();

    if (!m_permissionState.bothGranted()) {
        m_previewLoadID = QUuid::createUuid();
        setIsLoadingPreviews(false);
        setDisplays({});
        return;
    }

    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();
    if (descriptors.isEmpty()) {
        // No capture starts, so there is nothing to invalidate: the token stays.
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

    // The capture runs in the background; its result comes back through a queued call on the main
    // thread that holds the controller only weakly.
    const QPointer<AppController> weakSelf(this);
    QThreadPool::globalInstance()->start([descriptors, token, weakSelf] {
        const QList<DisplaySnapshot> snapshots = ScreenSnapshotService::captureDisplaySnapshots(descriptors);
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
    const bool holdsPictures = std::any_of(m_displays.cbegin(), m_displays.cend(),
                                           [](const DisplaySnapshot& display) { return display.previewImage; });
    if (holdsPictures) {
        setDisplays(withoutPreviews(m_displays));
    }
}
