// SPDX-License-Identifier: MIT
#include "app/ui/settings/ShortcutRecorderRow.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

#include "KeyboardShortcuts/Name.h"
#include "KeyboardShortcuts/widgets/ShortcutRecorder.h"
#include "app/controller/AppController.h"
#include "app/ui/common/ViewStyle.h"
#include "app/ui/settings/SettingsSymbols.h"
namespace {
constexpr int kDeleteButtonSize = 26;
}

QString ShortcutRecorderRow::labelText(const ShortcutDisplayItem& item) {
    if (item.index) {
        return QStringLiteral("%1. %2").arg(*item.index).arg(item.name);
    }
    return item.name;
}

ShortcutRecorderRow::ShortcutRecorderRow(const ShortcutDisplayItem& item, KeyboardShortcuts::ActionShortcuts& shortcuts,
                                         QWidget* parent)
    : QWidget(parent), m_item(item) {
    setObjectName(QStringLiteral("shortcutRow.") + item.id);
    QHBoxLayout* layout = build(labelText(item), AppController::shortcutNameRawValue(item.id), shortcuts);
    if (!item.isConnected) {
        m_deleteButton = new QToolButton(this);
        m_deleteButton->setObjectName(QStringLiteral("deleteShortcutMapping"));
        m_deleteButton->setIcon(SettingsSymbols::icon(QStringLiteral("trash")));
        m_deleteButton->setToolTip(tr("Delete shortcut mapping for this disconnected screen"));
        m_deleteButton->setAccessibleName(m_deleteButton->toolTip());
        m_deleteButton->setAutoRaise(true);
        m_deleteButton->setFixedSize(kDeleteButtonSize, kDeleteButtonSize);
        const QString id = item.id;
        connect(m_deleteButton, &QToolButton::clicked, this, [this, id] { Q_EMIT deleteRequested(id); });
        layout->addWidget(m_deleteButton);
    } else {
        // Keeps the recorders of both groups in one column.
        layout->addSpacing(kDeleteButtonSize + layout->spacing());
    }
}

ShortcutRecorderRow::ShortcutRecorderRow(const QString& label, const QString& shortcutName,
                                         KeyboardShortcuts::ActionShortcuts& shortcuts, QWidget* parent)
    : QWidget(parent), m_item{shortcutName, label, std::nullopt, true} {
    setObjectName(QStringLiteral("shortcutRow.") + shortcutName);
    QHBoxLayout* layout = build(label, shortcutName, shortcuts);
    layout->addSpacing(kDeleteButtonSize + layout->spacing());
}

QHBoxLayout* ShortcutRecorderRow::build(const QString& label, const QString& shortcutName,
                                        KeyboardShortcuts::ActionShortcuts& shortcuts) {
    // Long names and translations wrap instead of widening the page.
    m_label = ViewStyle::makeLabel(label, ViewStyle::bodyFont(), this, false, true);
    m_label->setObjectName(QStringLiteral("shortcutRowLabel"));

    // The layout adopts it.
    m_recorder = new KeyboardShortcuts::ShortcutRecorder(shortcuts, KeyboardShortcuts::Name(shortcutName));
    m_recorder->setObjectName(QStringLiteral("shortcutRecorder"));

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 2, 0, 2);
    layout->setSpacing(8);
    layout->addWidget(m_label, 1);
    layout->addWidget(m_recorder);
    return layout;
}

QString ShortcutRecorderRow::labelShown() const {
    return m_label->text();
}
