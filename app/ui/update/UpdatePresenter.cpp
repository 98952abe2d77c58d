// SPDX-License-Identifier: MIT
#include "app/ui/update/UpdatePresenter.h"

#include <QLoggingCategory>

#include "app/update/Updater.h"
#include "platform/DesktopLauncher.h"
#include "platform/Platform.h"

Q_DECLARE_LOGGING_CATEGORY(lcUpdater)

UpdatePresenter::UpdatePresenter(Updater& updater, QObject* parent) : QObject(parent), m_updater(updater) {
    connect(&m_updater, &Updater::userInitiatedCheckStarted, this, [this] {
        UpdateWindow* window = ensureWindow();
        window->showChecking();
        window->present();
    });
    connect(&m_updater, &Updater::checkFinished, this,
            [this](const UpdateCheckResult& result, bool userInitiated) { showResult(result, userInitiated); });
}

UpdatePresenter::~UpdatePresenter() {
    delete m_window;
}

UpdateWindow* UpdatePresenter::ensureWindow() {
    if (!m_window) {
        m_window = new UpdateWindow();
        connect(m_window, &UpdateWindow::cancelRequested, this, [this] { m_updater.cancelCheck(); });
        connect(m_window, &UpdateWindow::downloadRequested, this, [](const QUrl& url) {
            if (DesktopLauncher* launcher = Platform::services().desktopLauncher) {
                launcher->openUrl(url);
            }
        });
    }
    return m_window;
}

void UpdatePresenter::showResult(const UpdateCheckResult& result, bool userInitiated) {
    const QString current = m_updater.hostDisplayVersion();
    switch (result.outcome) {
        case UpdateCheckResult::Outcome::UpdateAvailable:
            ensureWindow()->showUpdateFound(*result.item, current);
            break;
        case UpdateCheckResult::Outcome::UpToDate:
            if (!userInitiated) {
                return;
            }
            ensureWindow()->showUpToDate(current);
            break;
        case UpdateCheckResult::Outcome::Failed:
            if (!userInitiated) {
                qCDebug(lcUpdater) << "background check failed:" << result.errorMessage;
                return;
            }
            ensureWindow()->showError(result.errorMessage);
            break;
    }
    m_window->present();
}
