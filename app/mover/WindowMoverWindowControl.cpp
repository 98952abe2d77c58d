// SPDX-License-Identifier: MIT
#include <cmath>

#include "app/mover/WindowMoveLog.h"
#include "app/mover/WindowMover.h"
#include "app/mover/WindowMoverBatch.h"
#include "app/windows/WindowListFilters.h"
#include "platform/Platform.h"

using WindowMoveLog::errorName;

namespace {

// The names the trace gives the two window lists.
QString listName(WindowScope scope) {
    return scope == WindowScope::Visible ? QStringLiteral("AXWindows") : QStringLiteral("AXAllWindows");
}

// A window list as the mover keeps it: the windows only when the read succeeded.
WindowAttributeResult listResult(const Reading<QList<WindowId>>& reading) {
    return {reading.result,
            reading.result == Result::Ok ? reading.value.value_or(QList<WindowId>{}) : QList<WindowId>{}};
}

}  // namespace

WindowControl* WindowMover::windowControl() {
    return Platform::services().windowControl;
}

WindowAttributeResult WindowMover::windows(pid_t application, WindowScope scope) {
    return listResult(windowControl()->windows(application, scope));
}

void WindowMover::appendUnique(WindowId window, QList<WindowId>& list) {
    if (!list.contains(window)) {
        list.append(window);
    }
}

namespace {

void traceListErrors(const QString& appLabel, const WindowAttributeResult& primary, const WindowAttributeResult& all) {
    if (primary.result != Result::Ok) {
        qCDebug(lcMover).noquote() << appLabel + QStringLiteral(": AXWindows error=") + errorName(primary.result);
    }
    if (all.result != Result::Ok) {
        qCDebug(lcMover).noquote() << appLabel + QStringLiteral(": AXAllWindows error=") + errorName(all.result);
    }
}

// The windows of the primary list, then those only the full list has.
QList<WindowId> merged(const WindowAttributeResult& primary, const WindowAttributeResult& all) {
    QList<WindowId> windows;
    for (WindowId window : primary.windows) {
        WindowMover::appendUnique(window, windows);
    }
    for (WindowId window : all.windows) {
        WindowMover::appendUnique(window, windows);
    }
    return windows;
}

// Keeps the windows of movable (or unreadable) roles, else, when there are none, every window.
MovableWindowsWithFacts filterByRole(const QString& appLabel, const WindowAttributeResult& primary,
                                     const WindowAttributeResult& all, const QList<WindowId>& windows,
                                     const QList<WindowFacts>& facts) {
    MovableWindowsWithFacts kept{{primary.result, all.result, std::nullopt}, {}};
    QList<WindowId> filtered;
    for (qsizetype i = 0; i < windows.size(); ++i) {
        const Reading<WindowRole> role = facts.value(i).role;
        if (role.result != Result::Ok || !role.value || WindowListFilters::isMovableRole(*role.value)) {
            filtered.append(windows[i]);
            kept.facts.append(facts.value(i));
        }
    }
    if (!filtered.isEmpty()) {
        kept.movable.windows = filtered;
        return kept;
    }
    if (windows.isEmpty()) {
        qCDebug(lcMover).noquote() << QStringLiteral("%1: no movable windows after filtering (primary=%2, all=%3)")
                                          .arg(appLabel, QString::number(primary.windows.size()),
                                               QString::number(all.windows.size()));
        return kept;
    }
    qCDebug(lcMover).noquote() << QStringLiteral(
                                      "%1: no movable windows by role filter, (primary=%2, all=%3, merged=%4)")
                                      .arg(appLabel, QString::number(primary.windows.size()),
                                           QString::number(all.windows.size()), QString::number(windows.size()));
    kept.movable.windows = windows;
    kept.facts = facts.mid(0, windows.size());
    return kept;
}

}  // namespace

MovableWindows WindowMover::movableWindows(pid_t application, const QString& appLabel) {
    const WindowAttributeResult primary = windows(application, WindowScope::Visible);
    const WindowAttributeResult all = windows(application, WindowScope::IncludingMinimised);
    traceListErrors(appLabel, primary, all);
    const QList<WindowId> windows = merged(primary, all);
    // One batch for the roles of all windows.
    return filterByRole(appLabel, primary, all, windows, windowControl()->facts(windows)).movable;
}

