// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QMenu>
#include <QPixmap>
#include <QPointer>
#include <QWidget>

#include "app/model/Models.h"

class AppController;
class QLabel;
class QProgressBar;
class QPushButton;
class QToolButton;
class QVBoxLayout;
class SymbolLabel;

// One display in the tray panel: its number and name, a preview, the count of visible windows, a
// button per other display that moves every visible window there, and a menu that moves the windows
// of one application. Holds nothing but what it was last given.
class DisplayCardView : public QWidget {
    Q_OBJECT
public:
    explicit DisplayCardView(AppController& controller, QWidget* parent = nullptr);

    // Shows a display. allDisplays are the panel's displays in panel order; the move targets are these
    // without this display. isLoadingPreview is true while previews are captured and this one has none.
    void setDisplay(const DisplaySnapshot& display, const QList<DisplaySnapshot>& allDisplays, double previewHeight,
                    bool isLoadingPreview);

    const DisplaySnapshot& display() const { return m_display; }
    double previewHeight() const { return m_previewHeight; }
    bool isLoadingPreview() const { return m_isLoadingPreview; }

    // "N.circle.fill" for an index up to 50, "number.circle.fill" above.
    static QString screenNumberSymbol(int index);
    // Identity of the application menu's content: the loading flag, then pid:count of every group.
    static QString appMenuReloadKey(bool isLoadingPreview, const QList<DisplayAppGroup>& groups);
    QString appMenuReloadKey() const { return appMenuReloadKey(m_isLoadingPreview, m_display.appGroups); }

    QMenu* appMenu() const { return m_appMenu; }
    // How many times the application menu and the preview picture were built; each happens once per
    // change of their content, never on a plain repaint.
    int appMenuBuildCount() const { return m_appMenuBuildCount; }
    int previewScaleCount() const { return m_previewScaleCount; }
    // The picture painted in the preview area, already at the area's size.
    const QPixmap& scaledPreview() const { return m_scaledPreview; }
    QRect previewRect() const;
    // The card's buttons in reading order (the move buttons, then the application menu), for the
    // panel's keyboard order.
    QList<QWidget*> keyboardControls() const;
    // Moves the visible windows to the display with this panel index, as its button does. False when no
    // button of this card leads there (its own index, or no such display).
    bool moveToDisplayIndex(int index);

Q_SIGNALS:
    // The card was painted; withPreview tells whether the captured picture was part of it.
    void painted(bool withPreview);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QList<DisplaySnapshot> targets() const;
    void updateHeader();
    void updatePreviewState();
    void updateScaledPreview();
    void updateWindowCount();
    void updateMoveButtonNames();
    void rebuildMoveControls();
    void rebuildAppMenu();
    void elideTexts();
    QIcon applicationIcon(pid_t pid) const;

    AppController& m_controller;
    DisplaySnapshot m_display;
    QList<DisplaySnapshot> m_allDisplays;
    double m_previewHeight = 0;
    bool m_isLoadingPreview = false;

    SymbolLabel* m_numberIcon = nullptr;
    QLabel* m_nameLabel = nullptr;
    QWidget* m_previewArea = nullptr;
    QWidget* m_loadingOverlay = nullptr;
    QLabel* m_unavailableLabel = nullptr;
    QLabel* m_indexBadge = nullptr;
    QLabel* m_windowCountLabel = nullptr;
    QWidget* m_moveControls = nullptr;
    QVBoxLayout* m_moveControlsLayout = nullptr;
    QToolButton* m_appMenuButton = nullptr;
    QPointer<QMenu> m_appMenu;

    QString m_builtTargetsKey;
    QString m_builtAppMenuKey;
    qint64 m_scaledImageKey = 0;
    QSize m_scaledSize;
    QPixmap m_scaledPreview;
    int m_appMenuBuildCount = 0;
    int m_previewScaleCount = 0;
};
