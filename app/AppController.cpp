#include "app/AppController.h"

#include <QCoreApplication>
#include <QThread>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/PermissionService.h"
#include "app/UpdaterService.h"
#include "platform/Autostart.h"
#include "platform/Monitors.h"
#include "platform/Platform.h"
#include "platform/SettingsStore.h"
#include "platform/TaskbarPresence.h"

AppController::AppController(QObject* parent) : AppController(nullptr, parent) {}

AppController::AppController(KeyboardShortcuts::ActionShortcuts& shortcuts, QObject* parent)
    : AppController(&shortcuts, parent) {}

AppController::AppController(KeyboardShortcuts::ActionShortcuts* shortcuts, QObject* parent)
    : QObject(parent),
      m_ownShortcuts(shortcuts == nullptr ? std::make_unique<KeyboardShortcuts::ActionShortcuts>() : nullptr),
      m_shortcuts(shortcuts == nullptr ? *m_ownShortcuts : *shortcuts) {
    const PlatformServices& platform = Platform::services();

    // 1. Both permission answers, screen recording first.
    m_permissionState = PermissionService::currentState();

    // 2. The other published properties start empty (see the member initialisers).

    // 3. Plain fields.
    m_settings = platform.settings;
    m_dockIconKey = QStringLiteral("dockIconVisible");
    m_autoCheckForUpdatesKey = QStringLiteral("autoCheckForUpdatesOnLaunch");
    m_adjustWindowSizeKey = QStringLiteral("adjustWindowSizeToTargetScreen");
    m_shortcutDisplayRecordsKey = QStringLiteral("shortcutDisplayRecords.v1");
    m_updaterService = &UpdaterService::shared();
    m_previewLoadID = QUuid::createUuid();

    // 4. Defaults, key by key; a value of any type counts as present.
    if (!m_settings->contains(m_dockIconKey)) {
        m_settings->setBool(m_dockIconKey, false);
    }
    if (!m_settings->contains(m_autoCheckForUpdatesKey)) {
        m_settings->setBool(m_autoCheckForUpdatesKey, true);
    }
    if (!m_settings->contains(m_adjustWindowSizeKey)) {
        m_settings->setBool(m_adjustWindowSizeKey, false);
    }

    // 5. The preferences.
    m_dockIconVisible = m_settings->boolValue(m_dockIconKey);
    m_autoCheckForUpdatesEnabled = m_settings->boolValue(m_autoCheckForUpdatesKey);
    m_adjustWindowSizeToTargetScreen = m_settings->boolValue(m_adjustWindowSizeKey);

    // 6. Launch at login is whatever the login-item service says.
    m_launchAtLoginEnabled = platform.autostart->status() == AutostartStatus::Enabled;

    // 7. The updater follows the preference.
    m_updaterService->updaterController()->updater()->setAutomaticallyChecksForUpdates(m_autoCheckForUpdatesEnabled);

    // 8.-9. The remembered displays, their lists and their hot-key handlers.
    m_shortcutDisplayRecords = loadShortcutDisplayRecords();
    refreshShortcutDisplays();

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
    m_settings->setBool(m_dockIconKey, visible);
    Platform::services().taskbarPresence->setShownInTaskbar(m_dockIconVisible);
}

void AppController::setAutoCheckForUpdatesEnabled(bool enabled) {
    publish(m_autoCheckForUpdatesEnabled, enabled, &AppController::autoCheckForUpdatesEnabledChanged);
    m_settings->setBool(m_autoCheckForUpdatesKey, enabled);
    m_updaterService->updaterController()->updater()->setAutomaticallyChecksForUpdates(enabled);
}

void AppController::setLaunchAtLogin(bool enabled) {
    Autostart* autostart = Platform::services().autostart;
    QString error;
    const bool succeeded = enabled ? autostart->enable(&error) : autostart->disable(&error);
    if (!succeeded) {
        setStatusMessage(QStringLiteral("Unable to update login item: ") + error);
    }
    publish(m_launchAtLoginEnabled, autostart->status() == AutostartStatus::Enabled,
            &AppController::launchAtLoginEnabledChanged);
}
