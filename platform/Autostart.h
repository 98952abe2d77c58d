// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

// Whether the program starts when the user logs in.
enum class AutostartStatus { Disabled, Enabled, RequiresApproval, NotFound };

// Starting the program at login.
class Autostart {
public:
    Autostart() = default;
    virtual ~Autostart() = default;
    Autostart(const Autostart&) = delete;
    Autostart& operator=(const Autostart&) = delete;

    // Whether the program is set to start at login.
    virtual AutostartStatus status() = 0;
    // Sets the program to start at login; false with the reason in error when that could not be done.
    virtual bool enable(QString* error) = 0;
    // Stops the program from starting at login; false with the reason in error when that could not be done.
    virtual bool disable(QString* error) = 0;
    // The program the login entry starts, as a user would recognise it: a command name found on PATH, or
    // an absolute path. Empty when the service cannot tell.
    virtual QString program() { return {}; }
};
