// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <QList>
#include <QString>
#include <optional>

#include "platform/RunningApplications.h"
#include "platform/x11/X11WindowTable.h"

#include <xcb/xcb.h>

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

// What is known of the process behind a window.
struct PidSources {
    std::optional<pid_t> netWmPid;    // what the client says (_NET_WM_PID)
    std::optional<pid_t> clientPid;   // what the server knows of the client's connection (X-Resource)
    bool serverNamesClients = false;  // the server was asked; an empty clientPid then means it cannot tell
    bool netWmPidIsAClient = false;   // the process netWmPid names holds a connection to the server
};

// The owner of a window: the process that holds the window's client connection, as the server knows it.
// A client's own _NET_WM_PID counts only where the server cannot be asked, and only when it names a
// process on this machine that holds a connection to the server: from a PID namespace (Flatpak,
// containers) it names the wrong process, from another machine (ssh -X) none here. Where no local process is known, the
// client connection itself is the owner, under a number that no process can have (see isConnection).
std::optional<pid_t> ownerOf(xcb_window_t window, const PidSources& sources, uint32_t resourceIdMask);
// Whether an owner number stands for a client connection rather than a process.
bool isConnection(pid_t owner);

// One owner per pid found in the table, in process start order (pid order among equals), then the client
// connections, named by their window class.
QList<X11WindowOwner> fromTable(const X11WindowTable& table, const X11WindowKinds& kinds,
                                X11WindowDesktopEntries& entries);

// The process's name as the kernel keeps it, and its start time; nothing when the process is gone.
std::optional<QString> processName(pid_t pid);
std::optional<quint64> processStartTime(pid_t pid);

}  // namespace X11WindowOwners
