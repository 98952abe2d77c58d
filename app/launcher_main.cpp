// SPDX-License-Identifier: MIT
// `lattica`, the command users type. Commands that the running instance can carry out are sent to it
// over the session bus without loading the toolkit; everything else (starting the tray program, --help,
// --version, listings, mistakes, or no instance to ask) is handed to the program itself, which
// replaces this process with the same arguments and so behaves exactly as if it had been started.
#include <limits.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "app/commands/LauncherBus.h"
#include "app/commands/LauncherCall.h"

namespace {

// This executable's path.
std::string ownPath() {
    char path[PATH_MAX];
    const ssize_t length = ::readlink("/proc/self/exe", path, sizeof path - 1);
    return length > 0 ? std::string(path, static_cast<size_t>(length)) : std::string();
}

// The program: next to the launcher in a build folder, else where the installation put it.
std::string programPath(const std::string& launcher) {
    const std::string folder = launcher.substr(0, launcher.rfind('/'));
    const std::string beside = folder + "/" LATTICA_PROGRAM_NAME;
    if (::access(beside.c_str(), X_OK) == 0) {
        return beside;
    }
    return folder + "/" LATTICA_PROGRAM_FROM_LAUNCHER;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (const std::optional<LauncherCall> call = LauncherCall::fromArguments(words)) {
        if (const std::optional<std::string> address = LauncherBus::sessionBusAddress()) {
            if (const std::optional<LauncherBus::Answer> answer = LauncherBus::call(*address, *call)) {
                std::fputs(answer->standardOutput.c_str(), stdout);
                std::fputs(answer->standardError.c_str(), stderr);
                return answer->exitStatus;
            }
        }
    }
    // The program writes this launcher, not itself, into the autostart entry it makes.
    const std::string launcher = ownPath();
    ::setenv("LATTICA_LAUNCHER", launcher.c_str(), 1);
    const std::string program = programPath(launcher);
    ::execv(program.c_str(), argv);
    std::fprintf(stderr, "lattica: cannot start %s: %s\n", program.c_str(), std::strerror(errno));
    return 1;
}
