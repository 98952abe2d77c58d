#include "app/AXValues.h"
#include "app/WindowMoveLog.h"
#include "app/WindowMover.h"
#include "platform/Platform.h"
#include "platform/RunningApplications.h"

std::optional<FocusedWindowContext> WindowMover::focusedWindowContext() {
    const AXUIElement systemWide = AXUIElement::systemWide();
    const QString systemWideLabel = QStringLiteral("systemWide");

    if (const std::optional<AXUIElement> window =
            axElementAttribute(systemWide, QLatin1String(kAXFocusedWindowAttribute), systemWideLabel)) {
        if (const std::optional<QRectF> frame = AXValues::usableFrame(position(*window), size(*window))) {
            return FocusedWindowContext{*window, *frame};
        }
    }
    if (const std::optional<AXUIElement> app =
            axElementAttribute(systemWide, QLatin1String(kAXFocusedApplicationAttribute), systemWideLabel)) {
        if (std::optional<FocusedWindowContext> context =
                focusedWindowContext(*app, QStringLiteral("focusedApplication"))) {
            return context;
        }
    }
    const std::optional<RunningApplication> frontmost =
        Platform::services().runningApplications->frontmostApplication();
    if (frontmost && frontmost->pid >= 1) {
        const pid_t pid = frontmost->pid;
        return focusedWindowContext(AXUIElement::application(pid), QStringLiteral("frontmostApplication[%1]").arg(pid));
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
    const AXUIElement& window = context->window;
    const QPointF center = normalizedCenter(frame, S);
    const QSizeF wanted = adjustSizeToDestination ? adjustedSize(frame, S, T) : frame.size();
    const QPointF origin = destinationOrigin(center, wanted, T);
    const QString positionAttribute = QLatin1String(kAXPositionAttribute);

    if (!adjustSizeToDestination) {
        const AXError error = AXValues::setPoint(window, positionAttribute, origin);
        return {error == kAXErrorSuccess ? 1 : 0, 1};
    }

    // The first two writes only prepare; the final position write decides.
    AXValues::setPoint(window, positionAttribute, origin);
    AXValues::setSize(window, QLatin1String(kAXSizeAttribute), wanted);
    const std::optional<QSizeF> readSize = size(window);
    const QSizeF actualSize = AXValues::usableFrame(position(window), readSize) ? *readSize : wanted;
    const QPointF finalOrigin = destinationOrigin(center, actualSize, T);
    const AXError error = AXValues::setPoint(window, positionAttribute, finalOrigin);
    return {error == kAXErrorSuccess ? 1 : 0, 1};
}