QList<MovableWindowsWithFacts> WindowMover::movableWindows(const QList<pid_t>& applications,
                                                           const QStringList& appLabels) {
    QList<MovableWindowsWithFacts> answers;
    if (applications.isEmpty()) {
        return answers;
    }
    const QList<ApplicationWindows> lists = windowControl()->windowsOfApplications(applications);
    QList<std::pair<WindowAttributeResult, WindowAttributeResult>> results;
    QList<QList<WindowId>> windowsByApplication;
    QList<WindowId> everyWindow;
    for (qsizetype i = 0; i < applications.size(); ++i) {
        const ApplicationWindows answered =
            lists.value(i, {{Result::Failure, std::nullopt}, {Result::Failure, std::nullopt}});
        results.append({listResult(answered.visible), listResult(answered.includingMinimised)});
        windowsByApplication.append(merged(results[i].first, results[i].second));
        everyWindow.append(windowsByApplication[i]);
    }
    // One batch for the roles and frames of every window of every application.
    const QList<WindowFacts> facts = everyWindow.isEmpty() ? QList<WindowFacts>{} : windowControl()->facts(everyWindow);
    qsizetype first = 0;
    for (qsizetype i = 0; i < applications.size(); ++i) {
        const QString& label = appLabels.at(i);
        const auto& [primary, all] = results[i];
        traceListErrors(label, primary, all);
        const QList<WindowId>& windows = windowsByApplication[i];
        answers.append(filterByRole(label, primary, all, windows, facts.mid(first, windows.size())));
        first += windows.size();
    }
    return answers;
}

std::optional<QRectF> WindowMover::frame(WindowId window) {
    const Reading<QRectF> reading = windowControl()->frame(window);
    return reading.result == Result::Ok ? reading.value : std::nullopt;
}

std::optional<QRectF> WindowMover::usableFrame(const std::optional<QRectF>& frame) {
    if (!frame || !(frame->width() > 1.0 && frame->height() > 1.0)) {
        return std::nullopt;
    }
    return frame;
}

std::optional<WindowId> WindowMover::focusedElement(const Reading<WindowId>& reading, const QString& attribute,
                                                    const QString& sourceLabel) {
    if (reading.result != Result::Ok || !reading.value) {
        const Result result = reading.result == Result::Ok ? Result::NoValue : reading.result;
        qCDebug(lcMover).noquote() << QStringLiteral("moveFocusedWindow: %1 attribute %2 error=%3")
                                          .arg(sourceLabel, attribute, errorName(result));
        return std::nullopt;
    }
    return reading.value;
}

Result WindowMover::setOrigin(WindowId window, const QPointF& origin) {
    if (!std::isfinite(origin.x()) || !std::isfinite(origin.y())) {
        return Result::Failure;
    }
    return windowControl()->move(window, origin);
}

Result WindowMover::setSize(WindowId window, const QSizeF& size) {
    if (!std::isfinite(size.width()) || !std::isfinite(size.height())) {
        return Result::Failure;
    }
    return windowControl()->resize(window, size);
}

QList<PlacementResult> WindowMover::place(const QList<WindowPlacement>& placements) {
    QList<PlacementResult> results(placements.size());
    QList<WindowPlacement> sent;
    QList<qsizetype> sentIndexes;
    for (qsizetype i = 0; i < placements.size(); ++i) {
        const WindowPlacement& placement = placements[i];
        const bool finite =
            std::isfinite(placement.topLeft.x()) && std::isfinite(placement.topLeft.y()) &&
            (!placement.size || (std::isfinite(placement.size->width()) && std::isfinite(placement.size->height())));
        if (!finite) {
            results[i] = {Result::Failure, placement.size ? std::optional(Result::Failure) : std::nullopt};
            continue;
        }
        sent.append(placement);
        sentIndexes.append(i);
    }
    if (sent.isEmpty()) {
        return results;
    }
    QList<PlacementResult> answered;
    if (auto* placer = dynamic_cast<WindowPlacer*>(windowControl())) {
        answered = placer->place(sent);
    } else {
        for (const WindowPlacement& placement : sent) {
            PlacementResult& result = answered.emplace_back();
            result.position = windowControl()->move(placement.window, placement.topLeft);
            if (placement.size) {
                result.size = windowControl()->resize(placement.window, *placement.size);
            }
        }
    }
    for (qsizetype i = 0; i < sentIndexes.size(); ++i) {
        const WindowPlacement& placement = sent[i];
        // A backend that answers fewer results than asked failed the rest.
        results[sentIndexes[i]] =
            answered.value(i, {Result::Failure, placement.size ? std::optional(Result::Failure) : std::nullopt});
    }
    return results;
}

