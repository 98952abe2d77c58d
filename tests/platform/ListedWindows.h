// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <optional>

#include "platform/Platform.h"
#include "platform/WindowList.h"
#include "tests/support/VirtualDesktop.h"

// The installed platform's window list, as the compositor tests wait on it.
namespace ListedWindows {

// The listed window of that title (desktop windows left out), once there is one; nothing after the time
// limit.
inline std::optional<WindowEntry> waitFor(const QString& title, int timeoutMs) {
    std::optional<WindowEntry> found;
    VirtualDesktop::waitUntil(
        [&] {
            const auto entries = Platform::services().windowList->windows(DesktopWindows::Exclude);
            for (const WindowEntry& entry : entries.value_or(QList<WindowEntry>{})) {
                if (entry.title == title) {
                    found = entry;
                    return true;
                }
            }
            return false;
        },
        timeoutMs);
    return found;
}

}  // namespace ListedWindows
