#include "app/Geometry.h"
#include "app/WindowList.h"
#include "app/WindowMover.h"
#include "platform/Platform.h"

std::optional<QList<WindowInfo>> WindowMover::windowListIncludingOffscreen() {
    return Platform::services().windowServer->copyWindowInfo(kCGWindowListExcludeDesktopElements);
}

std::optional<pid_t> WindowMover::ownerPID(const WindowInfo& entry) {
    return WindowList::ownerPID(entry);
}

std::optional<qint64> WindowMover::windowID(const WindowInfo& entry) {
    return WindowList::windowID(entry);
}

QString WindowMover::windowListKey(pid_t pid, qint64 windowNumber) {
    return QStringLiteral("%1-%2").arg(pid).arg(windowNumber);
}

QHash<QString, QRectF> WindowMover::allWindowFramesByOwnerAndWindowID() {
    return allWindowFramesByOwnerAndWindowID(windowListIncludingOffscreen());
}

QHash<QString, QRectF> WindowMover::allWindowFramesByOwnerAndWindowID(const std::optional<QList<WindowInfo>>& list) {
    QHash<QString, QRectF> frames;
    if (!list) {
        return frames;
    }
    for (const WindowInfo& entry : *list) {
        if (!WindowList::isOnNormalLayer(entry)) {
            continue;
        }
        const std::optional<pid_t> pid = ownerPID(entry);
        const std::optional<qint64> number = pid ? windowID(entry) : std::nullopt;
        const std::optional<QRectF> bounds = number ? WindowList::bounds(entry) : std::nullopt;
        if (!bounds || !(bounds->width() > 1.0 && bounds->height() > 1.0)) {
            continue;
        }
        frames.insert(windowListKey(*pid, *number), *bounds);
    }
    return frames;
}

QHash<pid_t, QSet<qint64>> WindowMover::sourceWindowIDsByOwnerPID(const QRectF& source) {
    return sourceWindowIDsByOwnerPID(source, windowListIncludingOffscreen());
}

QHash<pid_t, QSet<qint64>> WindowMover::sourceWindowIDsByOwnerPID(const QRectF& source,
                                                                  const std::optional<QList<WindowInfo>>& list) {
    QHash<pid_t, QSet<qint64>> idsByOwner;
    if (!list) {
        return idsByOwner;
    }
    const QSet<pid_t> regular = WindowList::regularApplicationPIDs();
    for (const WindowInfo& entry : *list) {
        if (!WindowList::isOnNormalLayer(entry)) {
            continue;
        }
        const std::optional<pid_t> pid = ownerPID(entry);
        if (!pid || !regular.contains(*pid)) {
            continue;
        }
        const std::optional<QString> name = WindowList::ownerName(entry);
        if ((name && WindowList::isExcludedOwnerName(*name)) || WindowList::isTransparent(entry)) {
            continue;
        }
        const std::optional<QRectF> bounds = WindowList::bounds(entry);
        if (!bounds || !WindowList::hasUserWindowSize(*bounds) || !Geometry::intersects(*bounds, source)) {
            continue;
        }
        const std::optional<qint64> number = windowID(entry);
        if (!number) {
            continue;
        }
        idsByOwner[*pid].insert(*number);
    }
    return idsByOwner;
}
