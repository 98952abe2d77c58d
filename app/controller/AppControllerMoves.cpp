// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <algorithm>

#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "app/mover/WindowMoveStatus.h"
#include "app/mover/WindowMover.h"
#include "app/permissions/PermissionService.h"

namespace {
// Read when shown, so that they are in the language of the moment.
QString accessibilityRequired() {
    return QCoreApplication::translate("AppController", "Window control is required to move windows.");
}
}  // namespace

bool AppController::windowControlGranted() {
    // A refusal is read again before it is reported: window control comes back whenever a window manager
    // starts again, and nothing else would notice until the panel next opens.
    if (!m_permissionState.accessibilityGranted) {
        refreshPermissions();
    }
    return m_permissionState.accessibilityGranted;
}

void AppController::moveWindows(const DisplaySnapshot& source, const DisplaySnapshot& destination) {
    if (!windowControlGranted()) {
        setStatusMessage(accessibilityRequired());
        return;
    }
    const bool adjust = m_adjustWindowSizeToTargetScreen;
    const WindowMoveResult result = WindowMover::moveWindows(source, destination, adjust, std::nullopt, false).counts;
    setStatusMessage(WindowMoveStatus::allWindows(result));
    refreshForMenuOpen();
}

void AppController::moveWindows(const DisplayAppGroup& group, const DisplaySnapshot& source,
                                const DisplaySnapshot& destination) {
    if (!windowControlGranted()) {
        setStatusMessage(accessibilityRequired());
        return;
    }
    const bool adjust = m_adjustWindowSizeToTargetScreen;
    const WindowMoveResult result =
        WindowMover::moveWindows(source, destination, adjust, QSet<pid_t>{group.pid}, true).counts;
    setStatusMessage(WindowMoveStatus::applicationWindows(result, group.name));
    refreshForMenuOpen();
}

void AppController::moveFocusedWindow(const QString& displayPersistentID) {
    if (!windowControlGranted()) {
        setStatusMessage(accessibilityRequired());
        return;
    }
    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();
    const auto target = std::find_if(descriptors.cbegin(), descriptors.cend(),
                                     [&](const DisplayDescriptor& d) { return d.persistentID == displayPersistentID; });
    if (target == descriptors.cend()) {
        setStatusMessage(tr("Shortcut target display is currently not connected."));
        return;
    }
    QList<DisplaySnapshot> allDisplays;
    for (const DisplayDescriptor& descriptor : descriptors) {
        allDisplays.append(DisplaySnapshot::placeholder(descriptor));
    }
    const bool adjust = m_adjustWindowSizeToTargetScreen;
    const WindowMoveResult result =
        WindowMover::moveFocusedWindow(DisplaySnapshot::placeholder(*target), allDisplays, adjust).counts;

    // The shortcut usually fires with the panel closed, so the panel is not refreshed here.
    setStatusMessage(WindowMoveStatus::focusedWindow(result, target->name));
}

void AppController::requestAccessibilityPermission() {
    // No prompt exists: a request looks at the session again, and the state shows what it found.
    const bool usable = PermissionService::requestWindowControl().isUsable();
    setStatusMessage(usable ? tr("Window control is already available.")
                            : tr("Window control is still not available. Click Open Help to see why."));
    refreshPermissions();
}

void AppController::requestScreenRecordingPermission() {
    PermissionService::requestScreenCapture();
    setStatusMessage(tr("Checked screen capture again."));
    refreshPermissions();
}
