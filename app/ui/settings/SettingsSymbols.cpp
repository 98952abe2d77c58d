// SPDX-License-Identifier: MIT
#include "app/ui/settings/SettingsSymbols.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QStringList>
#include <algorithm>

#include "app/ui/common/GridIconEngine.h"
#include "app/ui/common/SymbolIcons.h"

namespace {

// Settings symbols are drawn with slightly finer lines than the panel's.
constexpr qreal kStrokeWidth = 1.7;

// Three rails with their knobs at different places.
void drawSliders(QPainter& painter, const QColor& color, const QColor& knobFill) {
    const qreal rows[] = {6.0, 12.0, 18.0};
    const qreal knobs[] = {15.0, 8.0, 13.0};
    for (int i = 0; i < 3; ++i) {
        painter.setPen(gridStroke(color, kStrokeWidth));
        painter.drawLine(QPointF(3, rows[i]), QPointF(21, rows[i]));
        painter.setBrush(knobFill);
        painter.drawEllipse(QPointF(knobs[i], rows[i]), 2.4, 2.4);
    }
}

void drawKeyboard(QPainter& painter, const QColor& color) {
    painter.setPen(gridStroke(color, kStrokeWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(2, 6, 20, 13), 2.5, 2.5);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    for (int column = 0; column < 6; ++column) {
        painter.drawRoundedRect(QRectF(4.6 + column * 2.6, 8.6, 1.7, 1.7), 0.4, 0.4);
        painter.drawRoundedRect(QRectF(4.6 + column * 2.6, 11.4, 1.7, 1.7), 0.4, 0.4);
    }
    painter.drawRoundedRect(QRectF(7.5, 14.6, 9, 1.8), 0.6, 0.6);
}

// Two arcs chasing each other, each ending in an arrowhead.
void drawCirclePath(QPainter& painter, const QColor& color) {
    painter.setPen(gridStroke(color, kStrokeWidth));
    painter.setBrush(Qt::NoBrush);
    const QRectF circle(4.5, 4.5, 15, 15);
    painter.drawArc(circle, 30 * 16, 140 * 16);
    painter.drawArc(circle, 210 * 16, 140 * 16);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    // Heads at the end of each arc (at 170 and 350 degrees), pointing along the turn.
    QPainterPath head;
    head.moveTo(0, -3.2);
    head.lineTo(3.0, 0.6);
    head.lineTo(-3.0, 0.6);
    head.closeSubpath();
    for (const qreal angle : {170.0, 350.0}) {
        painter.save();
        QTransform placement;
        placement.translate(12, 12);
        placement.rotate(-angle);
        placement.translate(7.5, 0);
        placement.rotate(180);
        painter.setTransform(placement, true);
        painter.drawPath(head);
        painter.restore();
    }
}

void drawLadybug(QPainter& painter, const QColor& color) {
    painter.setPen(gridStroke(color, kStrokeWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(QRectF(5, 7, 14, 15));
    painter.drawChord(QRectF(8, 3, 8, 7), 0, 180 * 16);
    painter.drawLine(QPointF(12, 8), QPointF(12, 21.5));
    painter.drawLine(QPointF(10, 4.5), QPointF(8.5, 2));
    painter.drawLine(QPointF(14, 4.5), QPointF(15.5, 2));
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    for (const QPointF& dot : {QPointF(8.8, 12), QPointF(15.2, 12), QPointF(8.6, 17), QPointF(15.4, 17)}) {
        painter.drawEllipse(dot, 1.2, 1.2);
    }
}

void drawEnvelope(QPainter& painter, const QColor& color) {
    painter.setPen(gridStroke(color, kStrokeWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(2.5, 5.5, 19, 13), 2, 2);
    QPainterPath flap;
    flap.moveTo(3.5, 7);
    flap.lineTo(12, 13);
    flap.lineTo(20.5, 7);
    painter.drawPath(flap);
}

// Two chain links at forty-five degrees.
void drawLink(QPainter& painter, const QColor& color) {
    painter.setPen(gridStroke(color, 1.9));
    painter.setBrush(Qt::NoBrush);
    painter.save();
    painter.translate(12, 12);
    painter.rotate(-45);
    painter.drawRoundedRect(QRectF(-10, -3.2, 11, 6.4), 3.2, 3.2);
    painter.drawRoundedRect(QRectF(-1, -3.2, 11, 6.4), 3.2, 3.2);
    painter.restore();
}

void drawTrash(QPainter& painter, const QColor& color) {
    painter.setPen(gridStroke(color, kStrokeWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawLine(QPointF(4, 6.5), QPointF(20, 6.5));
    painter.drawLine(QPointF(9.5, 6.5), QPointF(10, 3.8));
    painter.drawLine(QPointF(10, 3.8), QPointF(14, 3.8));
    painter.drawLine(QPointF(14, 3.8), QPointF(14.5, 6.5));
    QPainterPath can;
    can.moveTo(6, 6.5);
    can.lineTo(7.2, 20.5);
    can.lineTo(16.8, 20.5);
    can.lineTo(18, 6.5);
    painter.drawPath(can);
    painter.drawLine(QPointF(10, 10), QPointF(10.3, 17.5));
    painter.drawLine(QPointF(14, 10), QPointF(13.7, 17.5));
}

// Paints one settings symbol in a 24 x 24 design grid scaled to the rectangle asked for.
class SettingsSymbolEngine : public GridIconEngine {
public:
    using GridIconEngine::GridIconEngine;

    QIconEngine* clone() const override { return new SettingsSymbolEngine(name()); }
    QString key() const override { return QStringLiteral("LatticaSettingsSymbol"); }

protected:
    void draw(QPainter& painter, const QPalette& palette, QPalette::ColorGroup group) const override {
        const QColor color = palette.color(group, QPalette::WindowText);
        const QString& symbol = name();
        if (symbol == u"slider.horizontal.3") {
            drawSliders(painter, color, palette.color(group, QPalette::Base));
        } else if (symbol == u"keyboard") {
            drawKeyboard(painter, color);
        } else if (symbol == u"arrow.triangle.2.circlepath") {
            drawCirclePath(painter, color);
        } else if (symbol == u"ladybug") {
            drawLadybug(painter, color);
        } else if (symbol == u"envelope") {
            drawEnvelope(painter, color);
        } else if (symbol == u"link") {
            drawLink(painter, color);
        } else if (symbol == u"trash") {
            drawTrash(painter, color);
        }
    }
};

}  // namespace

bool SettingsSymbols::drawsSymbol(const QString& symbolName) {
    static const QStringList names = {QStringLiteral("slider.horizontal.3"),
                                      QStringLiteral("keyboard"),
                                      QStringLiteral("arrow.triangle.2.circlepath"),
                                      QStringLiteral("ladybug"),
                                      QStringLiteral("envelope"),
                                      QStringLiteral("link"),
                                      QStringLiteral("trash")};
    return names.contains(symbolName);
}

QIcon SettingsSymbols::icon(const QString& symbolName) {
    if (drawsSymbol(symbolName)) {
        return QIcon(new SettingsSymbolEngine(symbolName));
    }
    return SymbolIcons::icon(symbolName);
}
