// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinWindowControl.h"

#include <QJsonArray>
#include <QJsonObject>
#include <algorithm>
#include <cmath>

#include "platform/kwin/KWinBridge.h"
#include "platform/kwin/KWinSpace.h"

namespace {

const KWinWindow* find(const KWinState& state, KWinBridge& bridge, WindowId id) {
    const QString uuid = bridge.uuidOf(id);
    return uuid.isEmpty() ? nullptr : state.window(uuid);
}

// An application's windows, front to back.
QList<KWinWindow> frontToBack(const KWinState& state, pid_t application) {
    QList<KWinWindow> windows;
    for (const KWinWindow& window : state.windows) {
        if (window.pid == application) {
            windows.append(window);
        }
    }
    std::stable_sort(windows.begin(), windows.end(),
                     [](const KWinWindow& a, const KWinWindow& b) { return a.stacking > b.stacking; });
    return windows;
}

Result resultOf(const std::optional<QString>& answer) {
    if (!answer) {
        return Result::CannotComplete;
    }
    if (*answer == QLatin1String("late")) {
        return Result::CannotComplete;
    }
    if (*answer == QLatin1String("ok")) {
        return Result::Ok;
    }
    if (*answer == QLatin1String("gone")) {
        return Result::Gone;
    }
    if (*answer == QLatin1String("unsupported")) {
        return Result::Unsupported;
    }
    return Result::Failure;
}

}  // namespace

WindowRole KWinWindowControl::roleOf(const KWinWindow& window) {
    if (window.dialog || (window.modal && window.transient)) {
        return WindowRole::Dialog;
    }
    if (window.normal || window.utility) {
        return WindowRole::Window;
    }
    return WindowRole::Other;
}

bool KWinWindowControl::isListed(const KWinWindow& window, WindowScope scope) {
    if (!window.managed || !window.onCurrentDesktop || window.desktopWindow || window.dock || window.popup) {
        return false;
    }
    return scope == WindowScope::IncludingMinimised || !window.minimized;
}

Reading<WindowId> KWinWindowControl::focusedWindow() {
    if (!m_bridge.isWatching()) {
        return {Result::NotPermitted, std::nullopt};
    }
    const KWinState state = m_bridge.state();
    if (state.activeUuid.isEmpty() || state.window(state.activeUuid) == nullptr) {
        return {Result::NoValue, std::nullopt};
    }
    return {Result::Ok, m_bridge.idOf(state.activeUuid)};
}

Reading<pid_t> KWinWindowControl::focusedApplication() {
    if (!m_bridge.isWatching()) {
        return {Result::NotPermitted, std::nullopt};
    }
    const KWinState state = m_bridge.state();
    const KWinWindow* active = state.window(state.activeUuid);
    if (active == nullptr || active->pid <= 0) {
        return {Result::NoValue, std::nullopt};
    }
    return {Result::Ok, active->pid};
}

Reading<WindowId> KWinWindowControl::focusedWindow(pid_t application) {
    if (!m_bridge.isWatching()) {
        return {Result::NotPermitted, std::nullopt};
    }
    const KWinState state = m_bridge.state();
    const KWinWindow* active = state.window(state.activeUuid);
    if (active == nullptr || active->pid != application) {
        return {Result::NoValue, std::nullopt};
    }
    return {Result::Ok, m_bridge.idOf(active->uuid)};
}

Reading<WindowId> KWinWindowControl::mainWindow(pid_t application) {
    if (!m_bridge.isWatching()) {
        return {Result::NotPermitted, std::nullopt};
    }
    const KWinState state = m_bridge.state();
    for (const KWinWindow& window : frontToBack(state, application)) {
        if (isListed(window, WindowScope::Visible) && roleOf(window) == WindowRole::Window) {
            return {Result::Ok, m_bridge.idOf(window.uuid)};
        }
    }
    return {Result::NoValue, std::nullopt};
}

Reading<QList<WindowId>> KWinWindowControl::windowsIn(const KWinState& state, pid_t application, WindowScope scope) {
    QList<WindowId> ids;
    for (const KWinWindow& window : frontToBack(state, application)) {
        if (isListed(window, scope)) {
            ids.append(m_bridge.idOf(window.uuid));
        }
    }
    return {Result::Ok, ids};
}

