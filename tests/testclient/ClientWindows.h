// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <map>
#include <set>
#include <string>

#include "Command.h"

// The windows of the test client on one xcb connection. Reports on standard output:
//   "window <name> <xid>" once a window is mapped (or, when it starts minimised, managed as iconic),
//   "closed <name>" once it is destroyed, "error <text>" for a command it cannot follow.
class ClientWindows {
public:
    explicit ClientWindows(xcb_connection_t* connection);

    // Follows one command; false when the client should exit.
    bool execute(const Command& command);
    void handleEvent(xcb_generic_event_t* event);

private:
    void open(const Command& command, const std::string& name);
    void close(const std::string& name);
    xcb_atom_t atom(const char* name);
    void setCardinals(xcb_window_t window, const char* property, xcb_atom_t type, const uint32_t* values, int count);
    void report(xcb_window_t window);

    xcb_connection_t* m_connection;
    xcb_screen_t* m_screen;
    std::map<std::string, xcb_window_t> m_windows;
    std::map<xcb_window_t, std::string> m_names;
    std::set<xcb_window_t> m_unreported;
};
