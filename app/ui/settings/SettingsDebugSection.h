// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class AppController;

// Developer tools for exercising permission flows. The sidebar does not list this section.
class SettingsDebugSection : public QWidget {
    Q_OBJECT
public:
    explicit SettingsDebugSection(AppController& controller, QWidget* parent = nullptr);

private:
    AppController& m_controller;
};
