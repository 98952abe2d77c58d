// SPDX-License-Identifier: MIT
#pragma once

#include "platform/ForegroundActivation.h"
#include "platform/TaskbarPresence.h"

class KWinBridge;

// Our own windows as KWin manages them: a Wayland client can neither keep itself out of the taskbar nor
// take the focus on its own, so the bridge asks KWin to. The taskbar choice reaches the windows open when
// it is made and those of later calls; windows opened in between keep KWin's default.
class KWinOwnWindows : public TaskbarPresence, public ForegroundActivation {
public:
    explicit KWinOwnWindows(KWinBridge& bridge) : m_bridge(bridge) {}

    void setShownInTaskbar(bool shown) override;
    bool isShownInTaskbar() const override { return m_shown; }
    void bringToFront() override;

private:
    KWinBridge& m_bridge;
    bool m_shown = false;
};
