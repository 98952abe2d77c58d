#pragma once

#include <QHash>

#include "platform/Workspace.h"

// Scripted running applications for tests.
class FakeWorkspace : public Workspace {
public:
    QList<RunningApplication> applications;
    std::optional<RunningApplication> frontmost;
    QHash<pid_t, QImage> icons;

    QList<RunningApplication> runningApplications() override { return applications; }
    std::optional<RunningApplication> frontmostApplication() override { return frontmost; }
    QImage iconForApplication(pid_t pid) override { return icons.value(pid); }
};
