#pragma once

#include <sys/types.h>

#include <QList>
#include <QString>
#include <optional>

#include "platform/RunningApplications.h"
#include "platform/x11/X11WindowTable.h"

class X11WindowDesktopEntries;
class X11WindowKinds;

// The processes that own the windows of a table, with what the desktop knows about each.
struct X11WindowOwner {
    pid_t pid = 0;
    std::optional<QString> localizedName;
    std::optional<QString> desktopId;
    ApplicationPolicy policy = ApplicationPolicy::Prohibited;
    quint64 startTime = 0;  // clock ticks since boot; 0 when unknown
    bool terminated = false;
    QByteArray classInstance;  // WM_CLASS of the process's front-most window that has one
    QByteArray className;

    RunningApplication runningApplication() const { return {pid, localizedName, desktopId, policy, terminated}; }
};

namespace X11WindowOwners {

// One owner per pid found in the table, in process start order (pid order among equals).
QList<X11WindowOwner> fromTable(const X11WindowTable& table, const X11WindowKinds& kinds,
                                X11WindowDesktopEntries& entries);

// The process's name as the kernel keeps it, and its start time; nothing when the process is gone.
std::optional<QString> processName(pid_t pid);
std::optional<quint64> processStartTime(pid_t pid);

}  // namespace X11WindowOwners
