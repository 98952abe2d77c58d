// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "platform/WindowList.h"
#include "platform/x11/X11WindowKinds.h"
#include "platform/x11/X11WindowReader.h"

class X11Connection;
class X11WindowControl;
class X11WindowDesktopEntries;
struct X11WindowTable;

// The window list of an X11 desktop: every top-level client window, front to back, with its frame in
// the global display space. Safe to call from a background thread.
class X11WindowList : public WindowList {
public:
    // With a cache, windows are read through it. With a window control, the inventory brings along what it
    // tells of the owners; without one it brings nothing of them.
    X11WindowList(X11Connection& connection, X11WindowDesktopEntries& entries, X11WindowCache* cache = nullptr,
                  X11WindowControl* control = nullptr);

    std::optional<QList<WindowEntry>> windows(DesktopWindows desktopWindows) override;
    // Leaves every title out: _NET_WM_NAME is a request of its own per window.
    std::optional<QList<WindowEntry>> windowsWithoutTitles(DesktopWindows desktopWindows) override;
    // One read of the desktop for the list and for the window control's view of its owners.
    std::optional<WindowInventory> inventory(DesktopWindows desktopWindows) override;

    // Runs between reading the window manager's list and reading the windows, so that tests can make
    // windows vanish at that moment.
    void setAfterListingHookForTesting(std::function<void()> hook) { m_afterListing = std::move(hook); }

private:
    std::optional<QList<WindowEntry>> read(DesktopWindows desktopWindows, bool withTitles,
                                           X11WindowTable* tableRead = nullptr);

    X11WindowReader m_reader;
    X11WindowKinds m_kinds;
    X11WindowDesktopEntries& m_entries;
    X11WindowControl* m_control = nullptr;
    std::function<void()> m_afterListing;
};
