// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WindowControl.h"
#include "platform/gnome/GnomeShellState.h"

class GnomeShellBridge;

// Reads and changes GNOME Shell's windows through the extension. Every read asks the Shell afresh.
class GnomeWindowControl : public WindowControl {
public:
    explicit GnomeWindowControl(GnomeShellBridge& bridge) : m_bridge(bridge) {}

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
    // GNOME has no hidden applications.
    Result unhide(pid_t application) override;

    static WindowRole roleOf(const GnomeShellWindow& window);
    // An application's windows of the current workspace in the scope, front to back.
    static QList<WindowId> windowsOf(const QList<GnomeShellWindow>& windows, pid_t application, WindowScope scope);

private:
    std::optional<QList<GnomeShellWindow>> all() const;
    std::optional<GnomeShellWindow> find(WindowId window, Result* result) const;
    // The window's frame is the one asked for: Ok, else CannotComplete (or the answer's own result).
    static Result judge(const GnomeChangeAnswer& answer, const QRectF& wanted);

    GnomeShellBridge& m_bridge;
};
