// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class AppController;
class QPushButton;
class SettingsToggle;

// The automatic-check preference and the manual "Check for Updates" button.
class SettingsUpdatesSection : public QWidget {
    Q_OBJECT
public:
    explicit SettingsUpdatesSection(AppController& controller, QWidget* parent = nullptr);

    SettingsToggle* automaticCheckToggle() const { return m_automaticCheck; }
    QPushButton* checkButton() const { return m_checkButton; }

private:
    void showValue();

    AppController& m_controller;
    SettingsToggle* m_automaticCheck = nullptr;
    QPushButton* m_checkButton = nullptr;
};
