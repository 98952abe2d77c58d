// SPDX-License-Identifier: MIT
#include "tests/ui/ScreenshotSupport.h"

#include <QDir>

QString screenshotDirectory() {
    QString directory = qEnvironmentVariable("LATTICA_SCREENSHOT_DIR");
    if (directory.isEmpty()) {
        directory = QStringLiteral(LATTICA_SCREENSHOT_DEFAULT_DIR);
    }
    QDir().mkpath(directory);
    return directory;
}

QPalette darkPalette() {
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0x2b, 0x2b, 0x2e));
    palette.setColor(QPalette::WindowText, QColor(0xec, 0xec, 0xee));
    palette.setColor(QPalette::Base, QColor(0x36, 0x36, 0x3a));
    palette.setColor(QPalette::AlternateBase, QColor(0x3c, 0x3c, 0x40));
    palette.setColor(QPalette::Text, QColor(0xec, 0xec, 0xee));
    palette.setColor(QPalette::Button, QColor(0x45, 0x45, 0x4a));
    palette.setColor(QPalette::ButtonText, QColor(0xec, 0xec, 0xee));
    palette.setColor(QPalette::Mid, QColor(0x58, 0x58, 0x5e));
    palette.setColor(QPalette::Dark, QColor(0x1e, 0x1e, 0x20));
    palette.setColor(QPalette::Light, QColor(0x5a, 0x5a, 0x60));
    palette.setColor(QPalette::Midlight, QColor(0x4a, 0x4a, 0x50));
    palette.setColor(QPalette::Shadow, QColor(0x10, 0x10, 0x10));
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0x8b, 0xfd));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, QColor(0xec, 0xec, 0xee, 0x90));
    palette.setColor(QPalette::ToolTipBase, QColor(0x36, 0x36, 0x3a));
    palette.setColor(QPalette::ToolTipText, QColor(0xec, 0xec, 0xee));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x80, 0x80, 0x84));
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x80, 0x80, 0x84));
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(0x80, 0x80, 0x84));
    return palette;
}
