// SPDX-License-Identifier: MIT
#pragma once

#include <QDeadlineTimer>
#include <QHash>
#include <QMutex>

#include "platform/WindowControl.h"
#include "platform/WindowPlacer.h"
#include "platform/x11/X11WindowKinds.h"
#include "platform/x11/X11WindowPlacer.h"
#include "platform/x11/X11WindowReader.h"
#include "platform/x11/X11WindowTable.h"

class X11Connection;

// Window control on an X11 desktop with an EWMH window manager: applications are processes that own
// managed windows, windows are client XIDs, and the focus is _NET_ACTIVE_WINDOW. Reads are safe on any
// thread and a batch costs at most three round trips; changes belong to the main thread, and a batch of
// them waits for the window manager once for all its windows.
class X11WindowControl : public WindowControl, public WindowPlacer {
public:
    // With a cache, batches of reads go through it; changes and their confirmations never do.
    explicit X11WindowControl(X11Connection& connection, X11WindowCache* cache = nullptr);

    Reading<WindowId> focusedWindow() override;
    Reading<pid_t> focusedApplication() override;
    Reading<WindowId> focusedWindow(pid_t application) override;
    Reading<WindowId> mainWindow(pid_t application) override;
    Reading<QList<WindowId>> windows(pid_t application, WindowScope scope) override;
    QList<ApplicationWindows> windowsOfApplications(const QList<pid_t>& applications) override;
    Reading<QRectF> frame(WindowId window) override;
    Reading<WindowRole> role(WindowId window) override;
    Reading<bool> minimised(WindowId window) override;
    QList<WindowFacts> facts(const QList<WindowId>& windows) override;
    Result move(WindowId window, const QPointF& topLeft) override;
    Result resize(WindowId window, const QSizeF& size) override;
    Result unminimise(WindowId window) override;
    Result activate(WindowId window) override;
    Result unhide(pid_t application) override;
    QList<PlacementResult> place(const QList<WindowPlacement>& placements) override;

    // Both lists of each application and the roles of their windows, as a table the window list has just
    // read tells them; what this control would answer had it read them itself at that moment. Asks the
    // server only for WM_TRANSIENT_FOR of the few windows whose role depends on it when the table has not
    // read it.
    QHash<pid_t, ApplicationWindowRoles> applicationsIn(const X11WindowTable& table, const QList<pid_t>& applications);

private:
    // Each owner's managed windows, front to back.
    using OwnedWindows = QList<const X11WindowFacts*>;
    static QHash<pid_t, OwnedWindows> managedByOwner(const QList<X11WindowFacts>& windows);

    // What one batch of reads fetched: the root's facts, the windows asked about (and the active
    // one), and every managed window's owner, desktop and state when an application's list is wanted.
    struct Batch {
        bool permitted = false;
        X11RootFacts root;
        QHash<xcb_window_t, X11WindowFacts> windows;
        QList<X11WindowFacts> managed;  // front to back
    };
    bool windowManagerRunning();
    // Reads, in one batch, the root fields, the windows with their fields (and unlistedFields more for
    // those the window manager does not list), and the managed windows when `managed` is set.
    Batch read(unsigned rootFields, const QHash<xcb_window_t, unsigned>& windowFields, bool managed,
               unsigned unlistedFields = 0);
    Batch readFacts(const QList<WindowId>& windows);
    Reading<QList<WindowId>> listOf(pid_t application, WindowScope scope, bool permitted, const X11RootFacts& root,
                                    const OwnedWindows& owned) const;
    // The active window when the owner (any owner when nothing) has it.
    Reading<WindowId> activeOf(std::optional<pid_t> owner, const Batch& batch) const;
    // The facts of a window of the batch, or the result that says why there are none.
    Reading<X11WindowFacts> windowOf(WindowId window, const Batch& batch) const;
    WindowFacts factsOf(WindowId window, const Batch& batch) const;
    // Checks shared by every change; Ok when the window can be changed.
    Result canChange(WindowId window);
    // After a change, reads must see it even when the window manager's news of it is late.
    Result changed(xcb_window_t window, Result result);

    X11Connection& m_connection;
    X11WindowCache* m_cache = nullptr;
    X11WindowReader m_reader;       // always the main connection, never cached
    X11WindowReader m_batchReader;  // through the cache, when there is one
    X11WindowKinds m_kinds;
    X11WindowPlacer m_placer;
    QMutex m_wmMutex;
    bool m_wmRunning = false;
    QDeadlineTimer m_wmCheckValidUntil;
};
