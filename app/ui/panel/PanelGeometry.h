// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QRect>
#include <QRectF>
#include <QSize>

// Sizes and placement of the tray panel. Pure functions of their arguments.
namespace PanelGeometry {

// Width of the panel: granted is whether both permissions are held, displayCount the cards shown.
double popupWidth(bool granted, int displayCount);
// Height of the panel for the same inputs.
double popupHeight(bool granted, int displayCount);

// Width of one card when displayCount cards share availableWidth, 8 points apart, kept within 110...240.
double cardWidth(double availableWidth, int displayCount);
// Height of a card's preview for a card of the given width.
double previewHeight(double cardWidth);

// Top-left corner of a panel of panelSize opened from a tray icon at trayIcon (or, when trayIcon is
// empty, at the pointer), kept inside screen. The panel drops below an icon in the upper half of the
// screen and rises above one in the lower half.
QPoint panelOrigin(const QSize& panelSize, const QRect& trayIcon, const QPoint& pointer, const QRect& screen);

// Where a window of the toolkit lies in the display space the monitors are described in: its own pixels,
// with the primary monitor's top-left corner as origin. window and screen are in the toolkit's
// coordinates; a screen keeps its top-left corner there and scales what lies inside it by ratio.
QRectF displaySpaceArea(const QRect& window, const QRect& screen, double ratio, const QPoint& primaryOrigin);

}  // namespace PanelGeometry
