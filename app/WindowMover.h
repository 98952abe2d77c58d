#pragma once

#include <QHash>
#include <QList>
#include <QPointF>
#include <QRectF>
#include <QSet>
#include <QSizeF>
#include <QString>
#include <optional>

#include "app/Models.h"
#include "platform/Accessibility.h"
#include "platform/WindowList.h"

// The outcome of reading a window-list attribute of an application element.
struct WindowAttributeResult {
    AXError error = kAXErrorSuccess;
    AXUIElementList windows;  // empty whenever the read failed or gave no list of elements
};

// A window element and its frame as read through Accessibility.
struct FocusedWindowContext {
    AXUIElement window;
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

// Moves other applications' windows between displays through the Accessibility facade, keeping each
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

// ---- Accessibility layer ----

// "success", "failure", ... "notEnoughPrecision", or "unknown(<code>)".
QString axErrorName(AXError error);
// Reads a list-of-windows attribute of an application element.
WindowAttributeResult windows(const AXUIElement& app, const QString& attribute);
// The application's movable windows: "AXWindows" then "AXAllWindows" merged without repeats, filtered
// to the movable roles (unreadable roles pass); the merged list when the filter leaves nothing; nothing
// when both lists are empty.
std::optional<AXUIElementList> movableWindows(const AXUIElement& app, const QString& appLabel);
// Appends the element unless an equal element is already in the list.
void appendUnique(const AXUIElement& element, AXUIElementList& list);
// "AXPosition" / "AXSize" when they read as a point / size.
std::optional<QPointF> position(const AXUIElement& element);
std::optional<QSizeF> size(const AXUIElement& element);
// Both at once, in one batch of reads.
struct PositionAndSize {
    std::optional<QPointF> position;
    std::optional<QSizeF> size;
};
PositionAndSize positionAndSize(const AXUIElement& element);
// An attribute whose value is an element.
std::optional<AXUIElement> axElementAttribute(const AXUIElement& element, const QString& attribute,
                                              const QString& sourceLabel);
// "AXWindowNumber" of a window element, when it reads as a number.
std::optional<qint64> axWindowNumber(const AXUIElement& window);
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
// Un-hides the application and un-minimises the given windows; failures are traced, never fatal.
void revealMovedWindowsForApplication(const AXUIElementList& windows, const AXUIElement& app, const QString& appLabel);
// The first element of the list with a readable frame larger than one point.
std::optional<FocusedWindowContext> firstWindowContextWithFrame(const AXUIElementList& windows,
                                                                const QString& sourceLabel);
// The application's focused window, else its main window, else the first window with a frame.
std::optional<FocusedWindowContext> focusedWindowContext(const AXUIElement& app, const QString& sourceLabel);

// ---- Moves ----

// Writes "[WindowMoveDiag] " and the message as one line on standard output.
void moveDiagLog(const QString& message);

// Moves every qualifying window on the source display to the destination display. targetPIDs limits
// the move to those applications (nothing means all); revealMovedWindows un-hides and un-minimises
// what was moved.
WindowMoveResult moveWindows(const DisplaySnapshot& source, const DisplaySnapshot& destination,
                             bool adjustSizeToDestination, const std::optional<QSet<pid_t>>& targetPIDs,
                             bool revealMovedWindows);

// The window that has keyboard focus, whichever application owns it.
std::optional<FocusedWindowContext> focusedWindowContext();
// Moves the focused window to the target display: (0, 0) nothing found, (0, 1) not moved, (1, 1) moved.
WindowMoveResult moveFocusedWindow(const DisplaySnapshot& target, const QList<DisplaySnapshot>& allDisplays,
                                   bool adjustSizeToDestination);

}  // namespace WindowMover
