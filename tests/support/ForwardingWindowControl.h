// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WindowControl.h"
#include "platform/WindowPlacer.h"

// A window control that hands every call to another one: tests derive from it to watch or disturb the
// calls they care about and leave the rest to the real control.
class ForwardingWindowControl : public WindowControl, public WindowPlacer {
public:
    explicit ForwardingWindowControl(WindowControl& real) : m_real(real) {}

    Reading<WindowId> focusedWindow() override { return m_real.focusedWindow(); }
    Reading<pid_t> focusedApplication() override { return m_real.focusedApplication(); }
    Reading<WindowId> focusedWindow(pid_t application) override { return m_real.focusedWindow(application); }
    Reading<WindowId> mainWindow(pid_t application) override { return m_real.mainWindow(application); }
    Reading<QList<WindowId>> windows(pid_t application, WindowScope scope) override {
        return m_real.windows(application, scope);
    }
    QList<ApplicationWindows> windowsOfApplications(const QList<pid_t>& applications) override {
        return m_real.windowsOfApplications(applications);
    }
    Reading<QRectF> frame(WindowId window) override { return m_real.frame(window); }
    Reading<WindowRole> role(WindowId window) override { return m_real.role(window); }
    Reading<bool> minimised(WindowId window) override { return m_real.minimised(window); }
    QList<WindowFacts> facts(const QList<WindowId>& windows) override { return m_real.facts(windows); }
    Result move(WindowId window, const QPointF& topLeft) override { return m_real.move(window, topLeft); }
    Result resize(WindowId window, const QSizeF& size) override { return m_real.resize(window, size); }
    Result unminimise(WindowId window) override { return m_real.unminimise(window); }
    Result activate(WindowId window) override { return m_real.activate(window); }
    Result unhide(pid_t application) override { return m_real.unhide(application); }
    // The real control's batch when it places batches; otherwise one write after another, as the mover
    // would make them.
    QList<PlacementResult> place(const QList<WindowPlacement>& placements) override {
        if (auto* placer = dynamic_cast<WindowPlacer*>(&m_real)) {
            return placer->place(placements);
        }
        QList<PlacementResult> results;
        for (const WindowPlacement& placement : placements) {
            PlacementResult result;
            result.position = m_real.move(placement.window, placement.topLeft);
            if (placement.size) {
                result.size = m_real.resize(placement.window, *placement.size);
            }
            results.append(result);
        }
        return results;
    }

private:
    WindowControl& m_real;
};
