// SPDX-License-Identifier: MIT
#include "app/mover/WindowMoveStatus.h"

QString WindowMoveStatus::allWindows(const WindowMoveResult& result) {
    return QStringLiteral("Moved %1 of %2 windows.")
        .arg(QString::number(result.movedCount), QString::number(result.attemptedCount));
}

QString WindowMoveStatus::applicationWindows(const WindowMoveResult& result, const QString& application) {
    return QStringLiteral("Moved %1 of %2 %3 windows.")
        .arg(QString::number(result.movedCount), QString::number(result.attemptedCount), application);
}

QString WindowMoveStatus::focusedWindow(const WindowMoveResult& result, const QString& monitor) {
    if (result.attemptedCount == 0) {
        return QStringLiteral("No focused window was found to move.");
    }
    if (result.movedCount < 1) {
        return QStringLiteral("Focused window could not be moved to ") + monitor + QLatin1Char('.');
    }
    return QStringLiteral("Moved focused window to ") + monitor + QLatin1Char('.');
}
