// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <QImage>
#include <QList>
#include <QString>
#include <optional>

// How present an application is on the desktop, judged by the windows it owns.
enum class ApplicationPolicy {
    Regular,     // has a window that shows in the taskbar
    Accessory,   // has only utility windows or windows kept out of the taskbar
    Prohibited,  // has only docks, panels and desktop backgrounds
};

// A process that owns top-level windows.
struct RunningApplication {
    pid_t pid = 0;
    std::optional<QString> name;       // the desktop entry's name, else the window class, else the process name
    std::optional<QString> desktopId;  // the matching desktop entry ("org.gnome.Calculator"), when there is one
    ApplicationPolicy policy = ApplicationPolicy::Prohibited;
    bool terminated = false;  // the process is gone

    bool operator==(const RunningApplication&) const = default;
};

// The applications that own windows on the desktop.
class RunningApplications {
public:
    RunningApplications() = default;
    virtual ~RunningApplications() = default;
    RunningApplications(const RunningApplications&) = delete;
    RunningApplications& operator=(const RunningApplications&) = delete;

    // The applications that own windows, in process start order.
    virtual QList<RunningApplication> runningApplications() = 0;
    // The application that owns the active window, if any.
    virtual std::optional<RunningApplication> frontmostApplication() = 0;
    // The application's icon; a null image when it has none or is gone.
    virtual QImage iconForApplication(pid_t pid) = 0;
};
