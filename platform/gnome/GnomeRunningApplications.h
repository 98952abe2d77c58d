// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunningApplications.h"
#include "platform/gnome/GnomeShellState.h"

class GnomeShellBridge;

// The processes that own GNOME Shell's windows, named as the Shell matched them to desktop entries.
class GnomeRunningApplications : public RunningApplications {
public:
    explicit GnomeRunningApplications(GnomeShellBridge& bridge) : m_bridge(bridge) {}

    QList<RunningApplication> runningApplications() override;
    std::optional<RunningApplication> frontmostApplication() override;
    // Icons are not read on GNOME yet: a null image.
    QImage iconForApplication(pid_t pid) override;

    // The applications owning the windows, in process start order.
    static QList<RunningApplication> applicationsOf(const QList<GnomeShellWindow>& windows);

private:
    GnomeShellBridge& m_bridge;
};
