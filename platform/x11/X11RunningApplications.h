// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RunningApplications.h"
#include "platform/x11/X11WindowKinds.h"
#include "platform/x11/X11WindowReader.h"

class X11Connection;
class X11WindowDesktopEntries;
struct X11WindowOwner;

// Running applications seen from an X11 desktop: the processes that own top-level windows.
class X11RunningApplications : public RunningApplications {
public:
    // With a cache, windows are read through it.
    X11RunningApplications(X11Connection& connection, X11WindowDesktopEntries& entries,
                           X11WindowCache* cache = nullptr);

    QList<RunningApplication> runningApplications() override;
    std::optional<RunningApplication> frontmostApplication() override;
    QImage iconForApplication(pid_t pid) override;

private:
    // The owners of the current windows, in process start order, and the active window's owner.
    QList<X11WindowOwner> owners(std::optional<pid_t>* activeOwner = nullptr);
    QImage windowIcon(xcb_window_t window);

    X11Connection& m_connection;
    X11WindowReader m_reader;
    X11WindowKinds m_kinds;
    X11WindowDesktopEntries& m_entries;
};
