#pragma once

#include <QList>
#include <QVariantMap>
#include <optional>

// Keys of one window-list entry. Values: numbers as int/qint64/double, the owner name and title as
// QString, the bounds as a dictionary with "X", "Y", "Width", "Height", on-screen as bool.
inline constexpr const char* kCGWindowNumber = "kCGWindowNumber";
inline constexpr const char* kCGWindowLayer = "kCGWindowLayer";
inline constexpr const char* kCGWindowOwnerPID = "kCGWindowOwnerPID";
inline constexpr const char* kCGWindowOwnerName = "kCGWindowOwnerName";
inline constexpr const char* kCGWindowAlpha = "kCGWindowAlpha";
inline constexpr const char* kCGWindowBounds = "kCGWindowBounds";
inline constexpr const char* kCGWindowIsOnscreen = "kCGWindowIsOnscreen";
inline constexpr const char* kCGWindowName = "kCGWindowName";

// Options of the window-list query.
inline constexpr quint32 kCGWindowListOptionAll = 0;
inline constexpr quint32 kCGWindowListExcludeDesktopElements = 16;

using WindowInfo = QVariantMap;

// The window server's list of top-level windows.
class WindowServer {
public:
    WindowServer() = default;
    virtual ~WindowServer() = default;
    WindowServer(const WindowServer&) = delete;
    WindowServer& operator=(const WindowServer&) = delete;

    // Every top-level window, front to back; nothing when the list is unavailable.
    virtual std::optional<QList<WindowInfo>> copyWindowInfo(quint32 options) = 0;
};
