// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <functional>

#include "app/update/UpdateChecker.h"

// Supplies the update feed.
class UpdateFeed {
public:
    // The feed's address: the build's appcast, or LATTICA_APPCAST_URL when that is set.
    QString feedURLString() const;
};

// Checks the update feed for a newer release of the program. A check started while another runs
// joins it; a user-initiated check makes the running one report its result.
// While automatic checks are on, a background check runs whenever a day has passed since the last check.
class Updater : public QObject {
    Q_OBJECT
public:
    using Clock = std::function<QDateTime()>;

    static constexpr std::chrono::hours kAutomaticCheckInterval{24};
    // How often the schedule looks at the clock. The wall clock is compared, not a timer of a day, so
    // that time spent suspended counts.
    static constexpr std::chrono::minutes kSchedulePollInterval{30};

    explicit Updater(QObject* parent = nullptr);

    bool automaticallyChecksForUpdates() const { return m_automaticallyChecksForUpdates; }
    void setAutomaticallyChecksForUpdates(bool enabled);

    // Starts a background check when automatic checks are on and the last check started a day ago or
    // more (or none has run). The schedule's timer calls it. True when a check was started.
    bool runScheduledCheckIfDue();
    // The time source of the schedule; the system clock unless replaced.
    void setClock(Clock clock);
    // The timer that drives the schedule; it runs only while automatic checks are on.
    const QTimer& scheduleTimer() const { return m_scheduleTimer; }
    void setSchedulePollInterval(std::chrono::milliseconds interval) { m_scheduleTimer.setInterval(interval); }
    // When the last check started; invalid before the first.
    QDateTime lastCheckStarted() const { return m_lastCheckStarted; }

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

    UpdateFeed m_feed;
    UpdateChecker m_checker;
    bool m_automaticallyChecksForUpdates = false;
    bool m_userInitiated = false;
    Clock m_clock;
    QTimer m_scheduleTimer;
    QDateTime m_lastCheckStarted;
    QString m_hostVersion;
    QString m_hostDisplayVersion;
    QString m_systemVersion;
};
