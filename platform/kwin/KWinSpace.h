// SPDX-License-Identifier: MIT
#pragma once

#include <QPointF>
#include <QRectF>

#include "platform/kwin/KWinState.h"

// KWin's global logical coordinates and Lattica's global display space, whose origin is the top-left
// corner of the primary screen (KWin's first).
namespace KWinSpace {

QPointF origin(const KWinState& state);
QRectF toDisplaySpace(const KWinState& state, const QRectF& kwinRect);
QPointF toKWin(const KWinState& state, const QPointF& displayPoint);

// Where the window stands in front of others: 0 for ordinary windows, higher for docks, pop-ups and
// keep-above windows, very low for the desktop background (as on X11).
int layer(const KWinWindow& window);

}  // namespace KWinSpace
