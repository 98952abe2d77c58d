// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/commands/CommandCatalog.h"

// The `lattica` launcher's reading of its arguments, without the toolkit: a command that the running
// instance can carry out and whose answer the launcher prints as the program would. Everything else
// (no command, --help, --version, listings, any mistake) is left to the program itself, which
// the launcher then starts with the same arguments.
struct LauncherCall {
    const CommandCatalog::Entry* command = nullptr;
    // The bus method's arguments, in its order.
    std::vector<std::string> arguments;
    // --json: the answer is printed as a JSON object.
    bool json = false;

    // The call for the arguments (argv without the program's name); nothing when the program must read
    // them itself.
    static std::optional<LauncherCall> fromArguments(const std::vector<std::string>& words);
};
