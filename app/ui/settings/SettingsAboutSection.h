// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class AppController;
class QLabel;
class QPushButton;

// The program's name, tagline, version and credits, with support and project links.
class SettingsAboutSection : public QWidget {
    Q_OBJECT
public:
    explicit SettingsAboutSection(AppController& controller, QWidget* parent = nullptr);

    // "Version <version> (<build>)".
    static QString versionLine();
    // The credits line, with the current year.
    static QString creditsLine();

    QPushButton* contactSupportButton() const { return m_contactSupport; }
    QPushButton* gitHubButton() const { return m_gitHub; }

private:
    AppController& m_controller;
    QPushButton* m_contactSupport = nullptr;
    QPushButton* m_gitHub = nullptr;
};
