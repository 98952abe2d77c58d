// SPDX-License-Identifier: MIT
#include "app/ui/settings/SettingsSidebarButton.h"

#include <QPainter>

#include "app/ui/settings/SettingsSymbols.h"

namespace {
constexpr int kHeight = 32;
constexpr int kIconSize = 18;
constexpr qreal kRadius = 7.0;
}  // namespace

SettingsSidebarButton::SettingsSidebarButton(SettingsSection section, QWidget* parent)
    : QAbstractButton(parent), m_section(section) {
    setCheckable(true);
    setAutoExclusive(true);
    setText(SettingsSections::title(section));
    setIcon(SettingsSymbols::icon(SettingsSections::symbol(section)));
    setIconSize(QSize(kIconSize, kIconSize));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(text());
}

QSize SettingsSidebarButton::sizeHint() const {
    return {180, kHeight};
}

void SettingsSidebarButton::enterEvent(QEnterEvent* event) {
    m_hovered = true;
    update();
    QAbstractButton::enterEvent(event);
}

void SettingsSidebarButton::leaveEvent(QEvent* event) {
    m_hovered = false;
    update();
    QAbstractButton::leaveEvent(event);
}

void SettingsSidebarButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& colors = palette();
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);

    if (isChecked() || m_hovered || hasFocus()) {
        QColor fill = colors.color(QPalette::Highlight);
        // A tint of the accent colour keeps the ordinary text colour readable on light and dark palettes.
        fill.setAlphaF(isChecked() ? 0.24 : 0.10);
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill);
        painter.drawRoundedRect(frame, kRadius, kRadius);
    }

    const int iconY = (height() - kIconSize) / 2;
    icon().paint(&painter, QRect(10, iconY, kIconSize, kIconSize));

    QFont font = this->font();
    font.setWeight(isChecked() ? QFont::DemiBold : QFont::Normal);
    painter.setFont(font);
    painter.setPen(colors.color(QPalette::Text));
    const QRect textRect(10 + kIconSize + 9, 0, width() - (10 + kIconSize + 9) - 6, height());
    painter.drawText(textRect, Qt::AlignVCenter | Qt::AlignLeft,
                     painter.fontMetrics().elidedText(text(), Qt::ElideRight, textRect.width()));
}
