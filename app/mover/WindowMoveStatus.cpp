// SPDX-License-Identifier: MIT
#include "app/mover/WindowMoveStatus.h"

#include <QCoreApplication>

QString WindowMoveStatus::allWindows(const WindowMoveResult& result) {
    return QCoreApplication::translate("WindowMoveStatus", "Moved %1 of %n windows.", nullptr, result.attemptedCount)
        .arg(result.movedCount);
}

QString WindowMoveStatus::applicationWindows(const WindowMoveResult& result, const QString& application) {
    return QCoreApplication::translate("WindowMoveStatus", "Moved %1 of %n %2 windows.", nullptr, result.attemptedCount)
        .arg(QString::number(result.movedCount), application);
}

QString WindowMoveStatus::focusedWindow(const WindowMoveResult& result, const QString& monitor) {
    if (result.attemptedCount == 0) {
        return QCoreApplication::translate("WindowMoveStatus", "No focused window was found to move.");
    }
    if (result.movedCount < 1) {
        return QCoreApplication::translate("WindowMoveStatus", "Focused window could not be moved to %1.").arg(monitor);
    }
    return QCoreApplication::translate("WindowMoveStatus", "Moved focused window to %1.").arg(monitor);
}
