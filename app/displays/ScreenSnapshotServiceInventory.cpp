// SPDX-License-Identifier: MIT
#include <QCollator>
#include <QSet>
#include <algorithm>

#include "app/displays/ScreenSnapshotService.h"
#include "app/windows/WindowListFilters.h"
#include "platform/Platform.h"

std::optional<WindowRole> ScreenSnapshotService::role(WindowId window) {
    const Reading<WindowRole> reading = Platform::services().windowControl->role(window);
    return reading.result == Result::Ok ? reading.value : std::nullopt;
}

namespace {

// Both window lists of each application and the roles of their windows, in two batches of the window control.
QHash<pid_t, ApplicationWindowRoles> readApplicationWindows(const QList<pid_t>& owners) {
    WindowControl* control = Platform::services().windowControl;
    const QList<ApplicationWindows> lists = control->windowsOfApplications(owners);
    QList<WindowId> allWindows;
    QSet<WindowId> seen;
    for (const ApplicationWindows& owned : lists) {
        for (const Reading<QList<WindowId>>& list : {owned.visible, owned.includingMinimised}) {
            if (list.result != Result::Ok || !list.value) {
                continue;
            }
            for (WindowId window : *list.value) {
                if (!seen.contains(window)) {
                    seen.insert(window);
                    allWindows.append(window);
                }
            }
        }
    }
    const QList<WindowFacts> facts = allWindows.isEmpty() ? QList<WindowFacts>{} : control->facts(allWindows);
    QHash<WindowId, Reading<WindowRole>> roles;
    for (qsizetype i = 0; i < allWindows.size(); ++i) {
        roles.insert(allWindows[i], facts.value(i).role);
    }
    QHash<pid_t, ApplicationWindowRoles> answers;
    for (qsizetype i = 0; i < owners.size(); ++i) {
        ApplicationWindowRoles answer;
        answer.lists = lists.value(i, {{Result::Failure, std::nullopt}, {Result::Failure, std::nullopt}});
        for (const Reading<QList<WindowId>>& list : {answer.lists.visible, answer.lists.includingMinimised}) {
            if (list.result == Result::Ok && list.value) {
                for (WindowId window : *list.value) {
                    answer.roles.insert(window, roles.value(window));
                }
            }
        }
        answers.insert(owners[i], answer);
    }
    return answers;
}

AXWindowMetadata metadataOf(const ApplicationWindowRoles& application) {
    const ApplicationWindows& lists = application.lists;
    bool anyListRead = false;
    QSet<qint64> all;
    QSet<qint64> roleFiltered;
    for (const Reading<QList<WindowId>>& list : {lists.visible, lists.includingMinimised}) {
        anyListRead = anyListRead || list.result == Result::Ok;
        if (list.result != Result::Ok || !list.value) {
            continue;
        }
        for (WindowId window : *list.value) {
            all.insert(window);
            // A window whose role cannot be read counts as a movable one.
            const Reading<WindowRole> role = application.roles.value(window);
            if (role.result != Result::Ok || !role.value || WindowListFilters::isMovableRole(*role.value)) {
                roleFiltered.insert(window);
            }
        }
    }
    return {anyListRead, roleFiltered.isEmpty() ? all : roleFiltered};
}

}  // namespace

QHash<pid_t, AXWindowMetadata> ScreenSnapshotService::axWindowMetadataByOwnerPID(const QSet<pid_t>& pids) {
    return axWindowMetadataByOwnerPID(pids, {});
}

QHash<pid_t, AXWindowMetadata> ScreenSnapshotService::axWindowMetadataByOwnerPID(
    const QSet<pid_t>& pids, const QHash<pid_t, ApplicationWindowRoles>& alreadyRead) {
    QList<pid_t> unread;
    for (pid_t pid : pids) {
        if (!alreadyRead.contains(pid)) {
            unread.append(pid);
        }
    }
    const QHash<pid_t, ApplicationWindowRoles> read =
        unread.isEmpty() ? QHash<pid_t, ApplicationWindowRoles>{} : readApplicationWindows(unread);
    QHash<pid_t, AXWindowMetadata> metadata;
    for (pid_t pid : pids) {
        const auto known = alreadyRead.constFind(pid);
        metadata.insert(pid, metadataOf(known != alreadyRead.cend() ? *known : read.value(pid)));
    }
    return metadata;
}

QList<QualifiedWindow> ScreenSnapshotService::qualifyingWindows() {
    // The list comes with what the window control tells of its owners, read at the same moment.
    const std::optional<WindowInventory> inventory =
        Platform::services().windowList->inventory(DesktopWindows::Exclude);
    if (!inventory) {
        return {};
    }
    const QSet<pid_t> regular = WindowListFilters::regularApplicationPIDs();
    const QHash<pid_t, AXWindowMetadata> metadata = axWindowMetadataByOwnerPID(regular, inventory->applications);

    QList<QualifiedWindow> windows;
    for (const WindowEntry& entry : inventory->windows) {
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
