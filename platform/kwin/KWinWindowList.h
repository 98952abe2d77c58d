// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WindowList.h"
#include "platform/kwin/KWinApplicationNames.h"
#include "platform/kwin/KWinState.h"

class KWinBridge;

// The window list from the state KWin's watcher script last pushed; no call to KWin.
class KWinWindowList : public WindowList {
public:
    KWinWindowList(KWinBridge& bridge, KWinApplicationNames& names) : m_bridge(bridge), m_names(names) {}
    std::optional<QList<WindowEntry>> windows(DesktopWindows desktopWindows) override;
    // The list and what the window control tells of its owners, from one state KWin pushed.
    std::optional<WindowInventory> inventory(DesktopWindows desktopWindows) override;

private:
    QList<WindowEntry> entriesOf(const KWinState& state, DesktopWindows desktopWindows);

    KWinBridge& m_bridge;
    KWinApplicationNames& m_names;
};
