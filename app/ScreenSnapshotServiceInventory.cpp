#include <QCollator>
#include <algorithm>

#include "app/AXValues.h"
#include "app/ScreenSnapshotService.h"
#include "app/WindowListFilters.h"
#include "app/WindowMover.h"
#include "platform/Platform.h"

std::optional<QString> ScreenSnapshotService::role(const AXUIElement& element) {
    AXAttributeReply reply;
    reply.error = AXValues::accessibility()->copyAttributeValue(element, QLatin1String(kAXRoleAttribute), &reply.value);
    return AXValues::string(reply);
}

QHash<pid_t, AXWindowMetadata> ScreenSnapshotService::axWindowMetadataByOwnerPID(const QSet<pid_t>& pids) {
    Accessibility* accessibility = AXValues::accessibility();
    const QList<pid_t> owners(pids.cbegin(), pids.cend());

    // First batch: both window lists of every application.
    QList<AXAttributeRequest> listRequests;
    for (pid_t pid : owners) {
        listRequests.append({AXUIElement::application(pid), QLatin1String(kAXWindowsAttribute)});
        listRequests.append({AXUIElement::application(pid), QLatin1String(kAXAllWindowsAttribute)});
    }
    const QList<AXAttributeReply> lists = accessibility->copyAttributeValues(listRequests);

    QList<AXUIElementList> windowsByOwner;
    QList<bool> querySupported;
    QList<AXAttributeRequest> windowRequests;
    for (qsizetype i = 0; i < owners.size(); ++i) {
        AXUIElementList merged;
        bool anyListRead = false;
        for (const AXAttributeReply& reply : {lists.value(2 * i), lists.value(2 * i + 1)}) {
            anyListRead = anyListRead || reply.error == kAXErrorSuccess;
            if (reply.error == kAXErrorSuccess && AXValues::isElementList(reply.value)) {
                for (const AXUIElement& window : reply.value.value<AXUIElementList>()) {
                    WindowMover::appendUnique(window, merged);
                }
            }
        }
        for (const AXUIElement& window : merged) {
            windowRequests.append({window, QLatin1String(kAXWindowNumberAttribute)});
            windowRequests.append({window, QLatin1String(kAXRoleAttribute)});
        }
        windowsByOwner.append(merged);
        querySupported.append(anyListRead);
    }

    // Second batch: number and role of every window of every application.
    const QList<AXAttributeReply> facts = accessibility->copyAttributeValues(windowRequests);

    QHash<pid_t, AXWindowMetadata> metadata;
    qsizetype next = 0;
    for (qsizetype i = 0; i < owners.size(); ++i) {
        QSet<qint64> all;
        QSet<qint64> roleFiltered;
        for (qsizetype w = 0; w < windowsByOwner[i].size(); ++w, next += 2) {
            const std::optional<qint64> number = AXValues::windowNumber(facts.value(next));
            if (!number) {
                continue;
            }
            all.insert(*number);
            const std::optional<QString> windowRole = AXValues::string(facts.value(next + 1));
            if (!windowRole || AXValues::isMovableRole(*windowRole)) {
                roleFiltered.insert(*number);
            }
        }
        metadata.insert(owners[i], {querySupported[i], roleFiltered.isEmpty() ? all : roleFiltered});
    }
    return metadata;
}

QList<QualifiedWindow> ScreenSnapshotService::qualifyingWindows() {
    const std::optional<QList<WindowEntry>> list = Platform::services().windowList->windows(DesktopWindows::Exclude);
    if (!list) {
        return {};
    }
    const QSet<pid_t> regular = WindowListFilters::regularApplicationPIDs();
    const QHash<pid_t, AXWindowMetadata> metadata = axWindowMetadataByOwnerPID(regular);

    QList<QualifiedWindow> windows;
    for (const WindowEntry& entry : *list) {
        if (!WindowListFilters::isOnNormalLayer(entry)) {
            continue;
        }
        if (!entry.pid || !regular.contains(*entry.pid)) {
            continue;
        }
        if (WindowListFilters::hasExcludedOwnerName(entry) || WindowListFilters::isTransparent(entry)) {
            continue;
        }
        if (!WindowListFilters::hasUserWindowSize(entry.frame)) {
            continue;
        }
        // Where Accessibility knows the application's real windows, only those count.
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
