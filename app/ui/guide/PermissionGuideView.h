// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <functional>

#include "platform/SessionCheck.h"

class AppController;
class QLabel;
class QVBoxLayout;

// The content of the permission window: both capabilities with their state and what limits them, a
// request (a new check) and a help button for each, a re-check, and Continue, which closes the window
// once both can be used.
class PermissionGuideView : public QWidget {
    Q_OBJECT
public:
    explicit PermissionGuideView(AppController& controller, QWidget* parent = nullptr);

private:
    // One step row: its number, icon and title, the capability's state and explanation, a prominent
    // request button and a plain button that opens the help page.
    QWidget* guideStep(const QString& title, qint64 stepNumber, const QString& stepSymbol, const CapabilityCheck& check,
                       const QString& requestTitle, const QString& requestSymbol, const QString& openSettingsTitle,
                       const std::function<void()>& requestAction, const std::function<void()>& openSettingsAction);
    void rebuildSteps();
    void continueIfGranted();

    AppController& m_controller;
    QVBoxLayout* m_stepsLayout = nullptr;
    QLabel* m_statusLabel = nullptr;
};
