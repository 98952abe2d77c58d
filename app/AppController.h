#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QUuid>
#include <QWidget>
#include <memory>

#include "app/Models.h"

namespace KeyboardShortcuts {
class ActionShortcuts;
}

class QScreen;
class UpdaterService;
class SettingsStore;

// The one controller at the centre of the program: it owns the published state that every view shows,
// the preferences, the display refresh, every move command, the per-display shortcut records and the
// program's windows. It lives on the main thread.
//
// Published properties announce a change with objectWillChange() before the new value is stored and
// with their own change signal after it.
class AppController : public QObject {
    Q_OBJECT
    Q_PROPERTY(PermissionState permissionState READ permissionState NOTIFY permissionStateChanged)
    Q_PROPERTY(QList<DisplaySnapshot> displays READ displays NOTIFY displaysChanged)
    Q_PROPERTY(bool isLoadingPreviews READ isLoadingPreviews NOTIFY isLoadingPreviewsChanged)
    Q_PROPERTY(QString statusMessage READ statusMessage WRITE setStatusMessage NOTIFY statusMessageChanged)
    Q_PROPERTY(bool launchAtLoginEnabled READ launchAtLoginEnabled NOTIFY launchAtLoginEnabledChanged)
    Q_PROPERTY(bool dockIconVisible READ dockIconVisible NOTIFY dockIconVisibleChanged)
    Q_PROPERTY(bool autoCheckForUpdatesEnabled READ autoCheckForUpdatesEnabled NOTIFY autoCheckForUpdatesEnabledChanged)
    Q_PROPERTY(bool adjustWindowSizeToTargetScreen READ adjustWindowSizeToTargetScreen WRITE
                   setAdjustWindowSizeToTargetScreen NOTIFY adjustWindowSizeToTargetScreenChanged)

public:
    // Builds a controller from the installed platform services around the program's global shortcuts.
    explicit AppController(KeyboardShortcuts::ActionShortcuts& shortcuts, QObject* parent = nullptr);
    // The same with global shortcuts of its own (tests build one controller after another).
    explicit AppController(QObject* parent = nullptr);
    ~AppController() override;

    // Published state.
    PermissionState permissionState() const { return m_permissionState; }
    const QList<DisplaySnapshot>& displays() const { return m_displays; }
    bool isLoadingPreviews() const { return m_isLoadingPreviews; }
    const QString& statusMessage() const { return m_statusMessage; }
    bool launchAtLoginEnabled() const { return m_launchAtLoginEnabled; }
    bool dockIconVisible() const { return m_dockIconVisible; }
    bool autoCheckForUpdatesEnabled() const { return m_autoCheckForUpdatesEnabled; }
    bool adjustWindowSizeToTargetScreen() const { return m_adjustWindowSizeToTargetScreen; }
    const QList<ShortcutDisplayItem>& connectedShortcutDisplays() const { return m_connectedShortcutDisplays; }
    const QList<ShortcutDisplayItem>& disconnectedShortcutDisplays() const { return m_disconnectedShortcutDisplays; }

    void setStatusMessage(const QString& message);
    // Publishes the value only; the settings toggle stores it under adjustWindowSizeKey() itself.
    void setAdjustWindowSizeToTargetScreen(bool adjust);

    // Preference setters of the settings window.
    void setDockIconVisible(bool visible);
    void setAutoCheckForUpdatesEnabled(bool enabled);
    void setLaunchAtLogin(bool enabled);

    // Display refresh cycle.
    void refreshPermissions();
    void refreshForMenuOpen();

    // Move commands; each reports its outcome in statusMessage.
    void moveWindows(const DisplaySnapshot& source, const DisplaySnapshot& destination);
    void moveWindows(const DisplayAppGroup& group, const DisplaySnapshot& source, const DisplaySnapshot& destination);
    void moveFocusedWindow(const QString& displayPersistentID);
    void requestAccessibilityPermission();
    // Asks for screen capture access and reports that it was asked.
    void requestScreenRecordingPermission();

    // Per-display shortcut records.
    void refreshShortcutDisplays();
    void deleteDisconnectedShortcutDisplay(const QString& persistentID);
    // The shortcut name of a display: "moveFocusedWindowToDisplay." + its persistent identifier.
    static QString shortcutNameRawValue(const QString& persistentID);

