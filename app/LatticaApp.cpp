#include "app/LatticaApp.h"

#include <QApplication>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <cstdio>

#include "app/AppController.h"

namespace {

// The program's symbol: two overlapping display outlines, drawn for the size the tray asks for.
QIcon programIcon() {
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64, 128}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        const qreal pen = qMax(1.5, size / 14.0);
        const qreal unit = size / 16.0;
        painter.setPen(QPen(QColor(0x3d, 0x8b, 0xfd), pen, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawRoundedRect(QRectF(1.5 * unit, 1.5 * unit, 9 * unit, 7 * unit), unit, unit);
        painter.setBrush(QColor(0x3d, 0x8b, 0xfd));
        painter.drawRoundedRect(QRectF(5.5 * unit, 6.5 * unit, 9 * unit, 7 * unit), unit, unit);
        icon.addPixmap(pixmap);
    }
    return icon;
}

}  // namespace

LatticaApp::LatticaApp() = default;
LatticaApp::~LatticaApp() = default;

void LatticaApp::start() {
    AppController& controller = AppController::shared();
    m_trayMenu = std::make_unique<QMenu>();
    m_trayMenu->addAction(QStringLiteral("Quit"), qApp, &QCoreApplication::quit);
    if (QSystemTrayIcon::isSystemTrayAvailable()) {
        m_trayIcon = std::make_unique<QSystemTrayIcon>(programIcon());
        m_trayIcon->setToolTip(QStringLiteral("Lattica"));
        m_trayIcon->setContextMenu(m_trayMenu.get());
        m_trayIcon->show();
    } else {
        std::fputs("Lattica: no system tray is available; the panel opens as an ordinary window.\n", stdout);
        std::fflush(stdout);
    }
    Q_UNUSED(controller);
}
