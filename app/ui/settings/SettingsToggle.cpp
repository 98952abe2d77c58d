// SPDX-License-Identifier: MIT
#include "app/ui/settings/SettingsToggle.h"

#include <QPainter>

namespace {
constexpr int kTrackWidth = 38;
constexpr int kTrackHeight = 22;
constexpr int kKnobMargin = 2;
}  // namespace

SettingsToggle::SettingsToggle(QWidget* parent) : QAbstractButton(parent) {
    setCheckable(true);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize SettingsToggle::sizeHint() const {
    return {kTrackWidth + 4, kTrackHeight + 4};
}

void SettingsToggle::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& colors = palette();
    const QRectF track(2, (height() - kTrackHeight) / 2.0, kTrackWidth, kTrackHeight);

    QColor trackColor = isChecked() ? colors.color(QPalette::Highlight) : colors.color(QPalette::Mid);
    if (!isEnabled()) {
        trackColor.setAlphaF(0.45);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(trackColor);
    painter.drawRoundedRect(track, kTrackHeight / 2.0, kTrackHeight / 2.0);

    const qreal knobSize = kTrackHeight - 2 * kKnobMargin;
    const qreal knobX = isChecked() ? track.right() - kKnobMargin - knobSize : track.left() + kKnobMargin;
    // The knob stays light on both palettes, as switches do.
    painter.setBrush(QColor(0xfa, 0xfa, 0xfa));
    painter.setPen(QPen(QColor(0, 0, 0, 40), 0.5));
    painter.drawEllipse(QRectF(knobX, track.top() + kKnobMargin, knobSize, knobSize));

    if (hasFocus()) {
        QColor ring = colors.color(QPalette::Highlight);
        ring.setAlphaF(0.5);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(ring, 2));
        painter.drawRoundedRect(track.adjusted(-1, -1, 1, 1), kTrackHeight / 2.0 + 1, kTrackHeight / 2.0 + 1);
    }
}
