// SPDX-License-Identifier: MIT
#include "app/ui/settings/SettingsCard.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include "app/ui/common/ViewStyle.h"

namespace {
constexpr qreal kRadius = 10.0;

QWidget* makeSeparator(QWidget* parent) {
    auto* line = new QFrame(parent);
    line->setFrameShape(QFrame::NoFrame);
    line->setFixedHeight(1);
    line->setAutoFillBackground(true);
    line->setBackgroundRole(QPalette::Midlight);
    line->setObjectName(QStringLiteral("separator"));
    return line;
}
}  // namespace

SettingsCard::SettingsCard(const QString& heading, QWidget* parent) : QFrame(parent) {
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(14, 10, 14, 10);
    outer->setSpacing(6);
    if (!heading.isEmpty()) {
        QLabel* title = ViewStyle::makeLabel(heading, ViewStyle::headlineFont(), this);
        title->setObjectName(QStringLiteral("cardHeading"));
        outer->addWidget(title);
    }
    m_rows = new QVBoxLayout();
    m_rows->setContentsMargins(0, 0, 0, 0);
    m_rows->setSpacing(8);
    outer->addLayout(m_rows);
}

void SettingsCard::addRow(QWidget* row) {
    if (m_rowCount > 0) {
        m_rows->addWidget(makeSeparator(this));
    }
    row->setParent(this);
    m_rows->addWidget(row);
    ++m_rowCount;
}

QHBoxLayout* SettingsCard::addRowLayout() {
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 2, 0, 2);
    layout->setSpacing(8);
    addRow(row);
    return layout;
}

void SettingsCard::clearRows() {
    while (QLayoutItem* item = m_rows->takeAt(0)) {
        if (QWidget* widget = item->widget()) {
            widget->hide();
            // Later, because the row being removed may be the one whose button is being clicked.
            widget->deleteLater();
        }
        delete item;
    }
    m_rowCount = 0;
}

void SettingsCard::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor border = palette().color(QPalette::Mid);
    border.setAlphaF(0.45);
    painter.setPen(QPen(border, 1));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
}
