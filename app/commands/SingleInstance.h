// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QLockFile>
#include <QString>
#include <memory>

// Keeps one Lattica per user session. The running instance holds a lock file in the runtime folder
// ($XDG_RUNTIME_DIR) and, where a session bus exists, the bus name app.lattica.Lattica, through which
// later launches and the command line reach it.
class SingleInstance {
public:
    enum class Claim { Primary, AnotherIsRunning };

    SingleInstance() = default;
    // Lets go of what claim() took.
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    // The lock file's place: lattica.lock in the runtime folder.
    static QString lockPath();

    // Takes the lock, then the bus name when there is a bus.
    Claim claim();
    // Whether this instance owns the bus name.
    bool ownsBusName() const { return m_ownsBusName; }
    // Gives up the bus name, waiting until the bus has taken it back, and then the lock: a Lattica started
    // as soon as the lock is free finds the name free as well.
    void release();

private:
    std::unique_ptr<QLockFile> m_lock;
    bool m_ownsBusName = false;
};
