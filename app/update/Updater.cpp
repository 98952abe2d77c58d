// SPDX-License-Identifier: MIT
#include "app/update/Updater.h"

#include <QLoggingCategory>
#include <QSysInfo>

#include "BuildConfig.h"

// Debug lines only when asked for with QT_LOGGING_RULES="lattica.updates*.debug=true".
Q_LOGGING_CATEGORY(lcUpdater, "lattica.updates", QtInfoMsg)

Updater::Updater(QObject* parent)
    : QObject(parent),
      m_hostVersion(QString::fromLatin1(BuildConfig::kBuildNumber)),
      m_hostDisplayVersion(QString::fromLatin1(BuildConfig::kVersion)),
      m_systemVersion(runningSystemVersion()) {
    connect(&m_checker, &UpdateChecker::finished, this, [this](const UpdateCheckResult& result) {
        const bool userInitiated = m_userInitiated;
        m_userInitiated = false;
        Q_EMIT checkFinished(result, userInitiated);
    });
    setClock({});
    m_scheduleTimer.setInterval(kSchedulePollInterval);
    connect(&m_scheduleTimer, &QTimer::timeout, this, [this] { runScheduledCheckIfDue(); });
}

void Updater::setClock(Clock clock) {
    m_clock = clock ? std::move(clock) : Clock([] { return QDateTime::currentDateTimeUtc(); });
}

bool Updater::runScheduledCheckIfDue() {
    if (!m_automaticallyChecksForUpdates) {
        return false;
    }
    const QDateTime now = m_clock();
    // A clock set back since the last check also makes one due, rather than none for a long time.
    const bool due = !m_lastCheckStarted.isValid() || now < m_lastCheckStarted ||
                     m_lastCheckStarted.msecsTo(now) >=
                         std::chrono::duration_cast<std::chrono::milliseconds>(kAutomaticCheckInterval).count();
    if (!due) {
        return false;
    }
    qCDebug(lcUpdater) << "a day has passed since the last check";
    checkForUpdatesInBackground();
    return true;
}

void Updater::setAutomaticallyChecksForUpdates(bool enabled) {
    if (m_automaticallyChecksForUpdates == enabled) {
        return;
    }
    m_automaticallyChecksForUpdates = enabled;
    qCDebug(lcUpdater) << "automatic checks" << (enabled ? "on" : "off");
    if (enabled) {
        m_scheduleTimer.start();
    } else {
        m_scheduleTimer.stop();
    }
    Q_EMIT automaticallyChecksForUpdatesChanged(enabled);
}

void Updater::checkForUpdatesInBackground() {
    startCheck(false);
}

void Updater::checkForUpdates() {
    startCheck(true);
}

void Updater::startCheck(bool userInitiated) {
    if (userInitiated) {
        m_userInitiated = true;
        Q_EMIT userInitiatedCheckStarted();
    }
    if (m_checker.isRunning()) {
        qCDebug(lcUpdater) << "a check is already running; it reports to" << (m_userInitiated ? "the user" : "nobody");
        return;
    }
    m_lastCheckStarted = m_clock();
    qCDebug(lcUpdater) << (userInitiated ? "user-initiated" : "background") << "check of" << feedURL();
    m_checker.start({feedURL(), m_hostVersion, m_systemVersion});
}

void Updater::cancelCheck() {
    m_checker.cancel();
    m_userInitiated = false;
}

QUrl Updater::feedURL() const {
    return QUrl(m_feed.feedURLString());
}

void Updater::setHostVersions(const QString& version, const QString& displayVersion) {
    m_hostVersion = version;
    m_hostDisplayVersion = displayVersion;
}

QString Updater::runningSystemVersion() {
    // The distribution's release (for example 12 on Debian 12); the kernel's when there is none.
    const QString product = QSysInfo::productVersion();
    if (!product.isEmpty() && product != u"unknown") {
        return product;
    }
    return QSysInfo::kernelVersion();
}

QString UpdateFeed::feedURLString() const {
    const QString override = qEnvironmentVariable("LATTICA_APPCAST_URL");
    if (!override.isEmpty()) {
        return override;
    }
    return QString::fromLatin1(BuildConfig::kAppcastUrl);
}
