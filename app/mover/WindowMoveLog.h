// SPDX-License-Identifier: MIT
#pragma once

#include <QLoggingCategory>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <optional>

#include "platform/WindowControl.h"

// The debug trace of the window mover. Its debug level is on in Debug builds and off otherwise, so
// release builds compose and print nothing unless QT_LOGGING_RULES="lattica.mover.debug=true" asks.
Q_DECLARE_LOGGING_CATEGORY(lcMover)

// Text forms used in the mover's diagnostic and trace lines.
//
// Numbers are written like the platform's debug description of its graphics types: the shortest text
// that reads back as the same double, with ".0" on whole numbers (1920 -> "1920.0", 0.25 -> "0.25").
// A rectangle is "(x, y, width, height)", a point "(x, y)", a size "(width, height)".
namespace WindowMoveLog {

QString number(double value);
QString describe(const QRectF& rect);
QString describe(const QPointF& point);
QString describe(const QSizeF& size);
// A fraction with four decimals ("%.4f").
QString fraction(double value);
QString boolean(bool value);
// The error name a log line gives a result: "success", "invalidUIElement", "attributeUnsupported",
// "noValue", "cannotComplete", "apiDisabled" or "failure", as readers of these logs know them.
QString errorName(Result result);

}  // namespace WindowMoveLog
