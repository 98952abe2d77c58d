// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "app/commands/LauncherCall.h"

// The `lattica` launcher's call to the running instance, through libdbus alone so that the launcher
// starts in a few milliseconds.
namespace LauncherBus {

// What the command prints and the exit status it ends with, as the program would give them.
struct Answer {
    std::string standardOutput;
    std::string standardError;
    int exitStatus = 0;
};

// The session bus's address: DBUS_SESSION_BUS_ADDRESS, else the user's bus socket under
// XDG_RUNTIME_DIR; nothing when there is neither (no bus is ever started for the launcher).
std::optional<std::string> sessionBusAddress();

// Calls the instance on the bus at the address and waits for its answer. Nothing when no instance
// answers (no bus, nobody owns the name, it went away): then the program does the work itself.
std::optional<Answer> call(const std::string& address, const LauncherCall& call);

}  // namespace LauncherBus
