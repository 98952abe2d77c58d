// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>

#include "app/model/Geometry.h"
#include "app/mover/WindowMover.h"

NormalizedRect WindowMover::normalizedRect(const QRectF& frame, const QRectF& container) {
    if (!(container.width() > 0 && container.height() > 0)) {
        return {};
    }
    return {(frame.x() - container.left()) / container.width(), (frame.y() - container.top()) / container.height(),
            frame.width() / container.width(), frame.height() / container.height()};
}

QPointF WindowMover::normalizedCenter(const QRectF& frame, const QRectF& source) {
    if (!(source.width() > 0 && source.height() > 0)) {
        return {0.5, 0.5};
    }
    return {(frame.center().x() - source.left()) / source.width(),
            (frame.center().y() - source.top()) / source.height()};
}

bool WindowMover::isCenterLike(const QPointF& normalizedCenter) {
    return std::fabs(normalizedCenter.x() - 0.5) <= 0.15 && std::fabs(normalizedCenter.y() - 0.5) <= 0.15;
}

QSizeF WindowMover::adjustedSize(const QRectF& frame, const QRectF& source, const QRectF& destination) {
    const NormalizedRect n = normalizedRect(frame, source);
    const double width = std::min(std::max(n.width * destination.width(), 1.0), destination.width());
    const double height = std::min(std::max(n.height * destination.height(), 1.0), destination.height());
    return {width, height};
}

QSizeF WindowMover::wholePixelSize(const QSizeF& size, const QRectF& destination) {
    // A value that is not finite stays so, so that the write that would carry it is refused.
    const auto axis = [](double value, double limit) {
        return std::min(std::max(std::round(value), 1.0), std::max(std::floor(limit), 1.0));
    };
    return {axis(size.width(), destination.width()), axis(size.height(), destination.height())};
}

QPointF WindowMover::destinationOrigin(const QPointF& normalizedCenter, const QSizeF& size, const QRectF& destination) {
    const QPointF desired(destination.left() + normalizedCenter.x() * destination.width() - size.width() * 0.5,
                          destination.top() + normalizedCenter.y() * destination.height() - size.height() * 0.5);
    return clampedOrigin(desired, size, destination);
}

namespace {
// One axis of the clamp: the display's start when the window does not fit, else the desired value kept
// between the display's start and its end minus the window's extent.
double clampAxis(double desired, double extent, double displayStart, double displayExtent) {
    if (displayExtent <= extent) {
        return displayStart;
    }
    return std::min(std::max(desired, displayStart), displayStart + displayExtent - extent);
}
}  // namespace

QPointF WindowMover::clampedOrigin(const QPointF& desired, const QSizeF& size, const QRectF& within) {
    return {clampAxis(desired.x(), size.width(), within.left(), within.width()),
            clampAxis(desired.y(), size.height(), within.top(), within.height())};
}

QRectF WindowMover::convertedWindowListFrame(const QRectF& windowListBounds, const QRectF& source) {
    if (!(source.width() > 0 && source.height() > 0)) {
        return windowListBounds;
    }
    const QRectF& g = windowListBounds;
    const double nx = (g.left() - source.left()) / source.width();
    const double nw = g.width() / source.width();
    const double nh = g.height() / source.height();
    // The distance from the display's top edge becomes the distance from its bottom edge.
    const double ny = 1.0 - (nh + (g.top() - source.top()) / source.height());
    return QRectF(source.left() + nx * source.width(), source.top() + ny * source.height(),
                  std::max(nw * source.width(), 1.0), std::max(nh * source.height(), 1.0));
}

std::optional<DisplaySnapshot> WindowMover::bestSourceDisplay(const QRectF& frame,
                                                              const QList<DisplaySnapshot>& displays) {
    if (displays.isEmpty()) {
        return std::nullopt;
    }
    const QPointF center = frame.center();
    for (const DisplaySnapshot& display : displays) {
        if (Geometry::containsPoint(display.bounds, center)) {
            return display;
        }
    }
    qsizetype best = 0;
    double bestArea = Geometry::intersectionArea(frame, displays[0].bounds);
    for (qsizetype i = 1; i < displays.size(); ++i) {
        const double area = Geometry::intersectionArea(frame, displays[i].bounds);
        if (area > bestArea) {
            best = i;
            bestArea = area;
        }
    }
    return displays[best];
}
