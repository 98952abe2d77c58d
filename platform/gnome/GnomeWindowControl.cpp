// SPDX-License-Identifier: MIT
#include "platform/gnome/GnomeWindowControl.h"

#include <QRect>
#include <algorithm>
#include <cmath>

#include "platform/gnome/GnomeShellBridge.h"

namespace {

// Frames are whole pixels in the Shell; a requested frame counts as reached within this distance.
constexpr double kTolerance = 1.0;

bool near(const QRectF& a, const QRectF& b) {
    return std::abs(a.x() - b.x()) <= kTolerance && std::abs(a.y() - b.y()) <= kTolerance &&
           std::abs(a.width() - b.width()) <= kTolerance && std::abs(a.height() - b.height()) <= kTolerance;
}

bool isDesktopOrDock(const GnomeShellWindow& window) {
    return window.type == static_cast<int>(GnomeWindowType::Desktop) ||
           window.type == static_cast<int>(GnomeWindowType::Dock);
}

}  // namespace

std::optional<QList<GnomeShellWindow>> GnomeWindowControl::all() const {
    return m_bridge.windows();
}

std::optional<GnomeShellWindow> GnomeWindowControl::find(WindowId window, Result* result) const {
    const std::optional<QList<GnomeShellWindow>> windows = all();
    if (!windows) {
        *result = Result::NotPermitted;
        return std::nullopt;
    }
    for (const GnomeShellWindow& candidate : *windows) {
        if (static_cast<WindowId>(candidate.id) == window) {
            *result = Result::Ok;
            return candidate;
        }
    }
    *result = Result::Gone;
    return std::nullopt;
}

WindowRole GnomeWindowControl::roleOf(const GnomeShellWindow& window) {
    switch (static_cast<GnomeWindowType>(window.type)) {
        case GnomeWindowType::Normal:
            return WindowRole::Window;
        case GnomeWindowType::Dialog:
        case GnomeWindowType::ModalDialog:
            return WindowRole::Dialog;
        default:
            return WindowRole::Other;
    }
}

QList<WindowId> GnomeWindowControl::windowsOf(const QList<GnomeShellWindow>& windows, pid_t application,
                                              WindowScope scope) {
    QList<WindowId> ids;
    for (const GnomeShellWindow& window : windows) {
        if (window.pid != application || !window.onCurrentWorkspace || isDesktopOrDock(window)) {
            continue;
        }
        if (scope == WindowScope::Visible && window.minimized) {
            continue;
        }
        ids.append(static_cast<WindowId>(window.id));
    }
    return ids;
}

Reading<WindowId> GnomeWindowControl::focusedWindow() {
    const std::optional<quint64> focused = m_bridge.focusedWindow();
    if (!focused) {
        return {Result::NotPermitted, std::nullopt};
    }
    if (*focused == 0) {
        return {Result::NoValue, std::nullopt};
    }
    return {Result::Ok, static_cast<WindowId>(*focused)};
}

Reading<pid_t> GnomeWindowControl::focusedApplication() {
    const Reading<WindowId> focused = focusedWindow();
    if (focused.result != Result::Ok) {
        return {focused.result, std::nullopt};
    }
    Result result = Result::Failure;
    const std::optional<GnomeShellWindow> window = find(*focused.value, &result);
    if (!window) {
        return {result == Result::Gone ? Result::NoValue : result, std::nullopt};
    }
    if (window->pid <= 0) {
        return {Result::NoValue, std::nullopt};
    }
    return {Result::Ok, window->pid};
}

Reading<WindowId> GnomeWindowControl::focusedWindow(pid_t application) {
    const Reading<WindowId> focused = focusedWindow();
    if (focused.result != Result::Ok) {
        return focused;
    }
    Result result = Result::Failure;
    const std::optional<GnomeShellWindow> window = find(*focused.value, &result);
    if (!window || window->pid != application) {
        return {result == Result::NotPermitted ? result : Result::NoValue, std::nullopt};
    }
    return focused;
}

Reading<WindowId> GnomeWindowControl::mainWindow(pid_t application) {
    const std::optional<QList<GnomeShellWindow>> windows = all();
    if (!windows) {
        return {Result::NotPermitted, std::nullopt};
    }
    for (const GnomeShellWindow& window : *windows) {
        if (window.pid == application && roleOf(window) == WindowRole::Window && window.onCurrentWorkspace) {
            return {Result::Ok, static_cast<WindowId>(window.id)};
        }
    }
    return {Result::NoValue, std::nullopt};
}

Reading<QList<WindowId>> GnomeWindowControl::windows(pid_t application, WindowScope scope) {
    const std::optional<QList<GnomeShellWindow>> windows = all();
    if (!windows) {
        return {Result::NotPermitted, std::nullopt};
    }
    return {Result::Ok, windowsOf(*windows, application, scope)};
}

