// SPDX-License-Identifier: MIT
#include "app/ui/panel/PanelGeometry.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kCardWidth = 200;
constexpr double kCardSpacing = 8;
constexpr double kPanelMargins = 24;  // 12 points on each side
constexpr double kMinimumPanelWidth = 460;
constexpr double kBlockedWidth = 460;
constexpr double kBlockedHeight = 235;
constexpr double kEmptyHeight = 300;
constexpr double kMaximumHeight = 460;
constexpr double kPreviewAspect = 0.56;
constexpr double kMinimumCardWidth = 110;
constexpr double kMaximumCardWidth = 240;
// The preview height of the narrowest card, written as the layout arithmetic produces it.
constexpr double kMinimumPreviewHeight = 61.60000000000001;
constexpr double kMaximumPreviewHeight = 134.4;

}  // namespace

double PanelGeometry::popupWidth(bool granted, int displayCount) {
    if (!granted) {
        return kBlockedWidth;
    }
    const int cards = displayCount > 0 ? displayCount : 1;
    const double width = cards * kCardWidth + (cards - 1) * kCardSpacing + kPanelMargins;
    return std::max(width, kMinimumPanelWidth);
}

double PanelGeometry::popupHeight(bool granted, int displayCount) {
    if (!granted) {
        return kBlockedHeight;
    }
    if (displayCount <= 0) {
        return kEmptyHeight;
    }
    const int n = displayCount;
    const double card = (popupWidth(granted, n) - kPanelMargins - (n - 1) * kCardSpacing) / n;
    double preview = kMaximumPreviewHeight;
    if (std::isnan(card) || card < kMinimumCardWidth) {
        preview = kMinimumPreviewHeight;
    } else if (card < kMaximumCardWidth) {
        preview = card * kPreviewAspect;
    }
    const bool single = n < 2;
    const int targets = single ? 0 : n - 1;
    // Card: optional target heading, preview with name, count and spacing, menu.
    double height = (single ? 0 : 32) + (preview + 34 + 14 + 8) + 16;
    // One target button per other display.
    height = (targets + 3) * 8 + (targets * 24 + height);
    // Header and footer, plus the single-display hint.
    height = (single ? 24 : 0) + ((single ? 58 : 0) + (height + 108));
    height = std::max(height, single ? 400.0 : 320.0);
    return std::min(height, kMaximumHeight);
}

double PanelGeometry::cardWidth(double availableWidth, int displayCount) {
    if (displayCount <= 0) {
        return kMinimumCardWidth;
    }
    const double width = (availableWidth - kCardSpacing * (displayCount - 1)) / displayCount;
    if (std::isnan(width)) {
        return kMinimumCardWidth;
    }
    return std::clamp(width, kMinimumCardWidth, kMaximumCardWidth);
}

double PanelGeometry::previewHeight(double cardWidth) {
    return cardWidth * kPreviewAspect;
}

QPoint PanelGeometry::panelOrigin(const QSize& panelSize, const QRect& trayIcon, const QPoint& pointer,
                                  const QRect& screen) {
    const bool hasIcon = trayIcon.isValid() && !trayIcon.isEmpty();
    const QPoint anchor =
        hasIcon ? QPoint(trayIcon.x() + trayIcon.width() / 2, trayIcon.y() + trayIcon.height() / 2) : pointer;
    int x = anchor.x() - panelSize.width() / 2;
    int y = 0;
    const bool lowerHalf = anchor.y() > screen.center().y();
    if (hasIcon) {
        y = lowerHalf ? trayIcon.top() - panelSize.height() : trayIcon.bottom() + 1;
    } else {
        y = lowerHalf ? pointer.y() - panelSize.height() : pointer.y();
    }
    // Inside the screen; a panel larger than the screen keeps its top-left corner visible.
    x = std::max(screen.left(), std::min(x, screen.right() + 1 - panelSize.width()));
    y = std::max(screen.top(), std::min(y, screen.bottom() + 1 - panelSize.height()));
    return {x, y};
}

QRectF PanelGeometry::displaySpaceArea(const QRect& window, const QRect& screen, double ratio,
                                       const QPoint& primaryOrigin) {
    const QPointF topLeft = QPointF(screen.topLeft()) + QPointF(window.topLeft() - screen.topLeft()) * ratio;
    return {topLeft - QPointF(primaryOrigin), QSizeF(window.size()) * ratio};
}
