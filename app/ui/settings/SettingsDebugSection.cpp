// SPDX-License-Identifier: MIT
#include "app/ui/settings/SettingsDebugSection.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/controller/AppController.h"
#include "app/ui/common/ViewStyle.h"
#include "app/ui/settings/SettingsCard.h"

SettingsDebugSection::SettingsDebugSection(AppController& controller, QWidget* parent)
    : QWidget(parent), m_controller(controller) {
    auto* card = new SettingsCard(QString(), this);
    QHBoxLayout* row = card->addRowLayout();
    row->addWidget(ViewStyle::makeLabel(tr("Read both permissions again and update the badges."), ViewStyle::bodyFont(),
                                        card, false, true),
                   1);
    auto* refresh = new QPushButton(tr("Refresh Permissions"), card);
    refresh->setObjectName(QStringLiteral("debug.refreshPermissions"));
    row->addWidget(refresh);
    connect(refresh, &QPushButton::clicked, this, [this] { m_controller.refreshPermissions(); });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(card);
}
