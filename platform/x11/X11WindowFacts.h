// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>
#include <xcb/xcb.h>

#include <QByteArray>
#include <QList>
#include <QMargins>
#include <QPoint>
#include <QRect>
#include <QString>
#include <optional>

// What one read found out about a top-level client window. Only the fields that were asked for are
// filled; the others keep their defaults.
struct X11WindowFacts {
    // Which parts of a window to read.
    enum Field : unsigned {
        Attributes = 1u << 0,  // map state, override-redirect, input-only
        Geometry = 1u << 1,    // size, root position, border, frame extents
        Type = 1u << 2,        // _NET_WM_WINDOW_TYPE
        State = 1u << 3,       // _NET_WM_STATE
        Desktop = 1u << 4,     // _NET_WM_DESKTOP
        Pid = 1u << 5,         // the owner: see X11WindowOwners::ownerOf
        Opacity = 1u << 6,     // _NET_WM_WINDOW_OPACITY
        Title = 1u << 7,       // _NET_WM_NAME
        Class = 1u << 8,       // WM_CLASS
        SizeHints = 1u << 9,   // WM_NORMAL_HINTS minimum and maximum size
        Transient = 1u << 10,  // WM_TRANSIENT_FOR
    };
    static constexpr unsigned kAllFields = (1u << 11) - 1;

    xcb_window_t window = XCB_NONE;
    bool exists = true;    // false once the server has answered that the window is gone
    bool managed = false;  // listed by the window manager (its map state is then not read)
    bool overrideRedirect = false;
    bool viewable = false;
    bool mapped = false;
    bool inputOnly = false;
    QRect clientRect;  // inside the border, in root coordinates
    int borderWidth = 0;
    QMargins frameExtents;
    QList<xcb_atom_t> types;
    xcb_window_t transientFor = XCB_NONE;
    QList<xcb_atom_t> states;
    std::optional<quint32> desktop;
    std::optional<pid_t> pid;
    std::optional<double> opacity;
    QString title;
    QByteArray classInstance;
    QByteArray className;
    QSize minimumSize;  // empty when the client sets none
    QSize maximumSize;

    // The window with its border and the window manager's decorations, in root coordinates.
    QRect outerFrame() const {
        return QRect(clientRect.x() - borderWidth - frameExtents.left(),
                     clientRect.y() - borderWidth - frameExtents.top(),
                     clientRect.width() + 2 * borderWidth + frameExtents.left() + frameExtents.right(),
                     clientRect.height() + 2 * borderWidth + frameExtents.top() + frameExtents.bottom());
    }
    bool hasType(xcb_atom_t atom) const { return types.contains(atom); }
    // Takes over the given fields from another read of the same window.
    void copyFields(const X11WindowFacts& other, unsigned fields);
    bool hasState(xcb_atom_t atom) const { return states.contains(atom); }
};

// The desktop-wide facts kept on the root window.
struct X11RootFacts {
    bool connected = false;
    bool hasClientList = false;              // false when no window manager keeps a client list
    QList<xcb_window_t> clientListStacking;  // bottom to top
    QList<xcb_window_t> rootChildren;        // bottom to top
    xcb_window_t activeWindow = XCB_NONE;
    std::optional<quint32> currentDesktop;
    std::optional<quint32> desktopCount;  // _NET_NUMBER_OF_DESKTOPS
    QPoint globalOriginInRoot;            // the primary monitor's top-left corner
    // The window the window manager names as its own (_NET_SUPPORTING_WM_CHECK), not yet checked to name
    // itself back.
    xcb_window_t windowManagerCheck = XCB_NONE;
    // A compositing manager owns _NET_WM_CM_S<screen>. Only then does a window's opacity show: without
    // one the server draws every window fully.
    bool compositingManager = false;
};
