// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractButton>

#include "app/ui/settings/SettingsSection.h"

// One entry of the settings sidebar: the section's symbol and title; the selected entry sits on a
// rounded highlight.
class SettingsSidebarButton : public QAbstractButton {
    Q_OBJECT
public:
    explicit SettingsSidebarButton(SettingsSection section, QWidget* parent = nullptr);

    SettingsSection section() const { return m_section; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    SettingsSection m_section;
    bool m_hovered = false;
};
