// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <functional>

#include "platform/x11/X11WindowFacts.h"
#include "platform/x11/X11WindowReader.h"

// Every top-level client window of the desktop, front to back: unmanaged (override-redirect) windows
// first, top-most first, then the window manager's clients from its stacking list, reversed. Without a
// window manager every mapped root child counts as unmanaged. The window manager's own windows (its
// frames, menus and on-screen displays) are not client windows and are left out. Windows that vanish
// while being read are left out.
struct X11WindowTable {
    X11RootFacts root;
    QList<X11WindowFacts> windows;

    // Reads the whole desktop in three pipelined stages. managedFields says what to read of each
    // managed window; unmanaged windows get the same fields. The owner (Pid) is always read. WM_CLASS,
    // when asked for, is read for the front-most managed window of each owner (and for every unmanaged
    // window) only. Opacity is read only while a compositing manager runs, the desktop only while there
    // is more than one.
    static X11WindowTable read(X11WindowReader& reader, unsigned managedFields,
                               const std::function<void()>& afterListing = {});
};
