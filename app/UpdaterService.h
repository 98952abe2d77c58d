#pragma once

#include <QObject>
#include <QString>

// Checks for a newer release of the program.
class Updater : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    bool automaticallyChecksForUpdates() const { return m_automaticallyChecksForUpdates; }
    void setAutomaticallyChecksForUpdates(bool enabled) { m_automaticallyChecksForUpdates = enabled; }
    // A silent check: shows something only when a newer version exists.
    void checkForUpdatesInBackground();

private:
    bool m_automaticallyChecksForUpdates = false;
};

// Supplies the update feed.
class SparkleUpdaterDelegate {
public:
    QString feedURLString() const;
};

// Owns the updater and its user-facing checks.
class StandardUpdaterController : public QObject {
    Q_OBJECT
public:
    explicit StandardUpdaterController(SparkleUpdaterDelegate* delegate, QObject* parent = nullptr);
    Updater* updater() { return &m_updater; }
    // A user-initiated check with progress and result.
    void checkForUpdates();

private:
    SparkleUpdaterDelegate* m_delegate;
    Updater m_updater;
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
