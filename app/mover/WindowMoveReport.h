// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>
#include <QList>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <optional>

#include "app/model/Models.h"
#include "platform/WindowControl.h"

// What the mover decided about one window it looked at.
enum class WindowMoveOutcome {
    Moved,
    NotMoved,                    // written to, but the writes did not place it
    SkippedWithoutFrame,         // neither the window control nor the window list gave a frame
    SkippedInvalidSourceBounds,  // on the source display, but the display has no positive size to measure by
    NotOnSourceDisplay,          // neither listed on the source display nor overlapping it
    AlreadyOnTargetDisplay,      // the focused window already belongs to the target display
    NoSourceDisplay,             // no display to measure the focused window by
};

// Why an application's windows were not looked at.
enum class ApplicationSkipReason {
    NotRegular,  // an accessory or background application
    Terminated,
    InvalidPid,   // a process id below 1
    NotTargeted,  // the move was limited to other applications
    NoWindows,    // neither window list gave a window
};

// Where a window's frame came from.
enum class FrameSource {
    WindowControl,
    WindowList,  // the window list's bounds, mirrored inside the source display
};

// The results of the writes made to one window; a write not made stays empty. Keeping the size
// sends one position write; adjusting it sends position, size, then the final position.
struct WindowMoveWrites {
    std::optional<Result> position;
    std::optional<Result> size;
    std::optional<Result> finalPosition;

    bool operator==(const WindowMoveWrites&) const = default;
};

struct WindowMoveRecord {
    pid_t pid = 0;  // 0 for the focused window, whose owner the move does not read
    WindowId window = 0;
    WindowMoveOutcome outcome = WindowMoveOutcome::NotMoved;
    std::optional<FrameSource> frameSource;
    std::optional<QRectF> frameBefore;
    // Where the window was sent: the origin of the deciding position write and the size asked for.
    std::optional<QPointF> targetOrigin;
    std::optional<QSizeF> targetSize;
    // The frame read back after moving all windows (the planned frame when none reads); the focused
    // window's move does not read it back.
    std::optional<QRectF> frameAfter;
    WindowMoveWrites writes;
};

struct ApplicationSkip {
    pid_t pid = 0;
    ApplicationSkipReason reason = ApplicationSkipReason::NoWindows;
    // With NoWindows, what the two window lists answered: Ok for an empty list, else the error.
    std::optional<Result> visibleList;
    std::optional<Result> includingMinimisedList;

    bool operator==(const ApplicationSkip&) const = default;
};

// Everything one move attempted, moved and left alone, in the order it was looked at. The counts are
// what the status messages show.
struct WindowMoveReport {
    WindowMoveResult counts;
    QList<WindowMoveRecord> windows;
    QList<ApplicationSkip> skippedApplications;

    // The record of the window, if the move looked at it.
    const WindowMoveRecord* window(WindowId window) const;
    // Why the application was left alone, if it was.
    std::optional<ApplicationSkipReason> skipReason(pid_t pid) const;
};
