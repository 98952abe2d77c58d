// SPDX-License-Identifier: MIT
#include "app/ui/common/GridIconEngine.h"

#include <QGuiApplication>
#include <QPainter>
#include <algorithm>

QPixmap GridIconEngine::pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) {
    return scaledPixmap(size, mode, state, 1.0);
}

QPixmap GridIconEngine::scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal scale) {
    QPixmap pixmap(size * scale);
    pixmap.setDevicePixelRatio(scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(0, 0), size), mode, state);
    return pixmap;
}

void GridIconEngine::paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) {
    const QPalette palette = QGuiApplication::palette();
    const QPalette::ColorGroup group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
    const qreal side = std::min(rect.width(), rect.height());
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::TextAntialiasing);
    painter->translate(rect.x() + (rect.width() - side) / 2.0, rect.y() + (rect.height() - side) / 2.0);
    painter->scale(side / 24.0, side / 24.0);
    draw(*painter, palette, group);
    painter->restore();
}
