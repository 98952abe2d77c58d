// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QSet>
#include <QWidget>

#include "app/model/Models.h"

class AppController;
class DisplayCardView;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QStackedLayout;

// The content of the tray panel: a header, then the permission request, the loading or empty state, or
// one card per display side by side, and the Settings and Quit actions. Everything it shows comes from
// the controller; it changes nothing itself except through the controller's operations.
class TrayPanelView : public QWidget {
    Q_OBJECT
public:
    enum class State { PermissionsRequired, Loading, NoDisplays, Displays };

    explicit TrayPanelView(AppController& controller, QWidget* parent = nullptr);

    // What the panel shows for a permission state, an empty or filled display list and the loading flag.
    static State stateFor(const PermissionState& permissions, bool displaysEmpty, bool isLoading);

    // Builds and lays out the cards for these displays ahead of an opening, and paints the panel once
    // off screen, so that the opening only fills them in. What the panel shows stays as it was.
    void prepare(const QList<DisplaySnapshot>& displays);

    State state() const { return m_state; }
    QList<DisplayCardView*> cards() const { return m_cards; }
    // Width the row of cards shares.
    int gridWidth() const;
    // The controls Tab walks through, in reading order: each card's buttons from left to right, then
    // Settings and Quit (or the permission buttons when those are shown).
    QList<QWidget*> keyboardOrder() const;
    // The panel window's area in the display space of the monitors.
    QRectF displaySpaceArea() const;

Q_SIGNALS:
    // The panel should close (the Settings button asks for it before opening the settings window).
    void dismissRequested();
    // The Settings button was pressed, after the panel was asked to close.
    void settingsRequested();
    // Since the panel was last shown, every card has been painted: at all, and with its preview picture.
    // Each is told once per showing.
    void cardsPainted();
    void previewsPainted();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeBlockedPage();
    QWidget* makeMessagePage(const QString& title, const QString& caption, bool withProgress);
    QWidget* makeGridPage();
    QWidget* makeFooter();
    QLabel* makePermissionBadge(const QString& objectName, QWidget* parent);
    void updatePermissionBadge(QLabel* badge, const QString& title, const CapabilityCheck& check);

    void render();
    void updateCards();
    // Shows count cards, taking them from the spare ones before making new ones.
    void useCards(qsizetype count);
    void layoutCards();
    void layoutCards(const QList<DisplaySnapshot>& displays, bool isLoading);
    void updateKeyboardOrder();
    void focusFirstControl();
    // Arrow keys between and within cards, digits for a card's target display.
    bool handleCardKey(DisplayCardView* card, QWidget* control, int key);
    void notePainted(DisplayCardView* card, bool withPreview);

    AppController& m_controller;
    State m_state = State::PermissionsRequired;
    QStackedLayout* m_pages = nullptr;
    QWidget* m_blockedPage = nullptr;
    QWidget* m_loadingPage = nullptr;
    QWidget* m_emptyPage = nullptr;
    QWidget* m_gridPage = nullptr;
    QLabel* m_screenRecordingBadge = nullptr;
    QLabel* m_accessibilityBadge = nullptr;
    QWidget* m_grid = nullptr;
    QHBoxLayout* m_cardRow = nullptr;
    QWidget* m_singleDisplayHint = nullptr;
    QList<DisplayCardView*> m_cards;
    // Cards made before and hidden while fewer displays are shown, kept in the row after the shown ones.
    QList<DisplayCardView*> m_spareCards;
    QPushButton* m_settingsButton = nullptr;
    QPushButton* m_quitButton = nullptr;
    // The cards painted since the panel was shown.
    QSet<DisplayCardView*> m_paintedCards;
    QSet<DisplayCardView*> m_cardsWithPreview;
    bool m_cardsPaintedTold = false;
    bool m_previewsPaintedTold = false;
};
