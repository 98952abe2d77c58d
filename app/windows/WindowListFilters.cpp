// SPDX-License-Identifier: MIT
#include "app/windows/WindowListFilters.h"

#include <QStringList>

#include "platform/Platform.h"
#include "platform/RunningApplications.h"

bool WindowListFilters::isExcludedOwnerName(const QString& name) {
    static const QStringList excluded = {QStringLiteral("Window Server"), QStringLiteral("SystemUIServer"),
                                         QStringLiteral("ControlCenter"), QStringLiteral("NotificationCenter"),
                                         QStringLiteral("Dock")};
    return excluded.contains(name);
}

bool WindowListFilters::isOnNormalLayer(const WindowEntry& entry) {
    return entry.layer == 0;
}

bool WindowListFilters::isTransparent(const WindowEntry& entry) {
    return entry.opacity && *entry.opacity <= 0.01;
}

bool WindowListFilters::hasExcludedOwnerName(const WindowEntry& entry) {
    return entry.ownerName && isExcludedOwnerName(*entry.ownerName);
}

bool WindowListFilters::hasUserWindowSize(const QRectF& bounds) {
    return bounds.width() >= 120.0 && bounds.height() >= 80.0;
}

bool WindowListFilters::isUserWindow(const WindowEntry& entry, const QSet<pid_t>& regularPIDs) {
    return isOnNormalLayer(entry) && entry.pid && regularPIDs.contains(*entry.pid) && !hasExcludedOwnerName(entry) &&
           !isTransparent(entry) && hasUserWindowSize(entry.frame);
}

bool WindowListFilters::isMovableRole(WindowRole role) {
    return role == WindowRole::Window || role == WindowRole::Dialog;
}

QSet<pid_t> WindowListFilters::regularApplicationPIDs() {
    QSet<pid_t> pids;
    for (const RunningApplication& application : Platform::services().runningApplications->runningApplications()) {
        if (application.policy == ApplicationPolicy::Regular && !application.terminated) {
            pids.insert(application.pid);
        }
    }
    return pids;
}
