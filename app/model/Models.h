// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QList>
#include <QRectF>
#include <QString>
#include <optional>

#include "platform/SessionCheck.h"
#include "platform/Types.h"

// One connected display at one moment.
struct DisplayDescriptor {
    MonitorId id = 0;
    QString persistentID;
    int index = 0;  // 1-based position in the platform's screen order
    QString name;
    QRectF bounds;  // global display space, origin at the main display's top-left corner, y downwards
    // The identifier that settings stored by earlier versions know the display by, when it differs from
    // persistentID; empty when there is none.
    QString formerPersistentID;

    bool operator==(const DisplayDescriptor&) const = default;
};

// One application's qualifying windows on one display.
struct DisplayAppGroup {
    pid_t pid = 0;
    QString name;
    int windowCount = 0;

    bool operator==(const DisplayAppGroup&) const = default;
};

// One display as the panel shows it.
struct DisplaySnapshot {
    MonitorId id = 0;
    QString persistentID;
    int index = 0;
    QString name;
    QRectF bounds;
    std::optional<QImage> previewImage;
    std::optional<int> visibleWindowCount;    // absent: not counted yet
    std::optional<int> invisibleWindowCount;  // absent: not counted yet
    QList<DisplayAppGroup> appGroups;

    // A card to show before capture has finished: no picture, no counts, no groups.
    static DisplaySnapshot placeholder(const DisplayDescriptor& descriptor) {
        DisplaySnapshot snapshot;
        snapshot.id = descriptor.id;
        snapshot.persistentID = descriptor.persistentID;
        snapshot.index = descriptor.index;
        snapshot.name = descriptor.name;
        snapshot.bounds = descriptor.bounds;
        return snapshot;
    }
};

// Which of the two required capabilities the session gives the process, and the checks they come
// from: a capability counts as granted when it can be used at all, even if only for some applications.
struct PermissionState {
    bool screenRecordingGranted = false;
    bool accessibilityGranted = false;
    // What limits each capability, or why it is missing, for the views.
    CapabilityCheck screenCapture;
    CapabilityCheck windowControl;

    static PermissionState fromChecks(const CapabilityCheck& screenCapture, const CapabilityCheck& windowControl) {
        return {screenCapture.isUsable(), windowControl.isUsable(), screenCapture, windowControl};
    }

    bool bothGranted() const { return screenRecordingGranted && accessibilityGranted; }
    bool operator==(const PermissionState&) const = default;
};

// Outcome of a move: windows moved, windows tried.
struct WindowMoveResult {
    int movedCount = 0;
    int attemptedCount = 0;

    bool operator==(const WindowMoveResult&) const = default;
};

// A remembered display and its last known name and position.
struct ShortcutDisplayRecord {
    QString id;
    QString lastKnownName;
    std::optional<int> lastKnownIndex;

    bool operator==(const ShortcutDisplayRecord&) const = default;
};

// One row of the shortcut settings.
struct ShortcutDisplayItem {
    QString id;
    QString name;
    std::optional<int> index;
    bool isConnected = false;

    bool operator==(const ShortcutDisplayItem&) const = default;
};
