// SPDX-License-Identifier: MIT
#include "app/ui/common/SymbolIcons.h"

#include "app/ui/common/GridIconEngine.h"

#include <QGuiApplication>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QRegularExpression>
#include <cmath>

namespace {

// Draws one named symbol; on an accent surface, outlines take the highlighted-text colour.
class SymbolIconEngine : public GridIconEngine {
public:
    explicit SymbolIconEngine(QString name, bool onAccent = false)
        : GridIconEngine(std::move(name)), m_onAccent(onAccent) {}

    QIconEngine* clone() const override { return new SymbolIconEngine(name(), m_onAccent); }
    QString key() const override { return QStringLiteral("LatticaSymbol"); }

protected:
    void draw(QPainter& painter, const QPalette& palette, QPalette::ColorGroup group) const override;

private:
    bool m_onAccent = false;
};

constexpr qreal kStrokeWidth = 2.0;

void drawNumberedCircle(QPainter& painter, const QString& text, const QPalette& palette, QPalette::ColorGroup group) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette.color(group, QPalette::Highlight));
    painter.drawEllipse(QRectF(1, 1, 22, 22));
    QFont font = QGuiApplication::font();
    font.setBold(true);
    // Two and more digits need a smaller size to stay inside the circle.
    font.setPixelSize(text.size() >= 3 ? 9 : text.size() == 2 ? 12 : 15);
    painter.setFont(font);
    painter.setPen(palette.color(group, QPalette::HighlightedText));
    painter.drawText(QRectF(1, 1, 22, 22), Qt::AlignCenter, text);
}

void drawDisplay(QPainter& painter, const QColor& color) {
    painter.setPen(gridStroke(color, kStrokeWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(2.5, 3.5, 19, 13), 2, 2);
    painter.drawLine(QPointF(12, 16.5), QPointF(12, 20));
    painter.drawLine(QPointF(8, 20.5), QPointF(16, 20.5));
}

void drawGear(QPainter& painter, const QColor& color) {
    QPainterPath gear;
    const int teeth = 8;
    for (int i = 0; i < teeth * 2; ++i) {
        const qreal angle = M_PI * i / teeth;
        const qreal next = M_PI * (i + 1) / teeth;
        const qreal radius = i % 2 == 0 ? 10.5 : 8.0;
        const QPointF a(12 + radius * std::cos(angle), 12 + radius * std::sin(angle));
        const QPointF b(12 + radius * std::cos(next), 12 + radius * std::sin(next));
        if (i == 0) {
            gear.moveTo(a);
        } else {
            gear.lineTo(a);
        }
        gear.lineTo(b);
    }
    gear.closeSubpath();
    gear.addEllipse(QPointF(12, 12), 3.5, 3.5);
    gear.setFillRule(Qt::OddEvenFill);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPath(gear);
}

void drawPower(QPainter& painter, const QColor& color) {
    painter.setPen(gridStroke(color, 2.2));
    painter.setBrush(Qt::NoBrush);
    painter.drawArc(QRectF(4, 4.5, 16, 16), 125 * 16, -250 * 16);
    painter.drawLine(QPointF(12, 2.5), QPointF(12, 11));
}

void drawHand(QPainter& painter, const QColor& color, bool filled) {
    QPainterPath hand;
    // Four fingers, a thumb and the palm.
    for (const qreal x : {7.0, 10.5, 14.0, 17.5}) {
        const qreal top = x == 7.0 || x == 17.5 ? 6.0 : 3.5;
        hand.addRoundedRect(QRectF(x - 1.5, top, 3, 12 - top + 2), 1.5, 1.5);
    }
    hand.addRoundedRect(QRectF(5.5, 11, 13.5, 10.5), 4, 4);
    QPainterPath thumb;
    thumb.moveTo(6, 15);
    thumb.lineTo(3, 11.5);
    thumb.lineTo(4.5, 10.5);
    thumb.lineTo(7.5, 13);
    hand.addPath(thumb);
    hand = hand.simplified();
    painter.setPen(filled ? Qt::NoPen : gridStroke(color, 1.4));
    painter.setBrush(filled ? QBrush(color) : Qt::NoBrush);
    painter.drawPath(hand);
}

void drawLockShield(QPainter& painter, const QColor& color, const QColor& cutout) {
    QPainterPath shield;
    shield.moveTo(12, 1.5);
    shield.lineTo(20.5, 4.5);
    shield.lineTo(20.5, 11);
    shield.cubicTo(20.5, 16.5, 16.5, 20.5, 12, 22.5);
    shield.cubicTo(7.5, 20.5, 3.5, 16.5, 3.5, 11);
    shield.lineTo(3.5, 4.5);
    shield.closeSubpath();
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPath(shield);
    painter.setBrush(cutout);
    painter.drawRoundedRect(QRectF(8.5, 10.5, 7, 6), 1, 1);
    painter.setPen(gridStroke(cutout, 1.6));
    painter.setBrush(Qt::NoBrush);
    painter.drawArc(QRectF(9.7, 6.5, 4.6, 7), 0, 180 * 16);
}

void drawInfo(QPainter& painter, const QColor& color) {
    painter.setPen(gridStroke(color, 1.8));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(QRectF(2.5, 2.5, 19, 19));
    painter.drawLine(QPointF(12, 11), QPointF(12, 17));
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(QPointF(12, 7.5), 1.3, 1.3);
}

void drawArrowClockwise(QPainter& painter, const QColor& color) {
    painter.setPen(gridStroke(color, 2.0));
    painter.setBrush(Qt::NoBrush);
    painter.drawArc(QRectF(4, 4, 16, 16), 80 * 16, -300 * 16);
    QPainterPath head;
    head.moveTo(13.2, 1.2);
    head.lineTo(17.2, 4.4);
    head.lineTo(12.6, 6.8);
    head.closeSubpath();
    painter.setPen(gridStroke(color, 1.2));
    painter.setBrush(color);
    painter.drawPath(head);
}

void drawCheckmarkCircle(QPainter& painter, const QColor& fill, const QColor& mark) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawEllipse(QRectF(1.5, 1.5, 21, 21));
    painter.setPen(gridStroke(mark, 2.4));
    painter.setBrush(Qt::NoBrush);
    QPainterPath check;
    check.moveTo(7, 12.5);
    check.lineTo(10.5, 16);
    check.lineTo(17, 8.5);
    painter.drawPath(check);
}

