// SPDX-License-Identifier: MIT
#include "app/ui/common/SymbolLabel.h"

#include <QPainter>

#include "app/ui/common/SymbolIcons.h"

SymbolLabel::SymbolLabel(const QString& symbolName, int size, QWidget* parent) : QWidget(parent) {
    setFixedSize(size, size);
    setSymbol(symbolName);
}

void SymbolLabel::setSymbol(const QString& symbolName) {
    if (symbolName == m_symbolName && !m_icon.isNull()) {
        return;
    }
    m_symbolName = symbolName;
    m_icon = SymbolIcons::icon(symbolName);
    update();
}

void SymbolLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    m_icon.paint(&painter, rect(), Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled);
}
