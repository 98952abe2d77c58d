// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <QList>
#include <QRectF>
#include <QString>
#include <optional>

#include "platform/WindowControl.h"

// One top-level window as the desktop lists it. Fields the desktop cannot tell are left empty.
struct WindowEntry {
    qint64 id = 0;                     // the window's number, the same one the window controls use
    std::optional<pid_t> pid;          // the owning process
    std::optional<QString> ownerName;  // the owning application's name
    QRectF frame;                      // the outer frame in the global display space
    int layer = 0;                     // 0 for ordinary windows; docks, panels, menus and keep-above ones are higher
    std::optional<double> opacity;     // 0 (invisible) to 1 (opaque)
    bool onScreen = true;              // shown: mapped, not minimised, on the current desktop
    std::optional<QString> title;

    bool operator==(const WindowEntry&) const = default;
};

// Whether the list holds the desktop's own background windows (desktop icons, wallpaper).
enum class DesktopWindows { Include, Exclude };

// The window list and, from the same read of the desktop, what the window control tells of the
// applications that own its windows, so that the two tell of one moment.
struct WindowInventory {
    QList<WindowEntry> windows;                         // as windowsWithoutTitles() lists them
    QHash<pid_t, ApplicationWindowRoles> applications;  // by owner; an owner left out is not known here
};

// The desktop's list of top-level windows.
class WindowList {
public:
    WindowList() = default;
    virtual ~WindowList() = default;
    WindowList(const WindowList&) = delete;
    WindowList& operator=(const WindowList&) = delete;

    // Every top-level window, front to back; nothing when the list is unavailable.
    virtual std::optional<QList<WindowEntry>> windows(DesktopWindows desktopWindows) = 0;
    // The same list for callers that never show titles: an entry may come without its title, which
    // saves a read per window where a title is one. Every other field is as in windows().
    virtual std::optional<QList<WindowEntry>> windowsWithoutTitles(DesktopWindows desktopWindows) {
        return windows(desktopWindows);
    }
    // The list without titles and, read with it, the window lists of its windows' owners and the roles of
    // their windows. Nothing when the list is unavailable.
    virtual std::optional<WindowInventory> inventory(DesktopWindows desktopWindows) = 0;
};