void drawWarningTriangle(QPainter& painter, const QColor& color) {
    QPainterPath triangle;
    triangle.moveTo(12, 2.5);
    triangle.lineTo(22, 20.5);
    triangle.lineTo(2, 20.5);
    triangle.closeSubpath();
    painter.setPen(gridStroke(color, 1.8));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(triangle);
    painter.drawLine(QPointF(12, 9), QPointF(12, 14));
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(QPointF(12, 17.2), 1.2, 1.2);
}

void drawListRectangle(QPainter& painter, const QColor& color) {
    painter.setPen(gridStroke(color, 1.6));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(2, 3.5, 20, 17), 2.5, 2.5);
    for (const qreal y : {8.5, 12.0, 15.5}) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawEllipse(QPointF(6.5, y), 1.1, 1.1);
        painter.setPen(gridStroke(color, 1.6));
        painter.drawLine(QPointF(9.5, y), QPointF(18, y));
    }
}

void drawAppTile(QPainter& painter, const QColor& color) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(QRectF(3, 3, 18, 18), 4.5, 4.5);
}

// The program's own symbol: two overlapping display outlines in a fixed blue that reads on light and
// dark tray backgrounds alike.
void drawProgramSymbol(QPainter& painter) {
    const QColor blue(0x3d, 0x8b, 0xfd);
    painter.setPen(gridStroke(blue, 2.0));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(2, 2, 13.5, 10.5), 1.5, 1.5);
    painter.setBrush(blue);
    painter.drawRoundedRect(QRectF(8.5, 10, 13.5, 10.5), 1.5, 1.5);
}

void drawUnknown(QPainter& painter, const QColor& color, const QString& name) {
    painter.setPen(gridStroke(color, 1.6));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(QRectF(2.5, 2.5, 19, 19));
    QFont font = QGuiApplication::font();
    font.setPixelSize(12);
    painter.setFont(font);
    painter.drawText(QRectF(2.5, 2.5, 19, 19), Qt::AlignCenter, name.left(1).toUpper());
}

