// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinSpace.h"

#include <limits>

QPointF KWinSpace::origin(const KWinState& state) {
    return state.screens.isEmpty() ? QPointF() : state.screens.constFirst().geometry.topLeft();
}

QRectF KWinSpace::toDisplaySpace(const KWinState& state, const QRectF& kwinRect) {
    return kwinRect.translated(-origin(state));
}

QPointF KWinSpace::toKWin(const KWinState& state, const QPointF& displayPoint) {
    return displayPoint + origin(state);
}

int KWinSpace::layer(const KWinWindow& window) {
    // The same numbers as the X11 backend's layers.
    constexpr int kNormal = 0;
    constexpr int kFloating = 3;
    constexpr int kDock = 20;
    constexpr int kPopUp = 101;
    constexpr int kDesktop = std::numeric_limits<int>::min() + 25;
    if (window.desktopWindow) {
        return kDesktop;
    }
    if (window.dock) {
        return kDock;
    }
    if (window.popup) {
        return kPopUp;
    }
    return window.keepAbove ? kFloating : kNormal;
}
