// SPDX-License-Identifier: MIT
#include <QCollator>
#include <algorithm>

#include "app/displays/ScreenSnapshotService.h"
#include "app/windows/WindowListFilters.h"
#include "platform/Platform.h"

std::optional<WindowRole> ScreenSnapshotService::role(WindowId window) {
    const Reading<WindowRole> reading = Platform::services().windowControl->role(window);
    return reading.result == Result::Ok ? reading.value : std::nullopt;
}

QHash<pid_t, AXWindowMetadata> ScreenSnapshotService::axWindowMetadataByOwnerPID(const QSet<pid_t>& pids) {
    WindowControl* control = Platform::services().windowControl;
    const QList<pid_t> owners(pids.cbegin(), pids.cend());

    // First batch: both window lists of every application.
    const QList<ApplicationWindows> lists = control->windowsOfApplications(owners);

    QList<QList<WindowId>> windowsByOwner;
    QList<bool> querySupported;
    QList<WindowId> allWindows;
    for (qsizetype i = 0; i < owners.size(); ++i) {
        QList<WindowId> merged;
        bool anyListRead = false;
        const ApplicationWindows owned = lists.value(i);
        for (const Reading<QList<WindowId>>& list : {owned.visible, owned.includingMinimised}) {
            anyListRead = anyListRead || list.result == Result::Ok;
            if (list.result == Result::Ok && list.value) {
                for (WindowId window : *list.value) {
                    if (!merged.contains(window)) {
                        merged.append(window);
                    }
                }
            }
        }
        allWindows.append(merged);
        windowsByOwner.append(merged);
        querySupported.append(anyListRead);
    }

    // Second batch: the role of every window of every application.
    const QList<WindowFacts> facts = control->facts(allWindows);

    QHash<pid_t, AXWindowMetadata> metadata;
    qsizetype next = 0;
    for (qsizetype i = 0; i < owners.size(); ++i) {
        QSet<qint64> all;
        QSet<qint64> roleFiltered;
        for (WindowId window : windowsByOwner[i]) {
            const Reading<WindowRole> role = facts.value(next++).role;
            all.insert(window);
            if (role.result != Result::Ok || !role.value || WindowListFilters::isMovableRole(*role.value)) {
                roleFiltered.insert(window);
            }
        }
        metadata.insert(owners[i], {querySupported[i], roleFiltered.isEmpty() ? all : roleFiltered});
    }
    return metadata;
}

QList<QualifiedWindow> ScreenSnapshotService::qualifyingWindows() {
    const std::optional<QList<WindowEntry>> list =
        Platform::services().windowList->windowsWithoutTitles(DesktopWindows::Exclude);
    if (!list) {
        return {};
    }
    const QSet<pid_t> regular = WindowListFilters::regularApplicationPIDs();
    const QHash<pid_t, AXWindowMetadata> metadata = axWindowMetadataByOwnerPID(regular);

    QList<QualifiedWindow> windows;
    for (const WindowEntry& entry : *list) {
        if (!WindowListFilters::isUserWindow(entry, regular)) {
            continue;
        }
        // Where the window control knows the application's real windows, only those count.
        const auto known = metadata.constFind(*entry.pid);
        if (known != metadata.cend() && known->axQuerySupported && !known->windowIDsForFiltering.isEmpty() &&
            !known->windowIDsForFiltering.contains(entry.id)) {
            continue;
        }
        windows.append({entry.frame, entry.onScreen, *entry.pid, entry.ownerName.value_or(QStringLiteral("Unknown"))});
    }
    return windows;
}

QList<DisplayAppGroup> ScreenSnapshotService::groupedApplications(const QList<QualifiedWindow>& windows) {
    QList<DisplayAppGroup> groups;
    QHash<pid_t, qsizetype> groupIndexByPID;
    for (const QualifiedWindow& window : windows) {
        const auto found = groupIndexByPID.constFind(window.ownerPID);
        if (found != groupIndexByPID.cend()) {
            ++groups[*found].windowCount;
            continue;
        }
        groupIndexByPID.insert(window.ownerPID, groups.size());
        groups.append({window.ownerPID, window.ownerName, 1});
    }
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(groups.begin(), groups.end(), [&collator](const DisplayAppGroup& a, const DisplayAppGroup& b) {
        return collator.compare(a.name, b.name) < 0;
    });
    return groups;
}
