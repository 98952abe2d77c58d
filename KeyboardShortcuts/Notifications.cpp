#include "KeyboardShortcuts/Notifications.h"

#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcNotifications, "lattica.shortcuts.notifications", QtInfoMsg)

namespace KeyboardShortcuts {

Notifications& Notifications::shared() {
    static Notifications* instance = new Notifications();
    return *instance;
}

void Notifications::postShortcutByNameDidChange(const Name& name) {
    qCDebug(lcNotifications) << shortcutByNameDidChangeName << name.rawValue();
    Q_EMIT shortcutByNameDidChange(name);
}

void Notifications::postRecorderActiveStatusDidChange(bool isActive) {
    qCDebug(lcNotifications) << recorderActiveStatusDidChangeName << isActive;
    Q_EMIT recorderActiveStatusDidChange(isActive);
}

}  // namespace KeyboardShortcuts
