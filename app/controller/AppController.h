// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QTimer>
#include <QUuid>
#include <memory>
#include <optional>

#include "app/controller/PreviewBackdrop.h"
#include "app/displayshortcuts/DisplayShortcuts.h"
#include "app/model/Models.h"
#include "app/model/Preferences.h"

namespace KeyboardShortcuts {
class ActionShortcuts;
}

class Updater;

// The one controller at the centre of the program: it owns the published state that every view shows,
// the preferences, the display refresh, every move command and the per-display shortcut records.
// It lives on the main thread.
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
    Q_PROPERTY(QString unsavedPreferencesNotice READ unsavedPreferencesNotice NOTIFY unsavedPreferencesNoticeChanged)
    Q_PROPERTY(bool adjustWindowSizeToTargetScreen READ adjustWindowSizeToTargetScreen WRITE
                   setAdjustWindowSizeToTargetScreen NOTIFY adjustWindowSizeToTargetScreenChanged)

public:
    // Builds a controller from the installed platform services around the program's global shortcuts.
    // main() owns the program's one controller.
    AppController(KeyboardShortcuts::ActionShortcuts& shortcuts, Updater& updater, QObject* parent = nullptr);
    // The same, where a build without update checks gives no updater.
    AppController(KeyboardShortcuts::ActionShortcuts& shortcuts, Updater* updater, QObject* parent = nullptr);
    // The same with global shortcuts and an updater of its own (tests build one controller after another).
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
    // Said once when a change the user made could not be stored; empty while everything is stored.
    const QString& unsavedPreferencesNotice() const { return m_unsavedPreferencesNotice; }
    const QList<ShortcutDisplayItem>& connectedShortcutDisplays() const { return m_connectedShortcutDisplays; }
    const QList<ShortcutDisplayItem>& disconnectedShortcutDisplays() const { return m_disconnectedShortcutDisplays; }

    void setStatusMessage(const QString& message);
    // Publishes and stores the preference.
    void setAdjustWindowSizeToTargetScreen(bool adjust);

    // Preference setters of the settings window.
    void setDockIconVisible(bool visible);
    void setAutoCheckForUpdatesEnabled(bool enabled);
    void setLaunchAtLogin(bool enabled);
    // The program the login entry starts ("lattica", or a path); empty when the desktop has no entry for it.
    QString launchAtLoginProgram() const;

    // Display refresh cycle.
    void refreshPermissions();
    void refreshForMenuOpen();
    // Whether a view shows the preview pictures (the panel is open). While none does, the pictures are let
    // go, and captures (a move's refresh, one still running) keep none: the next opening takes new ones.
    void setPreviewsShown(bool shown);
    // The panel is about to show the previews over area (global space) and will tell when it has been
    // painted. Where the platform can, what lies there is captured now, before the panel covers it, and
    // the previews of this opening show it in the panel's place. Their capture then waits until the panel
    // has been painted (or a short time has passed): the server draws the panel first. With an empty area
    // (a window that a window manager may still move) or no picture of it, the monitors are captured at
    // once, before the panel is mapped.
    void previewsViewShowing(const QRectF& area);
    // The panel's first paint since previewsViewShowing has been drawn.
    void previewsViewPainted();
    // Readies the capture before an opening that would show the previews over area (global space; see
    // previewsViewShowing), so that the opening does not wait for it.
    void preparePreviews(const QRectF& area);

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
    // Whether any remembered display has a shortcut the user can press.
    bool hasAssignedDisplayShortcuts() const;
    // The shortcut name of a display: "moveFocusedWindowToDisplay." + its persistent identifier.
    static QString shortcutNameRawValue(const QString& persistentID);

    // The launch sequence, once the event loop runs: taskbar presence, permissions, shortcut displays,
    // the update check the preference asks for, and permissionGuideRequested() when a permission is missing.
    void start();
    // Opens a mail to support with the program's and the system's versions.
    void contactSupport();
    // Opens the project's web page in the user's browser.
    void openProjectPage();
    // The icon of a running application; a null image when it has none.
    QImage applicationIcon(pid_t pid) const;

    Preferences& preferences() { return m_preferences; }
    KeyboardShortcuts::ActionShortcuts& shortcuts() const { return m_shortcuts; }
    // The update checks; nothing in a build without them.
    Updater* updater() const { return m_updater; }

    // Visible for tests.
    QUuid previewLoadID() const { return m_previewLoadID; }
    const QList<ShortcutDisplayRecord>& shortcutDisplayRecords() const { return m_displayShortcuts.records(); }
    const QSet<QString>& registeredShortcutDisplayIDs() const { return m_displayShortcuts.registeredIDs(); }

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
    void unsavedPreferencesNoticeChanged();
    void connectedShortcutDisplaysChanged();
    void disconnectedShortcutDisplaysChanged();
    // The launch found a permission missing: the guide should be shown.
    void permissionGuideRequested();

