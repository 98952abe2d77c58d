// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>

#include "app/ui/update/UpdateWindow.h"

class Updater;
struct UpdateCheckResult;

// Shows the updater's checks: progress and result of a check the user started, and an update that a
// background check found. The window is built on first use and kept.
class UpdatePresenter : public QObject {
    Q_OBJECT
public:
    explicit UpdatePresenter(Updater& updater, QObject* parent = nullptr);
    ~UpdatePresenter() override;

    // The window that shows checks, once one has been shown.
    UpdateWindow* updateWindow() const { return m_window.data(); }

private:
    UpdateWindow* ensureWindow();
    void showResult(const UpdateCheckResult& result, bool userInitiated);

    Updater& m_updater;
    QPointer<UpdateWindow> m_window;
};