Reading<QList<WindowId>> KWinWindowControl::windows(pid_t application, WindowScope scope) {
    if (!m_bridge.isWatching()) {
        return {Result::NotPermitted, std::nullopt};
    }
    return windowsIn(m_bridge.state(), application, scope);
}

QList<ApplicationWindows> KWinWindowControl::windowsOfApplications(const QList<pid_t>& applications) {
    QList<ApplicationWindows> lists;
    const bool watching = m_bridge.isWatching();
    const KWinState state = m_bridge.state();
    for (pid_t application : applications) {
        if (!watching) {
            lists.append(
                ApplicationWindows{{Result::NotPermitted, std::nullopt}, {Result::NotPermitted, std::nullopt}});
            continue;
        }
        lists.append(ApplicationWindows{windowsIn(state, application, WindowScope::Visible),
                                        windowsIn(state, application, WindowScope::IncludingMinimised)});
    }
    return lists;
}

QHash<pid_t, ApplicationWindowRoles> KWinWindowControl::applicationsIn(const KWinState& state, KWinBridge& bridge,
                                                                       const QSet<pid_t>& applications) {
    QHash<pid_t, ApplicationWindowRoles> answers;
    for (pid_t application : applications) {
        ApplicationWindowRoles owned;
        QList<WindowId> visible;
        QList<WindowId> all;
        for (const KWinWindow& window : frontToBack(state, application)) {
            const WindowId id = bridge.idOf(window.uuid);
            if (isListed(window, WindowScope::Visible)) {
                visible.append(id);
            }
            if (isListed(window, WindowScope::IncludingMinimised)) {
                all.append(id);
                owned.roles.insert(id, {Result::Ok, roleOf(window)});
            }
        }
        owned.lists = {{Result::Ok, visible}, {Result::Ok, all}};
        answers.insert(application, owned);
    }
    return answers;
}

WindowFacts KWinWindowControl::factsIn(const KWinState& state, WindowId id) {
    const KWinWindow* window = find(state, m_bridge, id);
    if (window == nullptr) {
        return {{Result::Gone, std::nullopt}, {Result::Gone, std::nullopt}, {Result::Gone, std::nullopt}};
    }
    return {{Result::Ok, KWinSpace::toDisplaySpace(state, window->frame)},
            {Result::Ok, roleOf(*window)},
            {Result::Ok, window->minimized}};
}

Reading<QRectF> KWinWindowControl::frame(WindowId window) {
    return facts({window}).constFirst().frame;
}

Reading<WindowRole> KWinWindowControl::role(WindowId window) {
    return facts({window}).constFirst().role;
}

Reading<bool> KWinWindowControl::minimised(WindowId window) {
    return facts({window}).constFirst().minimised;
}

QList<WindowFacts> KWinWindowControl::facts(const QList<WindowId>& windows) {
    QList<WindowFacts> all;
    if (!m_bridge.isWatching()) {
        for (qsizetype i = 0; i < windows.size(); ++i) {
            all.append(WindowFacts{{Result::NotPermitted, std::nullopt},
                                   {Result::NotPermitted, std::nullopt},
                                   {Result::NotPermitted, std::nullopt}});
        }
        return all;
    }
    const KWinState state = m_bridge.state();
    for (WindowId window : windows) {
        all.append(factsIn(state, window));
    }
    return all;
}

Result KWinWindowControl::run(WindowId window, const QString& op, const QJsonObject& arguments) {
    if (!m_bridge.isWatching()) {
        return Result::NotPermitted;
    }
    const QString uuid = m_bridge.uuidOf(window);
    if (uuid.isEmpty() || m_bridge.state().window(uuid) == nullptr) {
        return Result::Gone;
    }
    QJsonObject command = arguments;
    command.insert(QStringLiteral("op"), op);
    command.insert(QStringLiteral("window"), uuid);
    return resultOf(m_bridge.command(command));
}

