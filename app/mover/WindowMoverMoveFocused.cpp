// SPDX-License-Identifier: MIT
#include "app/mover/WindowMoveLog.h"
#include "app/mover/WindowMover.h"
#include "app/mover/WindowMoverBatch.h"
#include "platform/Platform.h"
#include "platform/RunningApplications.h"

std::optional<FocusedWindowContext> WindowMover::focusedWindowContext() {
    const QString systemWideLabel = QStringLiteral("systemWide");

    if (const std::optional<WindowId> window =
            focusedElement(windowControl()->focusedWindow(), QStringLiteral("AXFocusedWindow"), systemWideLabel)) {
        if (const std::optional<QRectF> usable = usableFrame(frame(*window))) {
            return FocusedWindowContext{*window, *usable};
        }
    }
    const Reading<pid_t> application = windowControl()->focusedApplication();
    if (application.result != Result::Ok || !application.value) {
        const Result result = application.result == Result::Ok ? Result::NoValue : application.result;
        qCDebug(lcMover).noquote() << QStringLiteral("moveFocusedWindow: %1 attribute AXFocusedApplication error=%2")
                                          .arg(systemWideLabel, WindowMoveLog::errorName(result));
    } else if (std::optional<FocusedWindowContext> context =
                   focusedWindowContext(*application.value, QStringLiteral("focusedApplication"))) {
        return context;
    }
    const std::optional<RunningApplication> frontmost =
        Platform::services().runningApplications->frontmostApplication();
    if (frontmost && frontmost->pid >= 1) {
        const pid_t pid = frontmost->pid;
        return focusedWindowContext(pid, QStringLiteral("frontmostApplication[%1]").arg(pid));
    }
    return std::nullopt;
}

WindowMoveReport WindowMover::moveFocusedWindow(const DisplaySnapshot& target,
                                                const QList<DisplaySnapshot>& allDisplays,
                                                bool adjustSizeToDestination) {
    WindowMoveReport report;
    const std::optional<FocusedWindowContext> context = focusedWindowContext();
    if (!context) {
        return report;
    }
    WindowMoveRecord& record = report.windows.emplace_back();
    record.window = context->window;
    record.frameSource = FrameSource::WindowControl;
    record.frameBefore = context->frame;

    const std::optional<DisplaySnapshot> source = bestSourceDisplay(context->frame, allDisplays);
    if (!source) {
        qCDebug(lcMover).noquote() << QStringLiteral(
                                          "moveFocusedWindow: unable to determine source display for frame=") +
                                          WindowMoveLog::describe(context->frame);
        record.outcome = WindowMoveOutcome::NoSourceDisplay;
        return report;
    }
    report.counts.attemptedCount = 1;
    // A window already on the target display is reported as not moved.
    if (source->id == target.id) {
        record.outcome = WindowMoveOutcome::AlreadyOnTargetDisplay;
        return report;
    }

    const QRectF S = source->bounds;
    const QRectF T = target.bounds;
    const QRectF& frame = context->frame;
    const WindowId window = context->window;
    const QPointF center = normalizedCenter(frame, S);
    // An adjusted size is asked for in whole pixels, as the window manager applies it: a window that takes
    // it then already stands at the final origin, and the final write finds nothing to change.
    const QSizeF wanted = adjustSizeToDestination ? wholePixelSize(adjustedSize(frame, S, T), T) : frame.size();
    const QPointF origin = destinationOrigin(center, wanted, T);
    record.targetSize = wanted;

    Result decidingWrite = Result::Failure;
    if (!adjustSizeToDestination) {
        decidingWrite = setOrigin(window, origin);
        record.writes.position = decidingWrite;
        record.targetOrigin = origin;
    } else {
        // The first two writes (one batch) only prepare; the final position write decides.
        const PlacementResult prepared = place({{window, origin, wanted}}).value(0);
        record.writes.position = prepared.position;
        record.writes.size = prepared.size.value_or(Result::Failure);
        // The frame the window control confirmed the batch with, when it told it; else read.
        const std::optional<QRectF> read = usableFrame(prepared.frame ? prepared.frame : WindowMover::frame(window));
        const QSizeF actualSize = read ? read->size() : wanted;
        const QPointF finalOrigin = destinationOrigin(center, actualSize, T);
        decidingWrite = setOrigin(window, finalOrigin);
        record.writes.finalPosition = decidingWrite;
        record.targetOrigin = finalOrigin;
    }
    const bool moved = decidingWrite == Result::Ok;
    record.outcome = moved ? WindowMoveOutcome::Moved : WindowMoveOutcome::NotMoved;
    report.counts.movedCount = moved ? 1 : 0;
    return report;
}
