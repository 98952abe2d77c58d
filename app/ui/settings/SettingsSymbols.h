// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QString>

// Icons for the symbols of the settings window that the shared symbol set does not draw
// ("slider.horizontal.3", "keyboard", "arrow.triangle.2.circlepath", "ladybug", "envelope", "link",
// "trash"). They are painted at the size asked for in the application palette's text colour at the time
// of painting, so they follow light and dark palettes. Any other name goes to the shared set.
namespace SettingsSymbols {

QIcon icon(const QString& symbolName);
// Whether the name is one drawn here.
bool drawsSymbol(const QString& symbolName);

}  // namespace SettingsSymbols
