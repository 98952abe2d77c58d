#pragma once

#include <QWidget>
#include <functional>

class AppController;
class QLabel;
class QVBoxLayout;

// The content of the permission window: both grants with their state, a request and a settings
// button for each, a re-check, and Continue, which closes the window once both grants are present.
class PermissionGuideView : public QWidget {
    Q_OBJECT
public:
    explicit PermissionGuideView(AppController& controller, QWidget* parent = nullptr);

private:
    // One step row: its number, icon and title, the grant's state, a prominent request button and a
    // plain button that opens the settings page.
    QWidget* guideStep(const QString& title, qint64 stepNumber, const QString& stepSymbol, bool granted,
                       const QString& requestTitle, const QString& requestSymbol, const QString& openSettingsTitle,
                       const std::function<void()>& requestAction, const std::function<void()>& openSettingsAction);
    void rebuildSteps();
    void continueIfGranted();

    AppController& m_controller;
    QVBoxLayout* m_stepsLayout = nullptr;
    QLabel* m_statusLabel = nullptr;
};
