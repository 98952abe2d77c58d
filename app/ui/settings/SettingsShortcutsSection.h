// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QWidget>
#include <optional>

#include "app/commands/MoveShortcuts.h"
#include "app/model/Models.h"

class AppController;
class QLabel;
class QPushButton;
class SettingsCard;
class ShortcutRecorderRow;

// The global shortcuts: the moves that are not tied to one display, connected screens, and disconnected
// screens that keep a mapping. Remembered screens can be many: their rows are built a batch at a time.
class SettingsShortcutsSection : public QWidget {
    Q_OBJECT
public:
    // How many disconnected screens get rows at first, and at each "Show more".
    static constexpr int kRowsPerBatch = 50;

    explicit SettingsShortcutsSection(AppController& controller, QWidget* parent = nullptr);

    QList<ShortcutRecorderRow*> moveRows() const { return m_moveRows; }
    QList<ShortcutRecorderRow*> connectedRows() const { return m_connectedRows; }
    // The disconnected screens' rows built so far.
    QList<ShortcutRecorderRow*> disconnectedRows() const { return m_disconnectedRows; }
    // The text shown in place of rows, or empty when the group has rows.
    QString connectedEmptyText() const;
    QString disconnectedEmptyText() const;
    // The button that builds the next batch of disconnected rows; hidden when all are built.
    QPushButton* showMoreButton() const { return m_showMore; }

private:
    void rebuildMoves();
    void rebuildConnected();
    void rebuildDisconnected();
    void showMoreDisconnected();
    void updateShowMore();
    QList<ShortcutRecorderRow*> fill(SettingsCard* card, const QList<ShortcutDisplayItem>& items,
                                     const QString& emptyText, QLabel** emptyLabel);

    AppController& m_controller;
    SettingsCard* m_movesCard = nullptr;
    SettingsCard* m_connectedCard = nullptr;
    SettingsCard* m_disconnectedCard = nullptr;
    QPushButton* m_showMore = nullptr;
    QLabel* m_connectedEmpty = nullptr;
    QLabel* m_disconnectedEmpty = nullptr;
    // What the rows show now; an unchanged list leaves the rows (and a recorder in use) alone.
    std::optional<QList<MoveShortcuts::Action>> m_movesShown;
    std::optional<QList<ShortcutDisplayItem>> m_connectedShown;
    std::optional<QList<ShortcutDisplayItem>> m_disconnectedShown;
    QList<ShortcutRecorderRow*> m_moveRows;
    QList<ShortcutRecorderRow*> m_connectedRows;
    QList<ShortcutRecorderRow*> m_disconnectedRows;
};
