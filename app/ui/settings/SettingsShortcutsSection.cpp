// SPDX-License-Identifier: MIT
#include "app/ui/settings/SettingsShortcutsSection.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/controller/AppController.h"
#include "app/ui/common/ViewStyle.h"
#include "app/ui/settings/SettingsCard.h"
#include "app/ui/settings/ShortcutRecorderRow.h"

namespace {

QList<MoveShortcuts::Action> moveActions(const QList<ShortcutDisplayItem>& connected) {
    QList<MoveShortcuts::Action> actions = MoveShortcuts::focusedWindowActions();
    actions.append(MoveShortcuts::swapActions(connected));
    actions.append(MoveShortcuts::openPanelAction());
    return actions;
}

}  // namespace

SettingsShortcutsSection::SettingsShortcutsSection(AppController& controller, QWidget* parent)
    : QWidget(parent), m_controller(controller) {
    m_movesCard = new SettingsCard(tr("Moves"), this);
    m_movesCard->setObjectName(QStringLiteral("group.moves"));
    m_connectedCard = new SettingsCard(tr("Connected screens"), this);
    m_connectedCard->setObjectName(QStringLiteral("group.connected"));
    m_disconnectedCard = new SettingsCard(tr("Disconnected screens"), this);
    m_disconnectedCard->setObjectName(QStringLiteral("group.disconnected"));
    m_showMore = new QPushButton(this);
    m_showMore->setObjectName(QStringLiteral("showMoreScreens"));
    m_showMore->hide();
    connect(m_showMore, &QPushButton::clicked, this, [this] { showMoreDisconnected(); });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(14);
    layout->addWidget(m_connectedCard);
    layout->addWidget(m_movesCard);
    layout->addWidget(m_disconnectedCard);
    layout->addWidget(m_showMore, 0, Qt::AlignLeft);

    connect(&m_controller, &AppController::connectedShortcutDisplaysChanged, this, [this] {
        rebuildConnected();
        rebuildMoves();
    });
    connect(&m_controller, &AppController::disconnectedShortcutDisplaysChanged, this,
            [this] { rebuildDisconnected(); });
    rebuildConnected();
    rebuildMoves();
    rebuildDisconnected();
}

QString SettingsShortcutsSection::connectedEmptyText() const {
    return m_connectedEmpty ? m_connectedEmpty->text() : QString();
}

QString SettingsShortcutsSection::disconnectedEmptyText() const {
    return m_disconnectedEmpty ? m_disconnectedEmpty->text() : QString();
}

void SettingsShortcutsSection::rebuildMoves() {
    const QList<MoveShortcuts::Action> actions = moveActions(m_controller.connectedShortcutDisplays());
    if (m_movesShown == actions) {
        return;
    }
    m_movesShown = actions;
    m_movesCard->clearRows();
    m_moveRows.clear();
    for (const MoveShortcuts::Action& action : actions) {
        auto* row = new ShortcutRecorderRow(action.label, action.name, m_controller.shortcuts(), m_movesCard);
        m_movesCard->addRow(row);
        m_moveRows.append(row);
    }
}

void SettingsShortcutsSection::rebuildConnected() {
    if (m_connectedShown == m_controller.connectedShortcutDisplays()) {
        return;
    }
    m_connectedShown = m_controller.connectedShortcutDisplays();
    m_connectedRows = fill(m_connectedCard, m_controller.connectedShortcutDisplays(),
                           tr("No connected screens were detected."), &m_connectedEmpty);
}

void SettingsShortcutsSection::rebuildDisconnected() {
    if (m_disconnectedShown == m_controller.disconnectedShortcutDisplays()) {
        return;
    }
    m_disconnectedShown = m_controller.disconnectedShortcutDisplays();
    const QList<ShortcutDisplayItem>& all = *m_disconnectedShown;
    m_disconnectedRows = fill(m_disconnectedCard, all.mid(0, kRowsPerBatch),
                              tr("No disconnected screens with saved shortcuts."), &m_disconnectedEmpty);
    for (ShortcutRecorderRow* row : std::as_const(m_disconnectedRows)) {
        connect(row, &ShortcutRecorderRow::deleteRequested, this,
                [this](const QString& id) { m_controller.deleteDisconnectedShortcutDisplay(id); });
    }
    updateShowMore();
}

void SettingsShortcutsSection::showMoreDisconnected() {
    if (!m_disconnectedShown) {
        return;
    }
    const QList<ShortcutDisplayItem> next = m_disconnectedShown->mid(m_disconnectedRows.size(), kRowsPerBatch);
    for (const ShortcutDisplayItem& item : next) {
        auto* row = new ShortcutRecorderRow(item, m_controller.shortcuts(), m_disconnectedCard);
        m_disconnectedCard->addRow(row);
        connect(row, &ShortcutRecorderRow::deleteRequested, this,
                [this](const QString& id) { m_controller.deleteDisconnectedShortcutDisplay(id); });
        m_disconnectedRows.append(row);
    }
    updateShowMore();
}

void SettingsShortcutsSection::updateShowMore() {
    const qsizetype remaining = m_disconnectedShown ? m_disconnectedShown->size() - m_disconnectedRows.size() : 0;
    m_showMore->setVisible(remaining > 0);
    m_showMore->setText(tr("Show %n more screens (%1 not shown)", nullptr,
                           static_cast<int>(std::min<qsizetype>(remaining, kRowsPerBatch)))
                            .arg(remaining));
}

QList<ShortcutRecorderRow*> SettingsShortcutsSection::fill(SettingsCard* card, const QList<ShortcutDisplayItem>& items,
                                                           const QString& emptyText, QLabel** emptyLabel) {
    card->clearRows();
    *emptyLabel = nullptr;
    QList<ShortcutRecorderRow*> rows;
    if (items.isEmpty()) {
        QLabel* empty = ViewStyle::makeLabel(emptyText, ViewStyle::subheadlineFont(), card, true, true);
        empty->setObjectName(QStringLiteral("emptyText"));
        card->addRow(empty);
        *emptyLabel = empty;
        return rows;
    }
    for (const ShortcutDisplayItem& item : items) {
        auto* row = new ShortcutRecorderRow(item, m_controller.shortcuts(), card);
        card->addRow(row);
        rows.append(row);
    }
    return rows;
}
