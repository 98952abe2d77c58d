// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

class QLabel;
class QWidget;

// Text styles and colours shared by the views, derived from the application font and palette so
// that light and dark palettes both read well.
namespace ViewStyle {

QFont titleFont();
QFont headlineFont();
QFont subheadlineFont();
QFont captionFont();
QFont bodyFont();

// The palette role of secondary text; it follows palette changes by itself.
inline constexpr auto kSecondaryTextRole = QPalette::PlaceholderText;
// Colours of a granted, a limited and a missing capability.
QColor grantedColor();
QColor limitedColor();
QColor missingColor();

// A label in the given font, optionally in the secondary colour, with its text wrapped when asked.
QLabel* makeLabel(const QString& text, const QFont& font, QWidget* parent, bool secondary = false, bool wrap = false);

}  // namespace ViewStyle
