// SPDX-License-Identifier: MIT
// lattica-test-client: opens X11 windows as told on standard input, one command a line:
//   open name=N [count=K] [type=normal|dialog|utility|toolbar|dock|splash|desktop|notification|menu|override]
//        [title="..."] [x= y= w= h=] [opacity=0..1] [states=minimized,maximized,fullscreen,above,skip-taskbar,modal]
//        [class=instance.Class] [pid=yes|no] [color=#rrggbb] [icon=#rrggbb] [fixed=yes] [transient-for=N]
//   close name=N
//   exit
// It exits at the end of its input, and when the X server goes away.
#include <poll.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "ClientWindows.h"
#include "Command.h"

int main() {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0) {
        std::fputs("error cannot connect to the X server\n", stdout);
        return 1;
    }
    ClientWindows windows(connection);
    std::fputs("ready\n", stdout);
    std::fflush(stdout);

    std::string pending;
    bool running = true;
    while (running && xcb_connection_has_error(connection) == 0) {
        while (xcb_generic_event_t* event = xcb_poll_for_event(connection)) {
            windows.handleEvent(event);
            std::free(event);
        }
        xcb_flush(connection);
        pollfd descriptors[2] = {{STDIN_FILENO, POLLIN, 0}, {xcb_get_file_descriptor(connection), POLLIN, 0}};
        if (::poll(descriptors, 2, -1) < 0) {
            continue;
        }
        if (descriptors[0].revents & (POLLIN | POLLHUP)) {
            char buffer[4096];
            const ssize_t length = ::read(STDIN_FILENO, buffer, sizeof buffer);
            if (length <= 0) {
                break;
            }
            pending.append(buffer, static_cast<size_t>(length));
            size_t newline;
            while (running && (newline = pending.find('\n')) != std::string::npos) {
                const std::string line = pending.substr(0, newline);
                pending.erase(0, newline + 1);
                if (const auto command = Command::parse(line)) {
                    running = windows.execute(*command);
                } else if (line.find_first_not_of(" \t\r") != std::string::npos) {
                    std::fputs(("error cannot read: " + line + "\n").c_str(), stdout);
                    std::fflush(stdout);
                }
            }
        }
    }
    xcb_disconnect(connection);
    return 0;
}
