// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QList>
#include <QPointF>
#include <QRectF>
#include <QSet>
#include <QSizeF>
#include <QString>
#include <QStringList>
#include <optional>

#include "app/model/Models.h"
#include "app/mover/WindowMoveReport.h"
#include "platform/WindowControl.h"
#include "platform/WindowList.h"

// The outcome of reading one of an application's window lists.
struct WindowAttributeResult {
    Result result = Result::Ok;
    QList<WindowId> windows;  // empty whenever the read failed
};

// An application's movable windows and what its two window lists answered.
struct MovableWindows {
    Result visibleList = Result::Ok;
    Result includingMinimisedList = Result::Ok;
    std::optional<QList<WindowId>> windows;  // nothing when neither list gave a window
};

// An application's movable windows with the facts read about each, in the same order.
struct MovableWindowsWithFacts {
    MovableWindows movable;
    QList<WindowFacts> facts;  // one per window of movable.windows
};

// A window and its frame as read through the window control.
struct FocusedWindowContext {
    WindowId window = 0;
    QRectF frame;
};

// A window's place inside a display, as fractions of the display's width and height.
struct NormalizedRect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const NormalizedRect&) const = default;
};

// Moves other applications' windows between displays through the window control, keeping each
// window's relative place (and on request its relative size). Stateless; every operation runs
// synchronously on the calling thread, which is the main thread in the program.
//
// All rectangles live in the global display space: origin at the main display's top-left corner,
// y growing downwards.
namespace WindowMover {

// ---- Geometry (pure functions) ----

// The frame as fractions of the container; four zeros when the container is empty.
NormalizedRect normalizedRect(const QRectF& frame, const QRectF& container);
// The frame's centre as fractions of the source display; (0.5, 0.5) when the source is empty.
QPointF normalizedCenter(const QRectF& frame, const QRectF& source);
// Whether a normalised centre lies within 0.15 of the middle on both axes (diagnostics only).
bool isCenterLike(const QPointF& normalizedCenter);
// The size on the destination that keeps the frame's share of the source display, at least one point
// and at most the destination's size.
QSizeF adjustedSize(const QRectF& frame, const QRectF& source, const QRectF& destination);
// The size in whole pixels, as the window manager applies it: rounded, at least one pixel and no larger
// than the destination's whole pixels.
QSizeF wholePixelSize(const QSizeF& size, const QRectF& destination);
// The origin on the destination that keeps the normalised centre, clamped into the destination.
QPointF destinationOrigin(const QPointF& normalizedCenter, const QSizeF& size, const QRectF& destination);
// Keeps a window of the given size inside the display; a window at least as large as the display is
// aligned with its left (top) edge.
QPointF clampedOrigin(const QPointF& desired, const QSizeF& size, const QRectF& within);
// A frame derived from window-list bounds inside the source display, mirrored vertically inside it.
// The bounds are returned unchanged when the source display is empty.
QRectF convertedWindowListFrame(const QRectF& windowListBounds, const QRectF& source);
// The display the frame belongs to: the first containing its centre, else the one it overlaps most,
// else the first display; nothing when there are no displays.
std::optional<DisplaySnapshot> bestSourceDisplay(const QRectF& frame, const QList<DisplaySnapshot>& displays);

// ---- Window control layer ----

// The installed window control.
WindowControl* windowControl();
// Reads one of an application's window lists.
WindowAttributeResult windows(pid_t application, WindowScope scope);
// The application's movable windows: the visible list then the list with minimised windows merged
// without repeats, filtered to the movable roles (unreadable roles pass); the merged list when the
// filter leaves nothing; nothing when both lists are empty.
MovableWindows movableWindows(pid_t application, const QString& appLabel);
// The same for many applications (labels in the same order), from one read of all their window lists
// and one of all their windows' facts; each window's facts come along.
QList<MovableWindowsWithFacts> movableWindows(const QList<pid_t>& applications, const QStringList& appLabels);
// Appends the window unless it is already in the list.
void appendUnique(WindowId window, QList<WindowId>& list);
// The window's frame when it reads.
std::optional<QRectF> frame(WindowId window);
// A frame that can be moved: both sides longer than one point.
std::optional<QRectF> usableFrame(const std::optional<QRectF>& frame);
// A window the focus reading names; traces why there is none under the attribute's name.
std::optional<WindowId> focusedElement(const Reading<WindowId>& reading, const QString& attribute,
                                       const QString& sourceLabel);
// Moves / resizes a window. A point or size that is not finite is not sent: the result is Failure.
Result setOrigin(WindowId window, const QPointF& origin);
Result setSize(WindowId window, const QSizeF& size);
// Window-list key of a window: "<pid>-<windowNumber>".
QString windowListKey(pid_t pid, qint64 windowNumber);
// The window list with off-screen, hidden and minimised windows; nothing when it is unavailable.
std::optional<QList<WindowEntry>> windowListIncludingOffscreen();
// Bounds of every layer-0 window with an owner, a number and a size above one point, by window-list key.
QHash<QString, QRectF> allWindowFramesByOwnerAndWindowID();
QHash<QString, QRectF> allWindowFramesByOwnerAndWindowID(const std::optional<QList<WindowEntry>>& list);
// The window numbers the window server places on the source display, by owner.
QHash<pid_t, QSet<qint64>> sourceWindowIDsByOwnerPID(const QRectF& source);
QHash<pid_t, QSet<qint64>> sourceWindowIDsByOwnerPID(const QRectF& source,
                                                     const std::optional<QList<WindowEntry>>& list);
// The same with the regular applications' process ids already known.
QHash<pid_t, QSet<qint64>> sourceWindowIDsByOwnerPID(const QRectF& source,
                                                     const std::optional<QList<WindowEntry>>& list,
                                                     const QSet<pid_t>& regularApplications);
// Un-hides the application and un-minimises the given windows; failures are traced, never fatal.
void revealMovedWindowsForApplication(const QList<WindowId>& windows, pid_t application, const QString& appLabel);
// The first window of the list with a readable frame larger than one point.
std::optional<FocusedWindowContext> firstWindowContextWithFrame(const QList<WindowId>& windows,
                                                                const QString& sourceLabel);
// The application's focused window, else its main window, else the first window with a frame.
std::optional<FocusedWindowContext> focusedWindowContext(pid_t application, const QString& sourceLabel);

// ---- Moves ----

// One source and destination of a move over several displays.
struct MoveLeg {
    DisplaySnapshot source;
    DisplaySnapshot destination;
};

// Writes "[WindowMoveDiag] " and the message as one line on standard output.
void moveDiagLog(const QString& message);

// Moves every qualifying window on the source display to the destination display. targetPIDs limits
// the move to those applications (nothing means all); revealMovedWindows un-hides and un-minimises
// what was moved. The report holds a record for every window of every application looked at.
WindowMoveReport moveWindows(const DisplaySnapshot& source, const DisplaySnapshot& destination,
                             bool adjustSizeToDestination, const std::optional<QSet<pid_t>>& targetPIDs,
                             bool revealMovedWindows);
// The same over several legs in one pass: the window list, the running applications and their windows
// are read once, before the first window moves, so a window moved onto another leg's source stays where
// it was put. A window goes with the first leg whose source the window list places it on, else the first
// whose source its frame overlaps. Used to gather an application from every display, or to swap two.
WindowMoveReport moveWindows(const QList<MoveLeg>& legs, bool adjustSizeToDestination,
                             const std::optional<QSet<pid_t>>& targetPIDs, bool revealMovedWindows);

// The window that has keyboard focus, whichever application owns it.
std::optional<FocusedWindowContext> focusedWindowContext();
// Moves the focused window to the target display. Counts (0, 0): nothing found, or no display to
// measure it by; (0, 1) not moved, or already on the target; (1, 1) moved. The report holds the
// focused window's record when there is one.
WindowMoveReport moveFocusedWindow(const DisplaySnapshot& target, const QList<DisplaySnapshot>& allDisplays,
                                   bool adjustSizeToDestination);

}  // namespace WindowMover
