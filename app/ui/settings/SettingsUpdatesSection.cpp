// SPDX-License-Identifier: MIT
#include "app/ui/settings/SettingsUpdatesSection.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "BuildConfig.h"
#include "app/controller/AppController.h"
#include "app/ui/common/ViewStyle.h"
#include "app/ui/settings/SettingsCard.h"
#include "app/ui/settings/SettingsSymbols.h"
#include "app/ui/settings/SettingsToggle.h"
#include "app/update/Updater.h"

SettingsUpdatesSection::SettingsUpdatesSection(AppController& controller, QWidget* parent)
    : QWidget(parent), m_controller(controller) {
    auto* card = new SettingsCard(QString(), this);

    QHBoxLayout* toggleRow = card->addRowLayout();
    const QString toggleTitle = tr("Check for updates automatically on launch");
    m_automaticCheck = new SettingsToggle(card);
    m_automaticCheck->setObjectName(QStringLiteral("toggle.autoCheckForUpdates"));
    m_automaticCheck->setAccessibleName(toggleTitle);
    toggleRow->addWidget(ViewStyle::makeLabel(toggleTitle, ViewStyle::bodyFont(), card), 1);
    toggleRow->addWidget(m_automaticCheck);

    QHBoxLayout* checkRow = card->addRowLayout();
    QLabel* version = ViewStyle::makeLabel(
        tr("You are running Lattica %1 (%2).")
            .arg(QString::fromLatin1(BuildConfig::kVersion), QString::fromLatin1(BuildConfig::kBuildNumber)),
        ViewStyle::captionFont(), card, true);
    m_checkButton = new QPushButton(SettingsSymbols::icon(QStringLiteral("arrow.triangle.2.circlepath")),
                                    tr("Check for Updates"), card);
    m_checkButton->setObjectName(QStringLiteral("checkForUpdates"));
    checkRow->addWidget(version, 1);
    checkRow->addWidget(m_checkButton);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(card);

    connect(m_automaticCheck, &SettingsToggle::toggled, this, [this](bool enabled) {
        m_controller.setAutoCheckForUpdatesEnabled(enabled);
        showValue();
    });
    connect(&m_controller, &AppController::autoCheckForUpdatesEnabledChanged, this, [this] { showValue(); });
    connect(m_checkButton, &QPushButton::clicked, this, [this] {
        if (Updater* updater = m_controller.updater()) {
            updater->checkForUpdates();
        }
    });
    showValue();
}

void SettingsUpdatesSection::showValue() {
    const QSignalBlocker block(m_automaticCheck);
    m_automaticCheck->setChecked(m_controller.autoCheckForUpdatesEnabled());
    m_automaticCheck->update();
}
