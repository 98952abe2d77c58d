// SPDX-License-Identifier: MIT
#include "app/controller/AppController.h"

#include <QCoreApplication>
#include <QThread>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/permissions/PermissionService.h"
#include "app/update/Updater.h"
#include "platform/Autostart.h"
#include "platform/Monitors.h"
#include "platform/Platform.h"
#include "platform/TaskbarPresence.h"

AppController::AppController(QObject* parent) : AppController(nullptr, std::make_unique<Updater>(), nullptr, parent) {}

AppController::AppController(KeyboardShortcuts::ActionShortcuts& shortcuts, Updater& updater, QObject* parent)
    : AppController(&shortcuts, nullptr, &updater, parent) {}

AppController::AppController(KeyboardShortcuts::ActionShortcuts& shortcuts, Updater* updater, QObject* parent)
    : AppController(&shortcuts, nullptr, updater, parent) {}

AppController::AppController(KeyboardShortcuts::ActionShortcuts* shortcuts, std::unique_ptr<Updater> ownUpdater,
                             Updater* updater, QObject* parent)
    : QObject(parent),
      m_ownShortcuts(shortcuts == nullptr ? std::make_unique<KeyboardShortcuts::ActionShortcuts>() : nullptr),
      m_shortcuts(shortcuts == nullptr ? *m_ownShortcuts : *shortcuts),
      m_ownUpdater(std::move(ownUpdater)),
      m_updater(updater != nullptr ? updater : m_ownUpdater.get()),
      m_preferences(*Platform::services().settings),
      m_displayShortcuts(m_preferences, m_shortcuts) {
    const PlatformServices& platform = Platform::services();

    // 1. Both permission answers, screen recording first.
    m_permissionState = PermissionService::currentState();

    // 2. The other published properties start empty (see the member initialisers).

    // 3. Plain fields.
    m_previewLoadID = QUuid::createUuid();

    // 4. Defaults of the keys that hold nothing.
    m_preferences.storeMissingDefaults();

    // 5. The preferences.
    m_dockIconVisible = m_preferences.taskbarIconVisible();
    m_autoCheckForUpdatesEnabled = m_preferences.autoCheckForUpdates();
    m_adjustWindowSizeToTargetScreen = m_preferences.adjustWindowSize();

    // 6. Launch at login is whatever the login-item service says.
    m_launchAtLoginEnabled = platform.autostart->status() == AutostartStatus::Enabled;

    // 7. The updater follows the preference.
    if (m_updater) {
        m_updater->setAutomaticallyChecksForUpdates(m_autoCheckForUpdatesEnabled);
    }

    // 8.-9. The remembered displays, their lists and their hot-key handlers.
    m_displayShortcuts.load();
    connect(&m_displayShortcuts, &DisplayShortcuts::moveRequested, this, &AppController::moveFocusedWindow);
    refreshShortcutDisplays();
    // A recorded shortcut is a change of the preferences too.
    connect(&m_shortcuts, &KeyboardShortcuts::ActionShortcuts::shortcutChanged, this,
            [this] { reviewPreferencesWrite(true); });

    // A capture waits this long at most for the panel it was started for to be painted.
    m_viewPaintBound.setSingleShot(true);
    m_viewPaintBound.setInterval(50);
    connect(&m_viewPaintBound, &QTimer::timeout, this, &AppController::startPendingCapture);

    // 10. A display configuration change rebuilds only the shortcut lists.
    QPointer<AppController> weakSelf(this);
    m_monitorsObserver = connect(
        platform.monitors, &Monitors::changed, this,
        [weakSelf] {
            if (weakSelf) {
                weakSelf->refreshShortcutDisplays();
            }
        },
        Qt::QueuedConnection);
}

AppController::~AppController() {
    Q_ASSERT(QCoreApplication::instance() == nullptr ||
             QThread::currentThread() == QCoreApplication::instance()->thread());
}

void AppController::setStatusMessage(const QString& message) {
    publish(m_statusMessage, message, &AppController::statusMessageChanged);
}

void AppController::setAdjustWindowSizeToTargetScreen(bool adjust) {
    publish(m_adjustWindowSizeToTargetScreen, adjust, &AppController::adjustWindowSizeToTargetScreenChanged);
    m_preferences.setAdjustWindowSize(adjust);
    reviewPreferencesWrite(true);
}

void AppController::reviewPreferencesWrite(bool userChange) {
    const QString failure = m_preferences.writeFailure();
    QString notice;
    if (!failure.isEmpty()) {
        if (!userChange && m_unsavedPreferencesNotice.isEmpty()) {
            return;  // nothing the user changed is at stake
        }
        notice = tr("Your changes could not be saved: %1. They stay in effect until Lattica quits, and "
                    "saving is tried again with your next change.")
                     .arg(failure);
    }
    // The same notice again is not news: it is shown once, until a write succeeds.
    if (notice.isEmpty() != m_unsavedPreferencesNotice.isEmpty()) {
        publish(m_unsavedPreferencesNotice, notice, &AppController::unsavedPreferencesNoticeChanged);
    }
}

void AppController::setPermissionState(const PermissionState& state) {
    publish(m_permissionState, state, &AppController::permissionStateChanged);
}

void AppController::setDisplays(const QList<DisplaySnapshot>& displays) {
    publish(m_displays, displays, &AppController::displaysChanged);
}

void AppController::setIsLoadingPreviews(bool loading) {
    publish(m_isLoadingPreviews, loading, &AppController::isLoadingPreviewsChanged);
}

void AppController::setDockIconVisible(bool visible) {
    publish(m_dockIconVisible, visible, &AppController::dockIconVisibleChanged);
    m_preferences.setTaskbarIconVisible(visible);
    reviewPreferencesWrite(true);
    Platform::services().taskbarPresence->setShownInTaskbar(m_dockIconVisible);
}

void AppController::setAutoCheckForUpdatesEnabled(bool enabled) {
    publish(m_autoCheckForUpdatesEnabled, enabled, &AppController::autoCheckForUpdatesEnabledChanged);
    m_preferences.setAutoCheckForUpdates(enabled);
    reviewPreferencesWrite(true);
    if (m_updater) {
        m_updater->setAutomaticallyChecksForUpdates(enabled);
    }
}

QString AppController::launchAtLoginProgram() const {
    return Platform::services().autostart->program();
}

void AppController::setLaunchAtLogin(bool enabled) {
    Autostart* autostart = Platform::services().autostart;
    QString error;
    const bool succeeded = enabled ? autostart->enable(&error) : autostart->disable(&error);
    if (!succeeded) {
        setStatusMessage(tr("Unable to update login item: %1").arg(error));
    }
    publish(m_launchAtLoginEnabled, autostart->status() == AutostartStatus::Enabled,
            &AppController::launchAtLoginEnabledChanged);
}
