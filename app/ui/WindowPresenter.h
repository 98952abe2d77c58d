// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>
#include <memory>

#include "app/ui/update/UpdatePresenter.h"

class AppController;
class QScreen;
class Updater;

// Opens the program's own windows: the settings and the permission guide. Each is built on first use
// and shown again as it was left, centred near the top of the screen under the pointer and brought to
// the front. It also opens the guide whenever the controller asks for it at launch, and, given the
// updater, the window that shows its checks.
class WindowPresenter : public QObject {
    Q_OBJECT
public:
    explicit WindowPresenter(AppController& controller, Updater* updater = nullptr, QObject* parent = nullptr);
    ~WindowPresenter() override;

    void showSettingsWindow();
    void showPermissionGuideWindow();

    // The windows once they have been built; nothing before.
    QWidget* settingsWindow() const { return m_settingsWindow; }
    QWidget* permissionWindow() const { return m_permissionWindow; }
    // The window of update checks once one has been shown; nothing without an updater.
    UpdateWindow* updateWindow() const { return m_updates ? m_updates->updateWindow() : nullptr; }

private:
    static QScreen* activeScreen();
    static void present(QWidget* window);

    AppController& m_controller;
    QPointer<QWidget> m_settingsWindow;
    QPointer<QWidget> m_permissionWindow;
    std::unique_ptr<UpdatePresenter> m_updates;
};
