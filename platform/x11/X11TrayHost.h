// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include "platform/TrayHost.h"

class X11Connection;

// The system tray of an X11 desktop: whoever owns the _NET_SYSTEM_TRAY_S<screen> selection. A new owner
// announces itself with a MANAGER client message to the root window; an owner that ends destroys the
// window that holds the selection.
class X11TrayHost : public TrayHost {
public:
    explicit X11TrayHost(X11Connection& connection);
    ~X11TrayHost() override;

    bool isAvailable() const override { return m_owner != XCB_NONE; }

private:
    bool handle(xcb_generic_event_t* event);
    // Reads the selection's owner and watches it for its end.
    void readOwner();
    void setOwner(xcb_window_t owner);

    X11Connection& m_connection;
    xcb_atom_t m_selection = XCB_NONE;
    xcb_atom_t m_manager = XCB_NONE;
    xcb_window_t m_owner = XCB_NONE;
    int m_handler = 0;
};
