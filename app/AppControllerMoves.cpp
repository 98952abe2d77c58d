#include <algorithm>

#include "app/AppController.h"
#include "app/PermissionService.h"
#include "app/ScreenSnapshotService.h"
#include "app/WindowMover.h"

namespace {
const QString kAccessibilityRequired = QStringLiteral("Accessibility permission is required to move windows.");
const QString kAccessibilityGranted = QStringLiteral("Accessibility permission is already granted.");
}  // namespace

void AppController::moveWindows(const DisplaySnapshot& source, const DisplaySnapshot& destination) {
    if (!m_permissionState.accessibilityGranted) {
        setStatusMessage(kAccessibilityRequired);
        return;
    }
    const bool adjust = m_adjustWindowSizeToTargetScreen;
    const WindowMoveResult result = WindowMover::moveWindows(source, destination, adjust, std::nullopt, false);
    setStatusMessage(QStringLiteral("Moved %1 of %2 windows.")
                         .arg(QString::number(result.movedCount), QString::number(result.attemptedCount)));
    refreshForMenuOpen();
}

void AppController::moveWindows(const DisplayAppGroup& group, const DisplaySnapshot& source,
                                const DisplaySnapshot& destination) {
    if (!m_permissionState.accessibilityGranted) {
        setStatusMessage(kAccessibilityRequired);
        return;
    }
    const bool adjust = m_adjustWindowSizeToTargetScreen;
    const WindowMoveResult result = WindowMover::moveWindows(source, destination, adjust, QSet<pid_t>{group.pid}, true);
    setStatusMessage(QStringLiteral("Moved %1 of %2 %3 windows.")
                         .arg(QString::number(result.movedCount), QString::number(result.attemptedCount), group.name));
    refreshForMenuOpen();
}

void AppController::moveFocusedWindow(const QString& displayPersistentID) {
    if (!m_permissionState.accessibilityGranted) {
        setStatusMessage(kAccessibilityRequired);
        return;
    }
    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();
    const auto target = std::find_if(descriptors.cbegin(), descriptors.cend(),
                                     [&](const DisplayDescriptor& d) { return d.persistentID == displayPersistentID; });
    if (target == descriptors.cend()) {
        setStatusMessage(QStringLiteral("Shortcut target display is currently not connected."));
        return;
    }
    QList<DisplaySnapshot> allDisplays;
    for (const DisplayDescriptor& descriptor : descriptors) {
        allDisplays.append(DisplaySnapshot::placeholder(descriptor));
    }
    const bool adjust = m_adjustWindowSizeToTargetScreen;
    const WindowMoveResult result =
        WindowMover::moveFocusedWindow(DisplaySnapshot::placeholder(*target), allDisplays, adjust);

    // The shortcut usually fires with the panel closed, so the panel is not refreshed here.
    if (result.attemptedCount == 0) {
        setStatusMessage(QStringLiteral("No focused window was found to move."));
    } else if (result.movedCount < 1) {
        setStatusMessage(QStringLiteral("Focused window could not be moved to ") + target->name + QLatin1Char('.'));
    } else {
        setStatusMessage(QStringLiteral("Moved focused window to ") + target->name + QLatin1Char('.'));
    }
}

void AppController::requestAccessibilityPermission() {
    // No prompt exists: a request looks at the session again, and the state shows what it found.
    const bool usable = PermissionService::requestWindowControl().isUsable();
    setStatusMessage(usable ? kAccessibilityGranted
                            : QStringLiteral("Requested Accessibility permission. If no prompt appears, click Open "
                                             "System Settings."));
    refreshPermissions();
}

void AppController::requestScreenRecordingPermission() {
    PermissionService::requestScreenCapture();
    setStatusMessage(QStringLiteral("Requested Screen Recording permission. macOS may require app restart."));
    refreshPermissions();
}
