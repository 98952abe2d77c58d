#pragma once

#include <QHash>

#include "platform/Workspace.h"

// Scripted running applications for tests.
class FakeWorkspace : public Workspace {
public:
    QList<RunningApplication> applications;
    std::optional<RunningApplication> frontmost;
    QHash<pid_t, QImage> icons;

    // Adds a running application (regular unless told otherwise) and returns it.
    RunningApplication addApplication(pid_t pid, const std::optional<QString>& name,
                                      ActivationPolicy policy = ActivationPolicy::Regular) {
        RunningApplication application;
        application.processIdentifier = pid;
        application.localizedName = name;
        application.activationPolicy = policy;
        applications.append(application);
        return application;
    }

    QList<RunningApplication> runningApplications() override { return applications; }
    std::optional<RunningApplication> frontmostApplication() override { return frontmost; }
    QImage iconForApplication(pid_t pid) override { return icons.value(pid); }
};
