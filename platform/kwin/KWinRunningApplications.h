// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunningApplications.h"

class KWinApplicationNames;
class KWinBridge;

// The processes that own windows in the state KWin's watcher last pushed.
class KWinRunningApplications : public RunningApplications {
public:
    KWinRunningApplications(KWinBridge& bridge, KWinApplicationNames& names) : m_bridge(bridge), m_names(names) {}

    QList<RunningApplication> runningApplications() override;
    std::optional<RunningApplication> frontmostApplication() override;
    QImage iconForApplication(pid_t pid) override;

private:
    KWinBridge& m_bridge;
    KWinApplicationNames& m_names;
};
