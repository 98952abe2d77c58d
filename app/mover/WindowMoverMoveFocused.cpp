#include "app/mover/WindowMoveLog.h"
#include "app/mover/WindowMover.h"
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

WindowMoveResult WindowMover::moveFocusedWindow(const DisplaySnapshot& target,
                                                const QList<DisplaySnapshot>& allDisplays,
                                                bool adjustSizeToDestination) {
    const std::optional<FocusedWindowContext> context = focusedWindowContext();
    if (!context) {
        return {0, 0};
    }
    const std::optional<DisplaySnapshot> source = bestSourceDisplay(context->frame, allDisplays);
    if (!source) {
        qCDebug(lcMover).noquote() << QStringLiteral(
                                          "moveFocusedWindow: unable to determine source display for frame=") +
                                          WindowMoveLog::describe(context->frame);
        return {0, 0};
    }
    // A window already on the target display is reported as not moved.
    if (source->id == target.id) {
        return {0, 1};
    }

    const QRectF S = source->bounds;
    const QRectF T = target.bounds;
    const QRectF& frame = context->frame;
    const WindowId window = context->window;
    const QPointF center = normalizedCenter(frame, S);
    const QSizeF wanted = adjustSizeToDestination ? adjustedSize(frame, S, T) : frame.size();
    const QPointF origin = destinationOrigin(center, wanted, T);

    if (!adjustSizeToDestination) {
        return {setOrigin(window, origin) == Result::Ok ? 1 : 0, 1};
    }

    // The first two writes only prepare; the final position write decides.
    setOrigin(window, origin);
    setSize(window, wanted);
    const std::optional<QRectF> read = usableFrame(WindowMover::frame(window));
    const QSizeF actualSize = read ? read->size() : wanted;
    const QPointF finalOrigin = destinationOrigin(center, actualSize, T);
    return {setOrigin(window, finalOrigin) == Result::Ok ? 1 : 0, 1};
}
