// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>

#include "platform/RunningApplications.h"

// Scripted running applications for tests.
class FakeRunningApplications : public RunningApplications {
public:
    QList<RunningApplication> applications;
    std::optional<RunningApplication> frontmost;
    QHash<pid_t, QImage> icons;

    // Adds a running application (regular unless told otherwise) and returns it.
    RunningApplication addApplication(pid_t pid, const std::optional<QString>& name,
                                      ApplicationPolicy policy = ApplicationPolicy::Regular) {
        RunningApplication application;
        application.pid = pid;
        application.name = name;
        application.policy = policy;
        applications.append(application);
        return application;
    }

    QList<RunningApplication> runningApplications() override { return applications; }
    std::optional<RunningApplication> frontmostApplication() override { return frontmost; }
    QImage iconForApplication(pid_t pid) override { return icons.value(pid); }
};
