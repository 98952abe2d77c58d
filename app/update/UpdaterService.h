#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>

#include "app/update/UpdateChecker.h"

class SparkleUpdaterDelegate;
class UpdateWindow;

// Checks the update feed for a newer release of the program. A check started while another runs
// joins it; a user-initiated check makes the running one report its result.
class Updater : public QObject {
    Q_OBJECT
public:
    explicit Updater(SparkleUpdaterDelegate* delegate, QObject* parent = nullptr);

    bool automaticallyChecksForUpdates() const { return m_automaticallyChecksForUpdates; }
    void setAutomaticallyChecksForUpdates(bool enabled);

    // A silent check: reports something only when a newer version exists.
    void checkForUpdatesInBackground();
    // A check whose progress and result are shown, whatever it finds.
    void checkForUpdates();
    // Abandons the running check without a result.
    void cancelCheck();
    bool sessionInProgress() const { return m_checker.isRunning(); }

    QUrl feedURL() const;
    // The running program's build, compared with each release's machine version.
    QString hostVersion() const { return m_hostVersion; }
    // The running program's version as people read it.
    QString hostDisplayVersion() const { return m_hostDisplayVersion; }
    // The running system's version, compared with each release's minimum system version.
    QString systemVersion() const { return m_systemVersion; }
    void setHostVersions(const QString& version, const QString& displayVersion);
    void setSystemVersion(const QString& version) { m_systemVersion = version; }
    void setCheckTimeout(std::chrono::milliseconds timeout) { m_checker.setTimeout(timeout); }

    // The version of the operating system this process runs on.
    static QString runningSystemVersion();

Q_SIGNALS:
    void automaticallyChecksForUpdatesChanged(bool enabled);
    void userInitiatedCheckStarted();
    void checkFinished(const UpdateCheckResult& result, bool userInitiated);

private:
    void startCheck(bool userInitiated);

    SparkleUpdaterDelegate* m_delegate;
    UpdateChecker m_checker;
    bool m_automaticallyChecksForUpdates = false;
    bool m_userInitiated = false;
    QString m_hostVersion;
    QString m_hostDisplayVersion;
    QString m_systemVersion;
};

// Supplies the update feed.
class SparkleUpdaterDelegate {
public:
    // The feed's address: the build's appcast, or LATTICA_APPCAST_URL when that is set.
    QString feedURLString() const;
};

// Owns the updater and shows its checks: progress and result of a user-initiated check, and a found
// update after a background one.
class StandardUpdaterController : public QObject {
    Q_OBJECT
public:
    explicit StandardUpdaterController(SparkleUpdaterDelegate* delegate, QObject* parent = nullptr);
    ~StandardUpdaterController() override;

    Updater* updater() { return &m_updater; }
    // A user-initiated check with progress and result.
    void checkForUpdates();
    // The window that shows checks, once one has been shown.
    UpdateWindow* updateWindow() const;

private:
    UpdateWindow* ensureWindow();
    void showResult(const UpdateCheckResult& result, bool userInitiated);

    SparkleUpdaterDelegate* m_delegate;
    Updater m_updater;
    QPointer<UpdateWindow> m_window;
};

// The program's one update service.
class UpdaterService : public QObject {
    Q_OBJECT
public:
    static UpdaterService& shared();
    SparkleUpdaterDelegate* updaterDelegate() { return &m_updaterDelegate; }
    StandardUpdaterController* updaterController() { return &m_updaterController; }

private:
    UpdaterService();
    SparkleUpdaterDelegate m_updaterDelegate;
    StandardUpdaterController m_updaterController;
};
