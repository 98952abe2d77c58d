// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <QByteArray>
#include <QString>

// Small reads of the test's own X connection, for checks from outside the program under test.
namespace XcbProbe {

xcb_atom_t atom(xcb_connection_t* connection, const char* name);
// The window a root property names (_NET_SUPPORTING_WM_CHECK, _NET_ACTIVE_WINDOW), or 0.
xcb_window_t rootWindowProperty(xcb_connection_t* connection, const char* property);
// Whether the window exists.
bool exists(xcb_connection_t* connection, xcb_window_t window);
// The process id of the client that created the window, from the X-Resource extension; 0 when unknown.
qint64 clientPid(xcb_connection_t* connection, xcb_window_t window);
// The window manager's check window when a window manager is running, else 0.
xcb_window_t windowManagerCheck(xcb_connection_t* connection);
// Sets a window's _NET_WM_NAME to the bytes as they are (UTF8_STRING, valid or not) and waits for it.
void setTitleBytes(xcb_connection_t* connection, xcb_window_t window, const QByteArray& bytes);

}  // namespace XcbProbe
