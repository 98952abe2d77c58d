// SPDX-License-Identifier: MIT
#include "app/mover/WindowMoveReport.h"

const WindowMoveRecord* WindowMoveReport::window(WindowId window) const {
    for (const WindowMoveRecord& record : windows) {
        if (record.window == window) {
            return &record;
        }
    }
    return nullptr;
}

std::optional<ApplicationSkipReason> WindowMoveReport::skipReason(pid_t pid) const {
    for (const ApplicationSkip& skip : skippedApplications) {
        if (skip.pid == pid) {
            return skip.reason;
        }
    }
    return std::nullopt;
}
