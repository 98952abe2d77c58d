// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include "app/ui/settings/SettingsSection.h"

class AppController;
class QLabel;
class QStackedWidget;
class SettingsSectionPage;
class SettingsSidebar;

// The content of the settings window: a sidebar of sections and the chosen section's page.
// It keeps no state of its own besides the selected section.
class SettingsView : public QWidget {
    Q_OBJECT
public:
    explicit SettingsView(AppController& controller, QWidget* parent = nullptr);

    // The size the settings are laid out for.
    QSize sizeHint() const override { return {760, 540}; }

    SettingsSection selectedSection() const { return m_selectedSection; }
    void setSelectedSection(SettingsSection section);

    SettingsSidebar* sidebar() const { return m_sidebar; }
    SettingsSectionPage* currentPage() const;
    SettingsSectionPage* pageFor(SettingsSection section) const;
    // The controller's status message as shown, empty while there is none.
    QString statusText() const;
    // The notice that the user's changes could not be saved, as shown; empty while there is none.
    QString unsavedPreferencesText() const;

protected:
    // Every time the window appears the permission badges and the shortcut rows are brought up to date.
    void showEvent(QShowEvent* event) override;

private:
    AppController& m_controller;
    SettingsSection m_selectedSection = SettingsSection::Permissions;
    SettingsSidebar* m_sidebar = nullptr;
    QStackedWidget* m_pages = nullptr;
    QLabel* m_statusLabel = nullptr;
    QLabel* m_unsavedPreferencesLabel = nullptr;
};
