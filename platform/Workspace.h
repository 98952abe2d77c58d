#pragma once

#include <QImage>
#include <QList>
#include <optional>

#include "platform/Types.h"

// Running applications as the desktop sees them.
class Workspace {
public:
    Workspace() = default;
    virtual ~Workspace() = default;
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    // The running applications, in process start order.
    virtual QList<RunningApplication> runningApplications() = 0;
    // The application that owns the active window, if any.
    virtual std::optional<RunningApplication> frontmostApplication() = 0;
    // The application's icon; a null image when it has none or is gone.
    virtual QImage iconForApplication(pid_t pid) = 0;
};
