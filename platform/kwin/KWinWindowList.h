// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WindowList.h"
#include "platform/kwin/KWinApplicationNames.h"

class KWinBridge;

// The window list from the state KWin's watcher script last pushed; no call to KWin.
class KWinWindowList : public WindowList {
public:
    KWinWindowList(KWinBridge& bridge, KWinApplicationNames& names) : m_bridge(bridge), m_names(names) {}
    std::optional<QList<WindowEntry>> windows(DesktopWindows desktopWindows) override;

private:
    KWinBridge& m_bridge;
    KWinApplicationNames& m_names;
};
