#pragma once

#include <QObject>
#include <QSystemTrayIcon>
#include <memory>

class QMenu;

// The program's presence on the desktop: the tray icon and its menu.
class LatticaApp : public QObject {
    Q_OBJECT
public:
    LatticaApp();
    ~LatticaApp() override;

    // Shows the tray icon (or says why there is none) and runs the launch sequence.
    void start();

private:
    std::unique_ptr<QSystemTrayIcon> m_trayIcon;
    std::unique_ptr<QMenu> m_trayMenu;
};
