#include "app/AXValues.h"
#include "app/WindowMoveLog.h"
#include "app/WindowMover.h"

namespace {

AXAttributeReply read(const AXUIElement& element, const char* attribute) {
    AXAttributeReply reply;
    reply.error = AXValues::accessibility()->copyAttributeValue(element, QLatin1String(attribute), &reply.value);
    return reply;
}

// A frame for a focus candidate: readable position and size larger than one point.
std::optional<QRectF> usableFrame(const AXUIElement& element) {
    const WindowMover::PositionAndSize read = WindowMover::positionAndSize(element);
    return AXValues::usableFrame(read.position, read.size);
}

}  // namespace

QString WindowMover::axErrorName(AXError error) {
    static const char* const names[] = {
        "failure",
        "illegalArgument",
        "invalidUIElement",
        "invalidUIElementObserver",
        "cannotComplete",
        "attributeUnsupported",
        "actionUnsupported",
        "notificationUnsupported",
        "notImplemented",
        "notificationAlreadyRegistered",
        "notificationNotRegistered",
        "apiDisabled",
        "noValue",
        "parameterizedAttributeUnsupported",
        "notEnoughPrecision",
    };
    if (error == kAXErrorSuccess) {
        return QStringLiteral("success");
    }
    if (error <= kAXErrorFailure && error >= kAXErrorNotEnoughPrecision) {
        return QLatin1String(names[kAXErrorFailure - error]);
    }
    return QStringLiteral("unknown(%1)").arg(error);
}

WindowAttributeResult WindowMover::windows(const AXUIElement& app, const QString& attribute) {
    QVariant value;
    const AXError error = AXValues::accessibility()->copyAttributeValue(app, attribute, &value);
    if (error == kAXErrorSuccess && AXValues::isElementList(value)) {
        return {error, value.value<AXUIElementList>()};
    }
    return {error, {}};
}

void WindowMover::appendUnique(const AXUIElement& element, AXUIElementList& list) {
    if (!list.contains(element)) {
        list.append(element);
    }
}

std::optional<AXUIElementList> WindowMover::movableWindows(const AXUIElement& app, const QString& appLabel) {
    const WindowAttributeResult primary = windows(app, QLatin1String(kAXWindowsAttribute));
    if (primary.error != kAXErrorSuccess) {
        qCDebug(lcMover).noquote() << appLabel + QStringLiteral(": AXWindows error=") + axErrorName(primary.error);
    }
    const WindowAttributeResult all = windows(app, QLatin1String(kAXAllWindowsAttribute));
    if (all.error != kAXErrorSuccess) {
        qCDebug(lcMover).noquote() << appLabel + QStringLiteral(": AXAllWindows error=") + axErrorName(all.error);
    }

    AXUIElementList merged;
    for (const AXUIElement& window : primary.windows) {
        appendUnique(window, merged);
    }
    for (const AXUIElement& window : all.windows) {
        appendUnique(window, merged);
    }

    // One batch for the roles of all windows.
    QList<AXAttributeRequest> requests;
    for (const AXUIElement& window : merged) {
        requests.append({window, QLatin1String(kAXRoleAttribute)});
    }
    const QList<AXAttributeReply> roles = AXValues::accessibility()->copyAttributeValues(requests);
    AXUIElementList filtered;
    for (qsizetype i = 0; i < merged.size(); ++i) {
        const std::optional<QString> role = AXValues::string(roles.value(i));
        if (!role || AXValues::isMovableRole(*role)) {
            filtered.append(merged[i]);
        }
    }
    if (!filtered.isEmpty()) {
        return filtered;
    }
    if (merged.isEmpty()) {
        qCDebug(lcMover).noquote() << QStringLiteral("%1: no movable windows after filtering (primary=%2, all=%3)")
                                          .arg(appLabel, QString::number(primary.windows.size()),
                                               QString::number(all.windows.size()));
        return std::nullopt;
    }
    qCDebug(lcMover).noquote() << QStringLiteral(
                                      "%1: no movable windows by role filter, (primary=%2, all=%3, merged=%4)")
                                      .arg(appLabel, QString::number(primary.windows.size()),
                                           QString::number(all.windows.size()), QString::number(merged.size()));
    return merged;
}

std::optional<QPointF> WindowMover::position(const AXUIElement& element) {
    return AXValues::point(read(element, kAXPositionAttribute));
}

std::optional<QSizeF> WindowMover::size(const AXUIElement& element) {
    return AXValues::size(read(element, kAXSizeAttribute));
}

