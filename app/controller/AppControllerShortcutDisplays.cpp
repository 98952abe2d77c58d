// SPDX-License-Identifier: MIT
#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"

QString AppController::shortcutNameRawValue(const QString& persistentID) {
    return DisplayShortcuts::shortcutName(persistentID);
}

void AppController::refreshShortcutDisplays() {
    refreshShortcutDisplays(ScreenSnapshotService::currentDisplayDescriptors());
}

void AppController::refreshShortcutDisplays(const QList<DisplayDescriptor>& connected) {
    m_displayShortcuts.refresh(connected);
    publish(m_connectedShortcutDisplays, m_displayShortcuts.connected(),
            &AppController::connectedShortcutDisplaysChanged);
    publish(m_disconnectedShortcutDisplays, m_displayShortcuts.disconnected(),
            &AppController::disconnectedShortcutDisplaysChanged);
    reviewPreferencesWrite(false);
}

bool AppController::hasAssignedDisplayShortcuts() const {
    return m_displayShortcuts.hasAssignedShortcuts();
}

void AppController::deleteDisconnectedShortcutDisplay(const QString& persistentID) {
    if (m_displayShortcuts.forgetDisconnected(persistentID)) {
        refreshShortcutDisplays();
        reviewPreferencesWrite(true);
    }
}
