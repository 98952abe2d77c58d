// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QWidget>

#include "app/ui/settings/SettingsSection.h"

class SettingsSidebarButton;

// The left column of the settings window: one button per section the user may open.
class SettingsSidebar : public QWidget {
    Q_OBJECT
public:
    static constexpr int kWidth = 210;

    explicit SettingsSidebar(QWidget* parent = nullptr);

    // Marks the section as selected without announcing it.
    void setSelectedSection(SettingsSection section);
    // The button of a section, or null when the sidebar does not list it.
    SettingsSidebarButton* buttonFor(SettingsSection section) const { return m_buttons.value(section); }
    QList<SettingsSection> listedSections() const;

Q_SIGNALS:
    void sectionSelected(SettingsSection section);

private:
    QMap<SettingsSection, SettingsSidebarButton*> m_buttons;
    QList<SettingsSection> m_order;
};
