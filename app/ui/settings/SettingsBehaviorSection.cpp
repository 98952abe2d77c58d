// SPDX-License-Identifier: MIT
#include "app/ui/settings/SettingsBehaviorSection.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "app/controller/AppController.h"
#include "app/ui/common/ViewStyle.h"
#include "app/ui/settings/SettingsCard.h"
#include "app/ui/settings/SettingsToggle.h"

namespace {

SettingsToggle* addToggleRow(SettingsCard* card, const QString& title, const QString& objectName) {
    QHBoxLayout* row = card->addRowLayout();
    QLabel* label = ViewStyle::makeLabel(title, ViewStyle::bodyFont(), card);
    auto* toggle = new SettingsToggle(card);
    toggle->setObjectName(objectName);
    toggle->setAccessibleName(title);
    label->setBuddy(toggle);
    row->addWidget(label, 1);
    row->addWidget(toggle);
    return toggle;
}

}  // namespace

SettingsBehaviorSection::SettingsBehaviorSection(AppController& controller, QWidget* parent)
    : QWidget(parent), m_controller(controller) {
    auto* card = new SettingsCard(QString(), this);
    m_launchAtLogin = addToggleRow(card, tr("Launch at login"), QStringLiteral("toggle.launchAtLogin"));
    m_dockIcon = addToggleRow(card, tr("Show in taskbar"), QStringLiteral("toggle.dockIcon"));
    m_adjustWindowSize =
        addToggleRow(card, tr("Adjust window size to target screen"), QStringLiteral("toggle.adjustWindowSize"));

    // Which program the login entry starts, so that a build tree's binary in it is noticed.
    m_launchAtLoginProgram = ViewStyle::makeLabel(QString(), ViewStyle::captionFont(), this, true, true);
    m_launchAtLoginProgram->setObjectName(QStringLiteral("launchAtLoginProgram"));

    QLabel* note = ViewStyle::makeLabel(tr("Previews are refreshed only when you click the tray icon."),
                                        ViewStyle::captionFont(), this, true, true);
    note->setObjectName(QStringLiteral("previewNote"));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(10);
    layout->addWidget(card);
    layout->addWidget(m_launchAtLoginProgram);
    layout->addWidget(note);

    connect(m_launchAtLogin, &SettingsToggle::toggled, this, [this](bool enabled) {
        m_controller.setLaunchAtLogin(enabled);
        showValues();
    });
    connect(m_dockIcon, &SettingsToggle::toggled, this, [this](bool visible) {
        m_controller.setDockIconVisible(visible);
        showValues();
    });
    connect(m_adjustWindowSize, &SettingsToggle::toggled, this,
            [this](bool adjust) { m_controller.setAdjustWindowSizeToTargetScreen(adjust); });

    connect(&m_controller, &AppController::launchAtLoginEnabledChanged, this, [this] { showValues(); });
    connect(&m_controller, &AppController::dockIconVisibleChanged, this, [this] { showValues(); });
    connect(&m_controller, &AppController::adjustWindowSizeToTargetScreenChanged, this, [this] { showValues(); });
    showValues();
}

void SettingsBehaviorSection::showValues() {
    const QSignalBlocker blockLogin(m_launchAtLogin);
    const QSignalBlocker blockDock(m_dockIcon);
    const QSignalBlocker blockAdjust(m_adjustWindowSize);
    m_launchAtLogin->setChecked(m_controller.launchAtLoginEnabled());
    m_dockIcon->setChecked(m_controller.dockIconVisible());
    m_adjustWindowSize->setChecked(m_controller.adjustWindowSizeToTargetScreen());
    const QString program = m_controller.launchAtLoginProgram();
    m_launchAtLoginProgram->setText(tr("Launch at login starts %1.").arg(program));
    m_launchAtLoginProgram->setHidden(program.isEmpty());
    m_launchAtLogin->update();
    m_dockIcon->update();
    m_adjustWindowSize->update();
}