void SymbolIconEngine::draw(QPainter& painter, const QPalette& palette, QPalette::ColorGroup group) const {
    const QColor text = palette.color(group, m_onAccent ? QPalette::HighlightedText : QPalette::WindowText);
    if (const std::optional<int> number = SymbolIcons::circledNumber(name())) {
        drawNumberedCircle(painter, QString::number(*number), palette, group);
    } else if (name() == QLatin1String("number.circle.fill")) {
        drawNumberedCircle(painter, QStringLiteral("#"), palette, group);
    } else if (name() == QLatin1String("display")) {
        drawDisplay(painter, text);
    } else if (name() == QLatin1String("gearshape")) {
        drawGear(painter, text);
    } else if (name() == QLatin1String("power")) {
        drawPower(painter, text);
    } else if (name() == QLatin1String("hand.raised")) {
        drawHand(painter, text, false);
    } else if (name() == QLatin1String("hand.raised.fill")) {
        drawHand(painter, text, true);
    } else if (name() == QLatin1String("lock.shield.fill")) {
        drawLockShield(painter, palette.color(group, QPalette::Highlight), palette.color(group, QPalette::Window));
    } else if (name() == QLatin1String("info.circle")) {
        drawInfo(painter, text);
    } else if (name() == QLatin1String("arrow.clockwise")) {
        drawArrowClockwise(painter, text);
    } else if (name() == QLatin1String("checkmark.circle.fill")) {
        const QColor green =
            group == QPalette::Disabled ? palette.color(group, QPalette::WindowText) : QColor(0x2e, 0xa0, 0x43);
        drawCheckmarkCircle(painter, green, Qt::white);
    } else if (name() == QLatin1String("exclamationmark.triangle")) {
        drawWarningTriangle(painter, text);
    } else if (name() == QLatin1String("list.bullet.rectangle")) {
        drawListRectangle(painter, text);
    } else if (name() == QLatin1String("app.fill")) {
        drawAppTile(painter, palette.color(group, QPalette::Mid));
    } else if (name() == QLatin1String("rectangle.on.rectangle.angled")) {
        drawProgramSymbol(painter);
    } else {
        drawUnknown(painter, text, name());
    }
}

}  // namespace

std::optional<int> SymbolIcons::circledNumber(const QString& symbolName) {
    static const QRegularExpression pattern(QStringLiteral("^([0-9]+)\\.circle\\.fill$"));
    const QRegularExpressionMatch match = pattern.match(symbolName);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    bool ok = false;
    const int number = match.captured(1).toInt(&ok);
    return ok ? std::optional<int>(number) : std::nullopt;
}

QString SymbolIcons::themeIconName(const QString& symbolName) {
    static const QHash<QString, QString> names = {
        {QStringLiteral("display"), QStringLiteral("video-display")},
        {QStringLiteral("gearshape"), QStringLiteral("preferences-system")},
        {QStringLiteral("power"), QStringLiteral("system-shutdown")},
        {QStringLiteral("lock.shield.fill"), QStringLiteral("security-high")},
        {QStringLiteral("info.circle"), QStringLiteral("dialog-information")},
        {QStringLiteral("arrow.clockwise"), QStringLiteral("view-refresh")},
        {QStringLiteral("exclamationmark.triangle"), QStringLiteral("dialog-warning")},
        {QStringLiteral("list.bullet.rectangle"), QStringLiteral("view-list-details")},
        {QStringLiteral("app.fill"), QStringLiteral("application-x-executable")},
    };
    return names.value(symbolName);
}

QIcon SymbolIcons::drawnIcon(const QString& symbolName) {
    return QIcon(new SymbolIconEngine(symbolName));
}

QIcon SymbolIcons::iconOnAccent(const QString& symbolName) {
    return QIcon(new SymbolIconEngine(symbolName, true));
}

QIcon SymbolIcons::icon(const QString& symbolName) {
    const QString themeName = themeIconName(symbolName);
    if (!themeName.isEmpty() && QIcon::hasThemeIcon(themeName)) {
        return QIcon::fromTheme(themeName);
    }
    return drawnIcon(symbolName);
}