    // Application lifecycle and windows.
    void applicationDidFinishLaunching();
    void showSettingsWindow();
    void showPermissionGuideWindow();
    void contactSupport();
    QWidget* settingsWindow() const { return m_settingsWindow; }
    QWidget* permissionWindow() const { return m_permissionWindow; }

    // Keys of the application's preferences.
    const QString& dockIconKey() const { return m_dockIconKey; }
    const QString& autoCheckForUpdatesKey() const { return m_autoCheckForUpdatesKey; }
    const QString& adjustWindowSizeKey() const { return m_adjustWindowSizeKey; }
    const QString& shortcutDisplayRecordsKey() const { return m_shortcutDisplayRecordsKey; }
    SettingsStore* settingsStore() const { return m_settings; }
    KeyboardShortcuts::ActionShortcuts& shortcuts() const { return m_shortcuts; }

    // Visible for tests.
    QUuid previewLoadID() const { return m_previewLoadID; }
    const QList<ShortcutDisplayRecord>& shortcutDisplayRecords() const { return m_shortcutDisplayRecords; }
    const QSet<QString>& registeredShortcutDisplayIDs() const { return m_registeredShortcutDisplayIDs; }

Q_SIGNALS:
    void objectWillChange();
    void permissionStateChanged();
    void displaysChanged();
    void isLoadingPreviewsChanged();
    void statusMessageChanged();
    void launchAtLoginEnabledChanged();
    void dockIconVisibleChanged();
    void autoCheckForUpdatesEnabledChanged();
    void adjustWindowSizeToTargetScreenChanged();
    void connectedShortcutDisplaysChanged();
    void disconnectedShortcutDisplaysChanged();

private:
    // Uses the given shortcuts, or makes its own when given none.
    AppController(KeyboardShortcuts::ActionShortcuts* shortcuts, QObject* parent);

    // Announces, stores and signals one published property.
    template <typename T, typename Signal>
    void publish(T& field, const T& value, Signal changed) {
        Q_EMIT objectWillChange();
        field = value;
        Q_EMIT(this->*changed)();
    }

    void setPermissionState(const PermissionState& state);
    void setDisplays(const QList<DisplaySnapshot>& displays);
    void setIsLoadingPreviews(bool loading);
    void applyCapturedSnapshots(const QList<DisplaySnapshot>& snapshots, const QUuid& token);

    QList<ShortcutDisplayRecord> loadShortcutDisplayRecords() const;
    void saveShortcutDisplayRecords();
    void registerShortcutHandlersIfNeeded();

    QScreen* activeScreen() const;
    void presentWindow(QWidget* window);

    // Published properties.
    PermissionState m_permissionState;
    QList<DisplaySnapshot> m_displays;
    bool m_isLoadingPreviews = false;
    QString m_statusMessage;
    bool m_launchAtLoginEnabled = false;
    bool m_dockIconVisible = false;
    bool m_autoCheckForUpdatesEnabled = true;
    bool m_adjustWindowSizeToTargetScreen = false;
    QList<ShortcutDisplayItem> m_connectedShortcutDisplays;
    QList<ShortcutDisplayItem> m_disconnectedShortcutDisplays;

    // Plain fields.
    std::unique_ptr<KeyboardShortcuts::ActionShortcuts> m_ownShortcuts;
    KeyboardShortcuts::ActionShortcuts& m_shortcuts;
    SettingsStore* m_settings = nullptr;
    QString m_dockIconKey;
    QString m_autoCheckForUpdatesKey;
    QString m_adjustWindowSizeKey;
    QString m_shortcutDisplayRecordsKey;
    UpdaterService* m_updaterService = nullptr;
    QPointer<QWidget> m_settingsWindow;
    QPointer<QWidget> m_permissionWindow;
    QUuid m_previewLoadID;
    QList<ShortcutDisplayRecord> m_shortcutDisplayRecords;
    QSet<QString> m_registeredShortcutDisplayIDs;
    QMetaObject::Connection m_monitorsObserver;
};
