// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>
#include <optional>

#include "platform/kwin/KWinState.h"
#include "platform/x11/X11WindowDesktopEntries.h"

// What names and draws a window's application: the desktop entry KWin names for it (Wayland clients
// give their app id), else the one matching its class, else the class, else the process name.
class KWinApplicationNames {
public:
    std::optional<X11WindowDesktopEntries::Entry> entry(const KWinWindow& window);
    std::optional<QString> name(const KWinWindow& window);

private:
    X11WindowDesktopEntries m_entries;
};
