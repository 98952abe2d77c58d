// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPoint>
#include <QRect>
#include <QSystemTrayIcon>
#include <memory>

class AppController;
class TrayPanelView;
class QMenu;
class QWidget;
class TrayHost;
class WindowPresenter;
namespace KeyboardShortcuts {
class MenuWatcher;
}

// The program's presence on the desktop: the tray icon titled "Lattica" and the panel it opens.
// A click on the icon opens the panel as a frameless popup next to the icon, sized from the
// controller's state; every opening refreshes the controller. Without a tray host the panel is an
// ordinary window until a tray host appears.
class LatticaApp : public QObject {
    Q_OBJECT
public:
    // trayHost tells when a tray appears after the start; without it the program never learns of one.
    LatticaApp(AppController& controller, WindowPresenter& windows, TrayHost* trayHost = nullptr);
    ~LatticaApp() override;

    // Shows the tray icon (or says why there is none) and schedules the launch sequence.
    void start();

    // Opens the panel at the tray icon (at the pointer when the tray reports no geometry).
    void openPanel();
    // Builds the popup, its window and its cards for the connected displays before the first click, so
    // that the first opening is as quick as the later ones. Done by start() once a tray shows the icon.
    void prebuildPanel();
    void closePanel();
    void togglePanel();

    bool hasTrayHost() const { return m_trayIcon != nullptr; }
    QSystemTrayIcon* trayIcon() const { return m_trayIcon.get(); }
    QMenu* trayMenu() const { return m_trayMenu.get(); }
    QWidget* panel() const { return m_panel.get(); }
    TrayPanelView* panelContent() const { return m_content; }

    // The program's icon from the icon theme (app.lattica.Lattica), else drawn at whatever size is asked for.
    static QIcon programIcon();
    // The icon in the tray. A StatusNotifierItem host gets the theme's monochrome
    // app.lattica.Lattica-symbolic by name and paints it in the colour of its text (the full-colour one by
    // name when only that is installed, else the drawn icon as pixels at tray sizes, without a name); an
    // XEmbed tray shows an icon's pixels as they are, so it gets the full-colour programIcon().
    static QIcon trayIconImage(bool statusNotifierHost);

Q_SIGNALS:
    void panelShown();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showTrayIcon();
    // A tray host came after the start: the ordinary panel window gives way to the tray icon.
    void moveIntoTray();
    void ensurePanel(bool asPopup);
    // Creates the panel's native window (once) and watches its closing.
    void createPanelWindow();
    static QSize panelSize(bool granted, int displayCount);
    QSize panelSize() const;
    void resizePanel();
    void placePanel();

    AppController& m_controller;
    // Our menus and the panel hold the keyboard while open; this lets the shortcuts work meanwhile.
    std::unique_ptr<KeyboardShortcuts::MenuWatcher> m_menuWatcher;
    WindowPresenter& m_windows;
    TrayHost* m_trayHost = nullptr;
    std::unique_ptr<QSystemTrayIcon> m_trayIcon;
    std::unique_ptr<QMenu> m_trayMenu;
    std::unique_ptr<QWidget> m_panel;
    TrayPanelView* m_content = nullptr;
    bool m_panelIsPopup = true;
    // From an opening until the program has been told that the panel has the focus. A deactivation told
    // meanwhile is the focus leaving the panel's previous showing, read late; it must not close this one.
    bool m_panelAwaitsFocus = false;
    // Since the tray icon's activation that last opened the panel.
    QElapsedTimer m_openedByActivation;
    // The next paint of the panel's content is the first of an opening (for the paint trace).
    bool m_tracePaint = false;
    QRect m_anchorIcon;
    QPoint m_anchorPointer;
};