QList<ApplicationWindows> GnomeWindowControl::windowsOfApplications(const QList<pid_t>& applications) {
    const std::optional<QList<GnomeShellWindow>> windows = all();
    QList<ApplicationWindows> lists;
    for (const pid_t application : applications) {
        if (!windows) {
            lists.append(
                ApplicationWindows{{Result::NotPermitted, std::nullopt}, {Result::NotPermitted, std::nullopt}});
            continue;
        }
        lists.append(
            ApplicationWindows{{Result::Ok, windowsOf(*windows, application, WindowScope::Visible)},
                               {Result::Ok, windowsOf(*windows, application, WindowScope::IncludingMinimised)}});
    }
    return lists;
}

Reading<QRectF> GnomeWindowControl::frame(WindowId window) {
    Result result = Result::Failure;
    const std::optional<GnomeShellWindow> found = find(window, &result);
    return found ? Reading<QRectF>{Result::Ok, found->frame} : Reading<QRectF>{result, std::nullopt};
}

Reading<WindowRole> GnomeWindowControl::role(WindowId window) {
    Result result = Result::Failure;
    const std::optional<GnomeShellWindow> found = find(window, &result);
    return found ? Reading<WindowRole>{Result::Ok, roleOf(*found)} : Reading<WindowRole>{result, std::nullopt};
}

Reading<bool> GnomeWindowControl::minimised(WindowId window) {
    Result result = Result::Failure;
    const std::optional<GnomeShellWindow> found = find(window, &result);
    return found ? Reading<bool>{Result::Ok, found->minimized} : Reading<bool>{result, std::nullopt};
}

QList<WindowFacts> GnomeWindowControl::facts(const QList<WindowId>& ids) {
    const std::optional<QList<GnomeShellWindow>> windows = all();
    QList<WindowFacts> facts;
    for (const WindowId id : ids) {
        WindowFacts fact;
        const Result missing = windows ? Result::Gone : Result::NotPermitted;
        fact.frame = {missing, std::nullopt};
        fact.role = {missing, std::nullopt};
        fact.minimised = {missing, std::nullopt};
        for (const GnomeShellWindow& window : windows.value_or(QList<GnomeShellWindow>{})) {
            if (static_cast<WindowId>(window.id) == id) {
                fact.frame = {Result::Ok, window.frame};
                fact.role = {Result::Ok, roleOf(window)};
                fact.minimised = {Result::Ok, window.minimized};
                break;
            }
        }
        facts.append(fact);
    }
    return facts;
}

Result GnomeWindowControl::judge(const GnomeChangeAnswer& answer, const QRectF& wanted) {
    switch (answer.outcome) {
        case GnomeChangeAnswer::Outcome::Gone:
            return Result::Gone;
        case GnomeChangeAnswer::Outcome::Failure:
            return Result::Failure;
        case GnomeChangeAnswer::Outcome::Ok:
            break;
    }
    if (!answer.window) {
        return Result::Failure;
    }
    return near(answer.window->frame, wanted) ? Result::Ok : Result::CannotComplete;
}

Result GnomeWindowControl::move(WindowId window, const QPointF& topLeft) {
    Result result = Result::Failure;
    const std::optional<GnomeShellWindow> found = find(window, &result);
    if (!found) {
        return result;
    }
    const QRectF wanted(topLeft, found->frame.size());
    return judge(m_bridge.moveResize(found->id, wanted.toRect()), wanted);
}

Result GnomeWindowControl::resize(WindowId window, const QSizeF& size) {
    Result result = Result::Failure;
    const std::optional<GnomeShellWindow> found = find(window, &result);
    if (!found) {
        return result;
    }
    const QRectF wanted(found->frame.topLeft(), size);
    return judge(m_bridge.moveResize(found->id, wanted.toRect()), wanted);
}

Result GnomeWindowControl::unminimise(WindowId window) {
    Result result = Result::Failure;
    const std::optional<GnomeShellWindow> found = find(window, &result);
    if (!found) {
        return result;
    }
    if (!found->minimized) {
        return Result::Ok;
    }
    const GnomeChangeAnswer answer = m_bridge.unminimize(found->id);
    if (answer.outcome != GnomeChangeAnswer::Outcome::Ok) {
        return answer.outcome == GnomeChangeAnswer::Outcome::Gone ? Result::Gone : Result::Failure;
    }
    return answer.window && !answer.window->minimized ? Result::Ok : Result::CannotComplete;
}

Result GnomeWindowControl::activate(WindowId window) {
    Result result = Result::Failure;
    const std::optional<GnomeShellWindow> found = find(window, &result);
    if (!found) {
        return result;
    }
    const GnomeChangeAnswer answer = m_bridge.activate(found->id);
    if (answer.outcome != GnomeChangeAnswer::Outcome::Ok) {
        return answer.outcome == GnomeChangeAnswer::Outcome::Gone ? Result::Gone : Result::Failure;
    }
    const std::optional<quint64> focused = m_bridge.focusedWindow();
    return focused && *focused == found->id ? Result::Ok : Result::CannotComplete;
}

Result GnomeWindowControl::unhide(pid_t) {
    return Result::Unsupported;
}