Result KWinWindowControl::move(WindowId window, const QPointF& topLeft) {
    const QPointF target = KWinSpace::toKWin(m_bridge.state(), topLeft);
    return run(window, QStringLiteral("move"), {{QStringLiteral("x"), target.x()}, {QStringLiteral("y"), target.y()}});
}

Result KWinWindowControl::resize(WindowId window, const QSizeF& size) {
    return run(window, QStringLiteral("resize"),
               {{QStringLiteral("width"), size.width()}, {QStringLiteral("height"), size.height()}});
}

Result KWinWindowControl::unminimise(WindowId window) {
    const Reading<bool> minimisedNow = minimised(window);
    if (minimisedNow.result != Result::Ok) {
        return minimisedNow.result;
    }
    if (!*minimisedNow.value) {
        return Result::Ok;
    }
    return run(window, QStringLiteral("unminimise"), {});
}

Result KWinWindowControl::activate(WindowId window) {
    return run(window, QStringLiteral("activate"), {});
}

Result KWinWindowControl::unhide(pid_t) {
    return Result::Unsupported;  // KWin has no hidden applications
}

QList<PlacementResult> KWinWindowControl::place(const QList<WindowPlacement>& placements) {
    auto resultFor = [](const WindowPlacement& placement, Result result) {
        return PlacementResult{result, placement.size ? std::optional(result) : std::nullopt};
    };
    QList<PlacementResult> results;
    if (!m_bridge.isWatching()) {
        for (const WindowPlacement& placement : placements) {
            results.append(resultFor(placement, Result::NotPermitted));
        }
        return results;
    }
    const KWinState state = m_bridge.state();
    QJsonArray moves;
    QList<qsizetype> sent;  // the index in `moves` of each placement, or -1 when it was not sent
    QList<QRectF> wanted;   // in KWin's space, for checking a batch that never answered
    for (const WindowPlacement& placement : placements) {
        const QString uuid = m_bridge.uuidOf(placement.window);
        const KWinWindow* window = uuid.isEmpty() ? nullptr : state.window(uuid);
        if (window == nullptr) {
            sent.append(-1);
            wanted.append(QRectF());
            continue;
        }
        const QPointF target = KWinSpace::toKWin(state, placement.topLeft);
        QJsonObject move{
            {QStringLiteral("window"), uuid}, {QStringLiteral("x"), target.x()}, {QStringLiteral("y"), target.y()}};
        if (placement.size) {
            move.insert(QStringLiteral("width"), placement.size->width());
            move.insert(QStringLiteral("height"), placement.size->height());
        }
        sent.append(moves.size());
        wanted.append(QRectF(target, placement.size.value_or(window->frame.size())));
        moves.append(move);
    }
    std::optional<QJsonValue> answer;
    if (!moves.isEmpty()) {
        // The script gives up on windows that do not take their frame a little before the bridge gives up
        // on the script, so that one slow window does not cost the others their results.
        answer = m_bridge.request({{QStringLiteral("op"), QStringLiteral("place")},
                                   {QStringLiteral("moves"), moves},
                                   {QStringLiteral("timeLimit"), KWinBridge::kAnswerTimeoutMs * 3 / 4}});
    }
    const QJsonArray answered = answer ? answer->toArray() : QJsonArray();
    const KWinState after = m_bridge.state();
    for (qsizetype i = 0; i < placements.size(); ++i) {
        if (sent[i] < 0) {
            results.append(resultFor(placements[i], Result::Gone));
            continue;
        }
        if (sent[i] < answered.size()) {
            results.append(resultFor(placements[i], resultOf(answered.at(sent[i]).toString())));
            continue;
        }
        // No answer for this window: what KWin last reported of it says how the change went.
        const KWinWindow* window = after.window(m_bridge.uuidOf(placements[i].window));
        Result result = Result::CannotComplete;
        if (window == nullptr) {
            result = Result::Gone;
        } else if ((window->frame.topLeft() - wanted[i].topLeft()).manhattanLength() < 2 &&
                   (!placements[i].size || (std::abs(window->frame.width() - wanted[i].width()) < 1 &&
                                            std::abs(window->frame.height() - wanted[i].height()) < 1))) {
            result = Result::Ok;
        }
        results.append(resultFor(placements[i], result));
    }
    return results;
}
