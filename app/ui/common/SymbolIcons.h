// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QString>
#include <optional>

// Icons for the symbol names the views use ("2.circle.fill", "display", "gearshape", ...).
// Numbered circles are drawn here; other names come from the desktop's icon theme when it has a
// matching icon and are drawn here otherwise. Drawn icons are painted at the size asked for, in the
// colours of the application palette at the time of painting, so they stay crisp and follow light and
// dark palettes.
namespace SymbolIcons {

QIcon icon(const QString& symbolName);
// The same icon, never taken from the theme (for places that need the drawn look).
QIcon drawnIcon(const QString& symbolName);
// A drawn icon for a surface in the accent colour: outlines in the palette's highlighted-text colour.
QIcon iconOnAccent(const QString& symbolName);
// The number N of a "N.circle.fill" name, nothing for any other name.
std::optional<int> circledNumber(const QString& symbolName);
// The freedesktop icon name tried first for a symbol; empty when the symbol is always drawn.
QString themeIconName(const QString& symbolName);

}  // namespace SymbolIcons
