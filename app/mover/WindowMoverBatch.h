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

}  // namespace WindowMover
