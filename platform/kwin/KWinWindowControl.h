// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QSet>

#include "platform/WindowControl.h"
#include "platform/WindowPlacer.h"
#include "platform/kwin/KWinState.h"

class KWinBridge;

// Reads windows from the state KWin's watcher last pushed; changes them with one command script each (or
// one for a batch), which answers once KWin (and for a new size, the client) has applied the change.
class KWinWindowControl : public WindowControl, public WindowPlacer {
public:
    explicit KWinWindowControl(KWinBridge& bridge) : m_bridge(bridge) {}

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
    // All placements in one command script, which answers once with a result for every window.
    QList<PlacementResult> place(const QList<WindowPlacement>& placements) override;

    // The role a window has for moving, from what KWin says of it.
    static WindowRole roleOf(const KWinWindow& window);
    // Whether the window belongs in an application's window lists.
    static bool isListed(const KWinWindow& window, WindowScope scope);
    // Both lists of each application and the roles of their windows, as one state tells them.
    static QHash<pid_t, ApplicationWindowRoles> applicationsIn(const KWinState& state, KWinBridge& bridge,
                                                               const QSet<pid_t>& applications);

private:
    Reading<QList<WindowId>> windowsIn(const KWinState& state, pid_t application, WindowScope scope);
    WindowFacts factsIn(const KWinState& state, WindowId window);
    Result run(WindowId window, const QString& op, const QJsonObject& arguments);

    KWinBridge& m_bridge;
};
