// SPDX-License-Identifier: MIT
#include "app/ui/common/ViewStyle.h"

#include <QApplication>
#include <QLabel>
#include <QPalette>

namespace {

QFont scaledFont(qreal factor, QFont::Weight weight) {
    QFont font = QApplication::font();
    const qreal base = font.pointSizeF() > 0 ? font.pointSizeF() : 10.0;
    font.setPointSizeF(base * factor);
    font.setWeight(weight);
    return font;
}

}  // namespace

QFont ViewStyle::titleFont() {
    return scaledFont(1.45, QFont::DemiBold);
}

QFont ViewStyle::headlineFont() {
    return scaledFont(1.05, QFont::DemiBold);
}

QFont ViewStyle::subheadlineFont() {
    return scaledFont(0.95, QFont::Normal);
}

QFont ViewStyle::captionFont() {
    return scaledFont(0.85, QFont::Normal);
}

QFont ViewStyle::bodyFont() {
    return scaledFont(1.0, QFont::Normal);
}

QColor ViewStyle::grantedColor() {
    return QColor(0x2e, 0xa0, 0x43);
}

QColor ViewStyle::limitedColor() {
    return QColor(0x9a, 0x7d, 0x0a);
}

QColor ViewStyle::missingColor() {
    return QColor(0xe0, 0x7b, 0x00);
}

QLabel* ViewStyle::makeLabel(const QString& text, const QFont& font, QWidget* parent, bool secondary, bool wrap) {
    auto* label = new QLabel(text, parent);
    label->setFont(font);
    label->setWordWrap(wrap);
    label->setTextFormat(Qt::PlainText);
    if (secondary) {
        label->setForegroundRole(kSecondaryTextRole);
    }
    return label;
}
