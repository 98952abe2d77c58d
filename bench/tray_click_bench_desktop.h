// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <QList>
#include <QPoint>
#include <QRect>
#include <optional>

// The tray click benchmark's own X connection: monitors, the tray's windows, and XTEST clicks.
class TrayClickDesktop {
public:
    TrayClickDesktop();
    ~TrayClickDesktop();
    TrayClickDesktop(const TrayClickDesktop&) = delete;
    TrayClickDesktop& operator=(const TrayClickDesktop&) = delete;

    bool ok() const;
    xcb_connection_t* connection() const { return m_connection; }

    QList<QRect> monitors();
    // The tray icon of a process once the tray has embedded it: a mapped window of the process inside a
    // window of the tray.
    xcb_window_t embeddedWindowOf(qint64 pid, qint64 trayPid);
    // A tray host owns the selection of the screen's system tray.
    bool trayReady();
    // Centre of a window in root coordinates, where it is now.
    std::optional<QPoint> centre(xcb_window_t window);
    // Moves the pointer to the centre of the window where it is now, and tells whether the window is then
    // the one under the pointer. A tray moves an icon it has just embedded while it makes room for it, so
    // a place read once may be beside the icon by the time of the click.
    bool pointAt(xcb_window_t window);
    // The window under the pointer, the deepest one.
    xcb_window_t windowUnderPointer();
    // A press and release of the first button where the pointer is, sent on return (sync() waits until
    // the server has handled them).
    void clickHere();
    // Moves the pointer to a point (root coordinates) and clicks there.
    void click(QPoint at);
    // True when no client holds the pointer: the benchmark can grab it (and lets go at once). A popup
    // that has just closed may still hold it, and would take the next click for itself.
    bool pointerFree();
    // Waits until the server has handled everything sent so far.
    void sync();

private:
    xcb_atom_t atom(const char* name);
    qint64 pidOf(xcb_window_t window);
    bool mapped(xcb_window_t window);
    void moveTo(QPoint at);
    // The first mapped window below parent (depth first) that belongs to the process and lies inside a
    // window of the tray's process.
    xcb_window_t find(xcb_window_t parent, qint64 pid, qint64 trayPid, bool insideTray);

    xcb_connection_t* m_connection;
    xcb_window_t m_root = XCB_NONE;
    xcb_atom_t m_pidAtom = XCB_NONE;
    xcb_atom_t m_trayAtom = XCB_NONE;
};
