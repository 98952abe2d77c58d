// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QRectF>
#include <optional>

#include "platform/WindowPlacer.h"

// The mover's batched changes and reads, shared by its move-all and focused-window moves.
namespace WindowMover {

// Places many windows: in one batch when the window control can, else one after another (the move, then
// the resize). A placement whose point or size is not finite is not sent: its results are Failure.
QList<PlacementResult> place(const QList<WindowPlacement>& placements);
// The frames of many windows in one batch read; nothing for a window whose frame does not read.
QList<std::optional<QRectF>> frames(const QList<WindowId>& windows);
// The frames of placed windows, one per window in the order of their placements: a frame the window
// control told with its result is not read again; the others are read in one batch.
QList<std::optional<QRectF>> framesAfter(const QList<WindowId>& windows, const QList<PlacementResult>& results);

}  // namespace WindowMover