private:
    // Uses the given shortcuts, or makes its own; uses the given updater, else ownUpdater, else none.
    AppController(KeyboardShortcuts::ActionShortcuts* shortcuts, std::unique_ptr<Updater> ownUpdater, Updater* updater,
                  QObject* parent);

    // Announces, stores and signals one published property.
    template <typename T, typename Signal>
    void publish(T& field, const T& value, Signal changed) {
        Q_EMIT objectWillChange();
        field = value;
        Q_EMIT(this->*changed)();
    }

    void setPermissionState(const PermissionState& state);
    // The same as refreshShortcutDisplays() with the connected displays read already.
    void refreshShortcutDisplays(const QList<DisplayDescriptor>& connected);
    void setDisplays(const QList<DisplaySnapshot>& displays);
    void setIsLoadingPreviews(bool loading);
    void applyCapturedSnapshots(const QList<DisplaySnapshot>& snapshots, const QUuid& token);
    // Starts the background capture of a refresh; its previews show the backdrop where it lies.
    void startCapture(const QList<DisplayDescriptor>& descriptors, const QUuid& token, const PreviewBackdrop& backdrop);
    // Starts the capture that waits for the panel, if one still waits.
    void startPendingCapture();
    // After a write of the preferences: a user's change that was not stored raises the notice, any
    // successful write clears it.
    void reviewPreferencesWrite(bool userChange);
    // Whether windows may be moved, asking again when the last answer was no.
    bool windowControlGranted();

    // Published properties.
    PermissionState m_permissionState;
    QList<DisplaySnapshot> m_displays;
    bool m_isLoadingPreviews = false;
    QString m_statusMessage;
    bool m_launchAtLoginEnabled = false;
    bool m_dockIconVisible = false;
    bool m_autoCheckForUpdatesEnabled = true;
    bool m_adjustWindowSizeToTargetScreen = false;
    QString m_unsavedPreferencesNotice;
    QList<ShortcutDisplayItem> m_connectedShortcutDisplays;
    QList<ShortcutDisplayItem> m_disconnectedShortcutDisplays;

    // Plain fields.
    std::unique_ptr<KeyboardShortcuts::ActionShortcuts> m_ownShortcuts;
    KeyboardShortcuts::ActionShortcuts& m_shortcuts;
    std::unique_ptr<Updater> m_ownUpdater;
    Updater* m_updater = nullptr;
    Preferences m_preferences;
    DisplayShortcuts m_displayShortcuts;
    QUuid m_previewLoadID;
    bool m_previewsShown = true;
    // A refresh's capture not started yet, because the panel may be about to show (see previewsViewShowing).
    struct PendingCapture {
        QList<DisplayDescriptor> descriptors;
        QUuid token;
    };
    std::optional<PendingCapture> m_pendingCapture;
    PreviewBackdrop m_backdrop;
    // How long a capture waits for the panel's paint at most; running while it waits.
    QTimer m_viewPaintBound;
    QMetaObject::Connection m_monitorsObserver;
};
