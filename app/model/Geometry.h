// SPDX-License-Identifier: MIT
#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <algorithm>

// Rectangle tests with the window server's semantics. They differ from QRectF's own on purpose:
// containment is half-open (the right and bottom edges belong to the next rectangle), and two
// rectangles intersect only when they share an area, so touching edges and empty rectangles never do.
namespace Geometry {

// minX <= x < maxX and minY <= y < maxY; an empty rectangle contains no point.
inline bool containsPoint(const QRectF& rect, const QPointF& point) {
    const QRectF r = rect.normalized();
    return point.x() >= r.left() && point.x() < r.right() && point.y() >= r.top() && point.y() < r.bottom();
}

// The common part of two rectangles; an empty rectangle when they share no area.
inline QRectF intersection(const QRectF& a, const QRectF& b) {
    const QRectF r1 = a.normalized();
    const QRectF r2 = b.normalized();
    const double left = std::max(r1.left(), r2.left());
    const double right = std::min(r1.right(), r2.right());
    const double top = std::max(r1.top(), r2.top());
    const double bottom = std::min(r1.bottom(), r2.bottom());
    if (!(right > left) || !(bottom > top)) {
        return QRectF();
    }
    return QRectF(QPointF(left, top), QPointF(right, bottom));
}

// True when the two rectangles share a non-empty area.
inline bool intersects(const QRectF& a, const QRectF& b) {
    return !intersection(a, b).isEmpty();
}

// Width times height of the common part; 0 when they share no area.
inline double intersectionArea(const QRectF& a, const QRectF& b) {
    const QRectF common = intersection(a, b);
    return common.isEmpty() ? 0.0 : common.width() * common.height();
}

}  // namespace Geometry