WindowMover::PositionAndSize WindowMover::positionAndSize(const AXUIElement& element) {
    const QList<AXAttributeReply> replies = AXValues::accessibility()->copyAttributeValues(
        {{element, QLatin1String(kAXPositionAttribute)}, {element, QLatin1String(kAXSizeAttribute)}});
    return {AXValues::point(replies.value(0)), AXValues::size(replies.value(1))};
}

std::optional<qint64> WindowMover::axWindowNumber(const AXUIElement& window) {
    return AXValues::windowNumber(read(window, kAXWindowNumberAttribute));
}

std::optional<AXUIElement> WindowMover::axElementAttribute(const AXUIElement& element, const QString& attribute,
                                                           const QString& sourceLabel) {
    QVariant value;
    const AXError error = AXValues::accessibility()->copyAttributeValue(element, attribute, &value);
    if (error != kAXErrorSuccess) {
        qCDebug(lcMover).noquote() << QStringLiteral("moveFocusedWindow: %1 attribute %2 error=%3")
                                          .arg(sourceLabel, attribute, axErrorName(error));
        return std::nullopt;
    }
    if (!AXValues::isElement(value)) {
        qCDebug(lcMover).noquote()
            << QStringLiteral("moveFocusedWindow: %1 attribute %2 is not AXUIElement").arg(sourceLabel, attribute);
        return std::nullopt;
    }
    return value.value<AXUIElement>();
}

void WindowMover::revealMovedWindowsForApplication(const AXUIElementList& windows, const AXUIElement& app,
                                                   const QString& appLabel) {
    Accessibility* accessibility = AXValues::accessibility();
    const AXError unhide = accessibility->setAttributeValue(app, QLatin1String(kAXHiddenAttribute), false);
    if (unhide != kAXErrorSuccess && unhide != kAXErrorAttributeUnsupported) {
        qCDebug(lcMover).noquote() << appLabel + QStringLiteral(": unhide app failed with ") + axErrorName(unhide);
    }
    for (const AXUIElement& window : windows) {
        const AXError unminimize =
            accessibility->setAttributeValue(window, QLatin1String(kAXMinimizedAttribute), false);
        if (unminimize != kAXErrorSuccess && unminimize != kAXErrorAttributeUnsupported) {
            qCDebug(lcMover).noquote() << appLabel + QStringLiteral(": unminimize window failed with ") +
                                              axErrorName(unminimize);
        }
    }
}

std::optional<FocusedWindowContext> WindowMover::firstWindowContextWithFrame(const AXUIElementList& windows,
                                                                             const QString& sourceLabel) {
    if (windows.isEmpty()) {
        return std::nullopt;
    }
    for (const AXUIElement& window : windows) {
        if (const std::optional<QRectF> frame = usableFrame(window)) {
            return FocusedWindowContext{window, *frame};
        }
    }
    qCDebug(lcMover).noquote() << QStringLiteral("moveFocusedWindow: %1 had %2 windows but no readable frame")
                                      .arg(sourceLabel, QString::number(windows.size()));
    return std::nullopt;
}

std::optional<FocusedWindowContext> WindowMover::focusedWindowContext(const AXUIElement& app,
                                                                      const QString& sourceLabel) {
    for (const char* attribute : {kAXFocusedWindowAttribute, kAXMainWindowAttribute}) {
        if (const std::optional<AXUIElement> window = axElementAttribute(app, QLatin1String(attribute), sourceLabel)) {
            if (const std::optional<QRectF> frame = usableFrame(*window)) {
                return FocusedWindowContext{*window, *frame};
            }
        }
    }
    for (const char* attribute : {kAXWindowsAttribute, kAXAllWindowsAttribute}) {
        const WindowAttributeResult list = windows(app, QLatin1String(attribute));
        if (list.error != kAXErrorSuccess) {
            qCDebug(lcMover).noquote() << QStringLiteral("moveFocusedWindow: %1 %2 error=%3")
                                              .arg(sourceLabel, QLatin1String(attribute), axErrorName(list.error));
        }
        if (const std::optional<FocusedWindowContext> context =
                firstWindowContextWithFrame(list.windows, sourceLabel + QLatin1Char('.') + QLatin1String(attribute))) {
            return context;
        }
    }
    qCDebug(lcMover).noquote()
        << QStringLiteral("moveFocusedWindow: %1 has no resolvable window context").arg(sourceLabel);
    return std::nullopt;
}
