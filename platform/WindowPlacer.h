// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <optional>

#include "platform/WindowControl.h"

// Where one window of a batch goes: its outer frame's top-left corner and, when set, its new size.
struct WindowPlacement {
    WindowId window = 0;
    QPointF topLeft;
    std::optional<QSizeF> size;
};

// How one placement went: the move, and the resize when a size was asked for; and, when the window
// control learned it while confirming the change, the window's frame after it (what a read would give),
// so that the caller need not read it again.
struct PlacementResult {
    Result position = Result::Failure;
    std::optional<Result> size;
    std::optional<QRectF> frame;

    bool operator==(const PlacementResult&) const = default;
};

// Implemented besides WindowControl by a window control whose every change is a round trip to the
// window manager: it moves (and resizes) many windows in one. Where the installed window control does not
// implement it, windows are placed one after another.
class WindowPlacer {
public:
    WindowPlacer() = default;
    virtual ~WindowPlacer() = default;
    WindowPlacer(const WindowPlacer&) = delete;
    WindowPlacer& operator=(const WindowPlacer&) = delete;

    // Returns once every placement is applied or a short time limit has passed, so a read right after
    // sees them; one result per placement, in the order asked.
    virtual QList<PlacementResult> place(const QList<WindowPlacement>& placements) = 0;
};
