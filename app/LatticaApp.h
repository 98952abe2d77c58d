#pragma once

#include <QObject>
#include <QPoint>
#include <QRect>
#include <QSystemTrayIcon>
#include <memory>

class AppController;
class MenuBarContentView;
class QMenu;
class QWidget;

// The program's presence on the desktop: the tray icon titled "Lattica" and the panel it opens.
// A click on the icon opens the panel as a frameless popup next to the icon, sized from the
// controller's state; every opening refreshes the controller. Without a tray host the panel is an
// ordinary window.
class LatticaApp : public QObject {
    Q_OBJECT
public:
    // Runs the controller's launch sequence once the event loop has started.
    class AppDelegate {
    public:
        void applicationDidFinishLaunching(AppController& controller);
    };

    explicit LatticaApp(AppController& controller);
    ~LatticaApp() override;

    // Shows the tray icon (or says why there is none) and schedules the launch sequence.
    void start();

    // Opens the panel at the tray icon (at the pointer when the tray reports no geometry).
    void openPanel();
    void closePanel();
    void togglePanel();

    bool hasTrayHost() const { return m_trayIcon != nullptr; }
    QSystemTrayIcon* trayIcon() const { return m_trayIcon.get(); }
    QMenu* trayMenu() const { return m_trayMenu.get(); }
    QWidget* panel() const { return m_panel.get(); }
    MenuBarContentView* panelContent() const { return m_content; }

    // The program's symbol, drawn at whatever size is asked for.
    static QIcon programIcon();

Q_SIGNALS:
    void panelShown();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void ensurePanel(bool asPopup);
    QSize panelSize() const;
    void resizePanel();
    void placePanel();

    AppController& m_controller;
    AppDelegate m_appDelegate;
    std::unique_ptr<QSystemTrayIcon> m_trayIcon;
    std::unique_ptr<QMenu> m_trayMenu;
    std::unique_ptr<QWidget> m_panel;
    MenuBarContentView* m_content = nullptr;
    bool m_panelIsPopup = true;
    QRect m_anchorIcon;
    QPoint m_anchorPointer;
};
