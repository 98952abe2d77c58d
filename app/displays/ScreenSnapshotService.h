// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <optional>

#include "app/model/Models.h"
#include "platform/Monitors.h"
#include "platform/WindowControl.h"
#include "platform/WindowList.h"

// One window of the window list that counts as a user window.
struct QualifiedWindow {
    QRectF bounds;
    bool isOnScreen = false;
    pid_t ownerPID = 0;
    QString ownerName;

    bool operator==(const QualifiedWindow&) const = default;
};

// What the window control tells about the windows of one process.
struct AXWindowMetadata {
    bool axQuerySupported = false;
    QSet<qint64> windowIDsForFiltering;

    bool operator==(const AXWindowMetadata&) const = default;
};

// The inventory of displays and windows. Stateless: every call reads the platform afresh.
namespace ScreenSnapshotService {

// The connected displays, main display first, with contiguous 1-based indexes; a monitor without a display
// number is left out.
QList<DisplayDescriptor> currentDisplayDescriptors();
// "v<vendor>-m<model>-s<serial>", "v<vendor>-m<model>-u<unit>" or "display-<id>".
QString stableDisplayIdentifier(const Monitor& monitor);
// "display-<formerId>" for a monitor that earlier versions knew by that number, when it differs from its
// stable identifier now; empty otherwise.
QString formerDisplayIdentifier(const Monitor& monitor);

// One snapshot per descriptor with picture, window counts and application groups. Runs off the main thread.
QList<DisplaySnapshot> captureDisplaySnapshots(const QList<DisplayDescriptor>& descriptors);

// Every qualifying window of every display, front to back.
QList<QualifiedWindow> qualifyingWindows();
QHash<pid_t, AXWindowMetadata> axWindowMetadataByOwnerPID(const QSet<pid_t>& pids);
// The same from the window lists and roles the window list's inventory brought along; applications it did
// not bring are asked of the window control.
QHash<pid_t, AXWindowMetadata> axWindowMetadataByOwnerPID(const QSet<pid_t>& pids,
                                                          const QHash<pid_t, ApplicationWindowRoles>& alreadyRead);
QList<DisplayAppGroup> groupedApplications(const QList<QualifiedWindow>& windows);

// The window's role when it reads.
std::optional<WindowRole> role(WindowId window);

}  // namespace ScreenSnapshotService
