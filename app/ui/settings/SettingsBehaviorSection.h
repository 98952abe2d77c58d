// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class AppController;
class QLabel;
class SettingsToggle;

// Launch at login, showing in the taskbar and resizing on moves.
class SettingsBehaviorSection : public QWidget {
    Q_OBJECT
public:
    explicit SettingsBehaviorSection(AppController& controller, QWidget* parent = nullptr);

    SettingsToggle* launchAtLoginToggle() const { return m_launchAtLogin; }
    SettingsToggle* dockIconToggle() const { return m_dockIcon; }
    SettingsToggle* adjustWindowSizeToggle() const { return m_adjustWindowSize; }

private:
    // Shows the controller's values; a toggle whose change was refused falls back to the real state.
    void showValues();

    AppController& m_controller;
    SettingsToggle* m_launchAtLogin = nullptr;
    SettingsToggle* m_dockIcon = nullptr;
    SettingsToggle* m_adjustWindowSize = nullptr;
    QLabel* m_launchAtLoginProgram = nullptr;
};
