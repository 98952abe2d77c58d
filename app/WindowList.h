#pragma once

#include <QRectF>
#include <QSet>
#include <QString>
#include <optional>

#include "platform/Types.h"
#include "platform/WindowServer.h"

// Readers of window-list entries, shared by the inventory and the mover.
namespace WindowList {

// Owners whose layer-0 surfaces are never user windows.
bool isExcludedOwnerName(const QString& name);

// kCGWindowOwnerPID: an Int as it is; a LongLong, or any other number's integer value, narrowed to
// 32 bits. A value outside the 32-bit range is a programming error and aborts. Nothing otherwise.
std::optional<pid_t> ownerPID(const WindowInfo& entry);
// kCGWindowNumber: an integer, or any other number's integer value; nothing otherwise.
std::optional<qint64> windowID(const WindowInfo& entry);
// kCGWindowIsOnscreen: a bool, or a number whose integer value is non-zero; false otherwise.
bool isOnScreen(const WindowInfo& entry);
// kCGWindowLayer present, an integer, and 0.
bool isOnNormalLayer(const WindowInfo& entry);
// kCGWindowOwnerName when it is a string.
std::optional<QString> ownerName(const WindowInfo& entry);
// True when kCGWindowAlpha is a number no greater than 0.01.
bool isTransparent(const WindowInfo& entry);
// kCGWindowBounds when it is a dictionary that converts to a rectangle.
std::optional<QRectF> bounds(const WindowInfo& entry);
// Whether bounds are large enough for a user window: at least 120 x 80 points.
bool hasUserWindowSize(const QRectF& bounds);

// Process ids of the running applications that are regular and not terminated.
QSet<pid_t> regularApplicationPIDs();

}  // namespace WindowList
