// SPDX-License-Identifier: MIT
#include "app/model/Geometry.h"
#include "app/mover/WindowMover.h"
#include "app/windows/WindowListFilters.h"
#include "platform/Platform.h"

std::optional<QList<WindowEntry>> WindowMover::windowListIncludingOffscreen() {
    return Platform::services().windowList->windowsWithoutTitles(DesktopWindows::Exclude);
}

QString WindowMover::windowListKey(pid_t pid, qint64 windowNumber) {
    return QStringLiteral("%1-%2").arg(pid).arg(windowNumber);
}

QHash<QString, QRectF> WindowMover::allWindowFramesByOwnerAndWindowID() {
    return allWindowFramesByOwnerAndWindowID(windowListIncludingOffscreen());
}

QHash<QString, QRectF> WindowMover::allWindowFramesByOwnerAndWindowID(const std::optional<QList<WindowEntry>>& list) {
    QHash<QString, QRectF> frames;
    if (!list) {
        return frames;
    }
    for (const WindowEntry& entry : *list) {
        if (!WindowListFilters::isOnNormalLayer(entry) || !entry.pid) {
            continue;
        }
        if (!(entry.frame.width() > 1.0 && entry.frame.height() > 1.0)) {
            continue;
        }
        frames.insert(windowListKey(*entry.pid, entry.id), entry.frame);
    }
    return frames;
}

QHash<pid_t, QSet<qint64>> WindowMover::sourceWindowIDsByOwnerPID(const QRectF& source) {
    return sourceWindowIDsByOwnerPID(source, windowListIncludingOffscreen());
}

QHash<pid_t, QSet<qint64>> WindowMover::sourceWindowIDsByOwnerPID(const QRectF& source,
                                                                  const std::optional<QList<WindowEntry>>& list) {
    if (!list) {
        return {};
    }
    return sourceWindowIDsByOwnerPID(source, list, WindowListFilters::regularApplicationPIDs());
}

QHash<pid_t, QSet<qint64>> WindowMover::sourceWindowIDsByOwnerPID(const QRectF& source,
                                                                  const std::optional<QList<WindowEntry>>& list,
                                                                  const QSet<pid_t>& regular) {
    QHash<pid_t, QSet<qint64>> idsByOwner;
    if (!list) {
        return idsByOwner;
    }
    for (const WindowEntry& entry : *list) {
        if (!WindowListFilters::isUserWindow(entry, regular) || !Geometry::intersects(entry.frame, source)) {
            continue;
        }
        idsByOwner[*entry.pid].insert(entry.id);
    }
    return idsByOwner;
}
