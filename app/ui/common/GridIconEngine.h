// SPDX-License-Identifier: MIT
#pragma once

#include <QIconEngine>
#include <QPalette>
#include <QPen>
#include <QString>

// An icon drawn in a 24 x 24 design grid and painted at whatever size is asked for, in the colours
// of the application palette at the time of painting, so it stays crisp and follows light and dark
// palettes. Subclasses draw one named symbol.
class GridIconEngine : public QIconEngine {
public:
    explicit GridIconEngine(QString name) : m_name(std::move(name)) {}

    QString iconName() override { return m_name; }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal scale) override;
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override;

protected:
    const QString& name() const { return m_name; }
    // Draws the symbol in grid coordinates (0..24 on both axes).
    virtual void draw(QPainter& painter, const QPalette& palette, QPalette::ColorGroup group) const = 0;

private:
    QString m_name;
};

// The pen every drawn symbol uses for its lines: round caps and joins.
inline QPen gridStroke(const QColor& color, qreal width) {
    return QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}
