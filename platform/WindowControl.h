// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <QHash>
#include <QList>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <optional>

// A top-level window: the same number the window list gives it.
using WindowId = qint64;

// How a read or a change of another application's window went.
enum class Result {
    Ok,
    Gone,            // the window or application no longer exists
    Unsupported,     // this desktop has no such thing (hidden applications, for one)
    NoValue,         // nothing to answer (no window has the focus, say)
    CannotComplete,  // the window manager did not do it in time
    NotPermitted,    // no window manager or no connection: windows cannot be read or moved here
    Failure,         // anything else, such as an argument no window can take
};

// What kind of window it is, as far as moving it goes.
enum class WindowRole { Window, Dialog, Other };

// Which of an application's windows a list holds. Both hold only windows of the current workspace
// and windows shown on every workspace.
enum class WindowScope { Visible, IncludingMinimised };

// A read: the result, and the value when the result is Ok.
template <typename T>
struct Reading {
    Result result = Result::Failure;
    std::optional<T> value;

    bool operator==(const Reading&) const = default;
};

// Both window lists of one application, as a batch reads them.
struct ApplicationWindows {
    Reading<QList<WindowId>> visible;
    Reading<QList<WindowId>> includingMinimised;
};

// One application's windows as one read of the desktop found them: both of its lists, and the role of
// every window in either.
struct ApplicationWindowRoles {
    ApplicationWindows lists;
    QHash<WindowId, Reading<WindowRole>> roles;
};

// What a batch reads about one window.
struct WindowFacts {
    Reading<QRectF> frame;  // outer frame in the global display space
    Reading<WindowRole> role;
    Reading<bool> minimised;
};

// Reads and changes other applications' windows. Frames are in the global display space.
class WindowControl {
public:
    WindowControl() = default;
    virtual ~WindowControl() = default;
    WindowControl(const WindowControl&) = delete;
    WindowControl& operator=(const WindowControl&) = delete;

    // The window with keyboard focus, whichever application owns it.
    virtual Reading<WindowId> focusedWindow() = 0;
    // The application that owns the focused window.
    virtual Reading<pid_t> focusedApplication() = 0;
    // The application's focused window; NoValue when another application has the focus.
    virtual Reading<WindowId> focusedWindow(pid_t application) = 0;
    // The application's main window; NoValue when it has none.
    virtual Reading<WindowId> mainWindow(pid_t application) = 0;
    // The application's windows in the scope, front to back.
    virtual Reading<QList<WindowId>> windows(pid_t application, WindowScope scope) = 0;
    // Both lists of many applications at once, in the order asked.
    virtual QList<ApplicationWindows> windowsOfApplications(const QList<pid_t>& applications) = 0;

    // One window's frame, role and minimised state.
    virtual Reading<QRectF> frame(WindowId window) = 0;
    virtual Reading<WindowRole> role(WindowId window) = 0;
    virtual Reading<bool> minimised(WindowId window) = 0;
    // Frame, role and minimised state of many windows at once, in the order asked.
    virtual QList<WindowFacts> facts(const QList<WindowId>& windows) = 0;

    // Each change returns once it is applied or a short time limit has passed, so a read right after
    // sees it. Puts the outer frame's top-left corner at the point.
    virtual Result move(WindowId window, const QPointF& topLeft) = 0;
    // Gives the outer frame the size, keeping its top-left corner.
    virtual Result resize(WindowId window, const QSizeF& size) = 0;
    // Restores a minimised window; Ok at once when it is not minimised.
    virtual Result unminimise(WindowId window) = 0;
    // Raises the window and gives it the focus.
    virtual Result activate(WindowId window) = 0;
    // Shows an application that was hidden as a whole; Unsupported where applications cannot hide.
    virtual Result unhide(pid_t application) = 0;
};
