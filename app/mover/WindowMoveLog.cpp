// SPDX-License-Identifier: MIT
#include "app/mover/WindowMoveLog.h"

#include <QLocale>
#include <cmath>

#include "app/mover/WindowMover.h"

namespace {
// Set by the build: 1 in Debug builds, where the trace is on unless logging rules switch it off.
constexpr bool kTraceOnByDefault = LATTICA_DEBUG_TRACE_DEFAULT;
}  // namespace

Q_LOGGING_CATEGORY(lcMover, "lattica.mover", kTraceOnByDefault ? QtDebugMsg : QtInfoMsg)

QString WindowMoveLog::number(double value) {
    if (std::isfinite(value) && value == std::trunc(value) && std::fabs(value) < 1e16) {
        return QString::number(value, 'f', 1);
    }
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString WindowMoveLog::describe(const QRectF& rect) {
    return QStringLiteral("(%1, %2, %3, %4)")
        .arg(number(rect.x()), number(rect.y()), number(rect.width()), number(rect.height()));
}

QString WindowMoveLog::describe(const QPointF& point) {
    return QStringLiteral("(%1, %2)").arg(number(point.x()), number(point.y()));
}

QString WindowMoveLog::describe(const QSizeF& size) {
    return QStringLiteral("(%1, %2)").arg(number(size.width()), number(size.height()));
}

QString WindowMoveLog::fraction(double value) {
    return QString::asprintf("%.4f", value);
}

QString WindowMoveLog::boolean(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString WindowMoveLog::errorName(Result result) {
    switch (result) {
        case Result::Ok:
            return QStringLiteral("success");
        case Result::Gone:
            return QStringLiteral("invalidUIElement");
        case Result::Unsupported:
            return QStringLiteral("attributeUnsupported");
        case Result::NoValue:
            return QStringLiteral("noValue");
        case Result::CannotComplete:
            return QStringLiteral("cannotComplete");
        case Result::NotPermitted:
            return QStringLiteral("apiDisabled");
        case Result::Failure:
            break;
    }
    return QStringLiteral("failure");
}

void WindowMover::moveDiagLog(const QString& message) {
    const QByteArray line = (QStringLiteral("[WindowMoveDiag] ") + message + QLatin1Char('\n')).toUtf8();
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stdout);
    std::fflush(stdout);
}
