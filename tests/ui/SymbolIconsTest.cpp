// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPalette>

#include "app/ui/common/SymbolIcons.h"

namespace {

int opaquePixels(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += qAlpha(image.pixel(x, y)) > 0 ? 1 : 0;
        }
    }
    return count;
}

TEST(SymbolIcons, ReadsTheNumberOfANumberedCircle) {
    EXPECT_EQ(SymbolIcons::circledNumber(QStringLiteral("2.circle.fill")), 2);
    EXPECT_EQ(SymbolIcons::circledNumber(QStringLiteral("50.circle.fill")), 50);
    EXPECT_EQ(SymbolIcons::circledNumber(QStringLiteral("number.circle.fill")), std::nullopt);
    EXPECT_EQ(SymbolIcons::circledNumber(QStringLiteral("2.circle")), std::nullopt);
    EXPECT_EQ(SymbolIcons::circledNumber(QStringLiteral("x2.circle.fill")), std::nullopt);
}

TEST(SymbolIcons, NumberedCircleIsDrawnInTheAccentColourAtAnySize) {
    const QColor accent = QApplication::palette().color(QPalette::Active, QPalette::Highlight);
    for (const int size : {16, 18, 64}) {
        const QImage image = SymbolIcons::icon(QStringLiteral("7.circle.fill")).pixmap(size, size).toImage();
        ASSERT_EQ(image.size(), QSize(size, size));
        // Left of the digit, inside the circle.
        const QColor inside = image.pixelColor(size / 5, size / 2);
        EXPECT_EQ(inside.rgb(), accent.rgb()) << size;
        EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0) << "corners stay transparent";
    }
}

TEST(SymbolIcons, EverySymbolTheViewsUseDrawsSomething) {
    for (const char* name :
         {"display", "gearshape", "power", "hand.raised", "hand.raised.fill", "lock.shield.fill", "info.circle",
          "arrow.clockwise", "checkmark.circle.fill", "exclamationmark.triangle", "list.bullet.rectangle", "app.fill",
          "number.circle.fill", "1.circle.fill", "rectangle.on.rectangle.angled"}) {
        const QImage image = SymbolIcons::drawnIcon(QString::fromLatin1(name)).pixmap(24, 24).toImage();
        EXPECT_GT(opaquePixels(image), 20) << name;
    }
}

TEST(SymbolIcons, UnknownNamesStillGiveAnIcon) {
    const QImage image = SymbolIcons::icon(QStringLiteral("no.such.symbol")).pixmap(24, 24).toImage();
    EXPECT_GT(opaquePixels(image), 10);
}

TEST(SymbolIcons, OnlySymbolsWithAnEquivalentAreLookedUpInTheTheme) {
    EXPECT_EQ(SymbolIcons::themeIconName(QStringLiteral("gearshape")), QStringLiteral("preferences-system"));
    EXPECT_TRUE(SymbolIcons::themeIconName(QStringLiteral("3.circle.fill")).isEmpty());
    EXPECT_TRUE(SymbolIcons::themeIconName(QStringLiteral("rectangle.on.rectangle.angled")).isEmpty());
}

TEST(SymbolIcons, DrawnSymbolsFollowThePaletteWhenPainted) {
    const QPalette original = QApplication::palette();
    QPalette dark = original;
    dark.setColor(QPalette::WindowText, QColor(250, 250, 250));
    QApplication::setPalette(dark);
    const QImage light = SymbolIcons::drawnIcon(QStringLiteral("app.fill")).pixmap(24, 24).toImage();
    QPalette changed = dark;
    changed.setColor(QPalette::Mid, QColor(10, 200, 10));
    QApplication::setPalette(changed);
    const QImage tinted = SymbolIcons::drawnIcon(QStringLiteral("app.fill")).pixmap(24, 24).toImage();
    QApplication::setPalette(original);
    EXPECT_EQ(tinted.pixelColor(12, 12).rgb(), QColor(10, 200, 10).rgb());
    EXPECT_NE(light.pixelColor(12, 12).rgb(), tinted.pixelColor(12, 12).rgb());
}

}  // namespace