QList<std::optional<QRectF>> WindowMover::frames(const QList<WindowId>& windows) {
    QList<std::optional<QRectF>> read;
    if (windows.isEmpty()) {
        return read;
    }
    const QList<WindowFacts> facts = windowControl()->facts(windows);
    for (qsizetype i = 0; i < windows.size(); ++i) {
        const Reading<QRectF> frame = facts.value(i).frame;
        read.append(frame.result == Result::Ok ? frame.value : std::nullopt);
    }
    return read;
}

QList<std::optional<QRectF>> WindowMover::framesAfter(const QList<WindowId>& windows,
                                                      const QList<PlacementResult>& results) {
    QList<std::optional<QRectF>> after(windows.size());
    QList<WindowId> unknown;
    QList<qsizetype> unknownIndexes;
    for (qsizetype i = 0; i < windows.size(); ++i) {
        if (const std::optional<QRectF> told = results.value(i).frame) {
            after[i] = told;
        } else {
            unknown.append(windows[i]);
            unknownIndexes.append(i);
        }
    }
    const QList<std::optional<QRectF>> read = frames(unknown);
    for (qsizetype j = 0; j < unknownIndexes.size(); ++j) {
        after[unknownIndexes[j]] = read.value(j);
    }
    return after;
}

void WindowMover::revealMovedWindowsForApplication(const QList<WindowId>& windows, pid_t application,
                                                   const QString& appLabel) {
    const Result unhide = windowControl()->unhide(application);
    if (unhide != Result::Ok && unhide != Result::Unsupported) {
        qCDebug(lcMover).noquote() << appLabel + QStringLiteral(": unhide app failed with ") + errorName(unhide);
    }
    for (WindowId window : windows) {
        const Result unminimise = windowControl()->unminimise(window);
        if (unminimise != Result::Ok && unminimise != Result::Unsupported) {
            qCDebug(lcMover).noquote() << appLabel + QStringLiteral(": unminimize window failed with ") +
                                              errorName(unminimise);
        }
    }
}

std::optional<FocusedWindowContext> WindowMover::firstWindowContextWithFrame(const QList<WindowId>& windows,
                                                                             const QString& sourceLabel) {
    if (windows.isEmpty()) {
        return std::nullopt;
    }
    for (WindowId window : windows) {
        if (const std::optional<QRectF> usable = usableFrame(frame(window))) {
            return FocusedWindowContext{window, *usable};
        }
    }
    qCDebug(lcMover).noquote() << QStringLiteral("moveFocusedWindow: %1 had %2 windows but no readable frame")
                                      .arg(sourceLabel, QString::number(windows.size()));
    return std::nullopt;
}

std::optional<FocusedWindowContext> WindowMover::focusedWindowContext(pid_t application, const QString& sourceLabel) {
    // The focused window, else the main window; each read only when the one before gave nothing.
    for (const bool focused : {true, false}) {
        const Reading<WindowId> reading =
            focused ? windowControl()->focusedWindow(application) : windowControl()->mainWindow(application);
        const QString attribute = focused ? QStringLiteral("AXFocusedWindow") : QStringLiteral("AXMainWindow");
        if (const std::optional<WindowId> window = focusedElement(reading, attribute, sourceLabel)) {
            if (const std::optional<QRectF> usable = usableFrame(frame(*window))) {
                return FocusedWindowContext{*window, *usable};
            }
        }
    }
    for (const WindowScope scope : {WindowScope::Visible, WindowScope::IncludingMinimised}) {
        const WindowAttributeResult list = windows(application, scope);
        if (list.result != Result::Ok) {
            qCDebug(lcMover).noquote() << QStringLiteral("moveFocusedWindow: %1 %2 error=%3")
                                              .arg(sourceLabel, listName(scope), errorName(list.result));
        }
        if (const std::optional<FocusedWindowContext> context =
                firstWindowContextWithFrame(list.windows, sourceLabel + QLatin1Char('.') + listName(scope))) {
            return context;
        }
    }
    qCDebug(lcMover).noquote()
        << QStringLiteral("moveFocusedWindow: %1 has no resolvable window context").arg(sourceLabel);
    return std::nullopt;
}
