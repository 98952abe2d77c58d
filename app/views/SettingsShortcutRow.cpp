#include "app/views/SettingsShortcutRow.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

#include "app/AppController.h"
#include "app/views/SymbolIcons.h"
#include "app/views/ViewStyle.h"

namespace {

// Stands in for the shortcut recorder: shows the shortcut name it would edit.
QWidget* makeRecorder(const QString& shortcutName, QWidget* parent) {
    auto* field = new QLineEdit(parent);
    field->setReadOnly(true);
    field->setEnabled(false);
    field->setPlaceholderText(QStringLiteral("Record Shortcut"));
    field->setAlignment(Qt::AlignCenter);
    field->setMinimumWidth(130);
    field->setProperty("shortcutName", shortcutName);
    return field;
}

}  // namespace

QString SettingsShortcutRow::labelText(const ShortcutDisplayItem& item) {
    if (item.index) {
        return QStringLiteral("%1. %2").arg(*item.index).arg(item.name);
    }
    return item.name;
}

SettingsShortcutRow::SettingsShortcutRow(const ShortcutDisplayItem& item, QWidget* parent)
    : QWidget(parent), m_item(item) {
    setObjectName(QStringLiteral("shortcutRow.") + item.id);
    m_label = ViewStyle::makeLabel(labelText(item), ViewStyle::bodyFont(), this);
    m_label->setObjectName(QStringLiteral("shortcutRowLabel"));

    m_recorder = makeRecorder(AppController::shortcutNameRawValue(item.id), this);
    m_recorder->setObjectName(QStringLiteral("shortcutRecorder"));

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 2, 0, 2);
    layout->setSpacing(8);
    layout->addWidget(m_label, 1);
    layout->addWidget(m_recorder);

    if (!item.isConnected) {
        m_deleteButton = new QToolButton(this);
        m_deleteButton->setObjectName(QStringLiteral("deleteShortcutMapping"));
        m_deleteButton->setIcon(SymbolIcons::icon(QStringLiteral("trash")));
        m_deleteButton->setToolTip(QStringLiteral("Delete shortcut mapping for this disconnected screen"));
        m_deleteButton->setAccessibleName(m_deleteButton->toolTip());
        m_deleteButton->setAutoRaise(true);
        const QString id = item.id;
        connect(m_deleteButton, &QToolButton::clicked, this, [this, id] { Q_EMIT deleteRequested(id); });
        layout->addWidget(m_deleteButton);
    }
}

QString SettingsShortcutRow::labelShown() const {
    return m_label->text();
}
