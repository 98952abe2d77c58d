// SPDX-License-Identifier: MIT
#include "app/ui/settings/SettingsView.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "app/controller/AppController.h"
#include "app/ui/common/ViewStyle.h"
#include "app/ui/settings/SettingsAboutSection.h"
#include "app/ui/settings/SettingsBehaviorSection.h"
#include "app/ui/settings/SettingsDebugSection.h"
#include "app/ui/settings/SettingsPermissionsSection.h"
#include "app/ui/settings/SettingsSectionPage.h"
#include "app/ui/settings/SettingsShortcutsSection.h"
#include "app/ui/settings/SettingsSidebar.h"
#include "app/ui/settings/SettingsUpdatesSection.h"

namespace {

QWidget* makeSectionContent(SettingsSection section, AppController& controller) {
    switch (section) {
        case SettingsSection::Permissions:
            return new SettingsPermissionsSection(controller);
        case SettingsSection::Behavior:
            return new SettingsBehaviorSection(controller);
        case SettingsSection::Shortcuts:
            return new SettingsShortcutsSection(controller);
        case SettingsSection::Updates:
            return new SettingsUpdatesSection(controller);
        case SettingsSection::About:
            return new SettingsAboutSection(controller);
        case SettingsSection::Debug:
            return new SettingsDebugSection(controller);
    }
    return new QWidget();
}

}  // namespace

SettingsView::SettingsView(AppController& controller, QWidget* parent) : QWidget(parent), m_controller(controller) {
    setObjectName(QStringLiteral("SettingsView"));
    m_sidebar = new SettingsSidebar(this);

    auto* divider = new QFrame(this);
    divider->setFrameShape(QFrame::NoFrame);
    divider->setFixedWidth(1);
    divider->setAutoFillBackground(true);
    divider->setBackgroundRole(QPalette::Mid);

    m_pages = new QStackedWidget(this);
    for (const SettingsSection section : SettingsSections::allCases()) {
        m_pages->addWidget(new SettingsSectionPage(section, makeSectionContent(section, m_controller)));
    }

    // The outcome of the last request or move, under the section.
    m_statusLabel = ViewStyle::makeLabel(QString(), ViewStyle::captionFont(), this, true, true);
    m_statusLabel->setObjectName(QStringLiteral("statusMessage"));
    m_statusLabel->setContentsMargins(24, 6, 24, 12);
    m_statusLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);

    // Above the section, where the change that could not be saved was just made.
    m_unsavedPreferencesLabel = ViewStyle::makeLabel(QString(), ViewStyle::captionFont(), this, false, true);
    m_unsavedPreferencesLabel->setObjectName(QStringLiteral("unsavedPreferencesNotice"));
    m_unsavedPreferencesLabel->setContentsMargins(24, 12, 24, 0);
    m_unsavedPreferencesLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_unsavedPreferencesLabel->setAccessibleName(tr("Changes not saved"));

    auto* detail = new QVBoxLayout();
    detail->setContentsMargins(0, 0, 0, 0);
    detail->setSpacing(0);
    detail->addWidget(m_unsavedPreferencesLabel);
    detail->addWidget(m_pages, 1);
    detail->addWidget(m_statusLabel);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_sidebar);
    layout->addWidget(divider);
    layout->addLayout(detail, 1);

    connect(m_sidebar, &SettingsSidebar::sectionSelected, this,
            [this](SettingsSection section) { setSelectedSection(section); });
    auto showStatus = [this] {
        m_statusLabel->setText(m_controller.statusMessage());
        m_statusLabel->setVisible(!m_controller.statusMessage().isEmpty());
    };
    connect(&m_controller, &AppController::statusMessageChanged, this, showStatus);
    showStatus();
    auto showUnsavedPreferences = [this] {
        m_unsavedPreferencesLabel->setText(m_controller.unsavedPreferencesNotice());
        m_unsavedPreferencesLabel->setVisible(!m_controller.unsavedPreferencesNotice().isEmpty());
    };
    connect(&m_controller, &AppController::unsavedPreferencesNoticeChanged, this, showUnsavedPreferences);
    showUnsavedPreferences();

    setSelectedSection(SettingsSections::allCases().first());
}

void SettingsView::setSelectedSection(SettingsSection section) {
    m_selectedSection = section;
    m_sidebar->setSelectedSection(section);
    m_pages->setCurrentIndex(static_cast<int>(SettingsSections::allCases().indexOf(section)));
}

SettingsSectionPage* SettingsView::currentPage() const {
    return static_cast<SettingsSectionPage*>(m_pages->currentWidget());
}

SettingsSectionPage* SettingsView::pageFor(SettingsSection section) const {
    return static_cast<SettingsSectionPage*>(
        m_pages->widget(static_cast<int>(SettingsSections::allCases().indexOf(section))));
}

QString SettingsView::statusText() const {
    return m_statusLabel->isHidden() ? QString() : m_statusLabel->text();
}

QString SettingsView::unsavedPreferencesText() const {
    return m_unsavedPreferencesLabel->isHidden() ? QString() : m_unsavedPreferencesLabel->text();
}

void SettingsView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    m_controller.refreshPermissions();
    m_controller.refreshShortcutDisplays();
}
