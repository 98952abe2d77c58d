// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QTemporaryDir>

#include "tests/support/PrivateSessionBus.h"

// The real program, run by a test: its own configuration folder and session bus, no update check over
// the network, its standard error kept for the test to read.
class LatticaProgram {
public:
    LatticaProgram();
    ~LatticaProgram();
    LatticaProgram(const LatticaProgram&) = delete;
    LatticaProgram& operator=(const LatticaProgram&) = delete;

    QProcessEnvironment& environment() { return m_environment; }
    QString configPath(const QString& relative = {}) const;
    // Starts the program and waits until it answers on its bus.
    bool start(int timeoutMs = 15000);
    // Calls a method of the program's bus interface, waiting at most the time given.
    QDBusMessage call(const QString& method, const QVariantList& arguments = {}, int timeoutMs = 30000);
    // Ends it with SIGTERM and waits; true when it ended.
    bool stop(int timeoutMs = 10000);

    QProcess& process() { return m_process; }
    qint64 pid() const { return m_process.processId(); }
    // Everything it wrote to standard error so far.
    QString errorOutput();

    // Resident memory (VmRSS) and its peak (VmHWM) in KiB; -1 when the process is gone.
    qint64 residentKiB() const { return statusField("VmRSS:"); }
    qint64 peakResidentKiB() const { return statusField("VmHWM:"); }
    // Sizes in bytes of the System V shared-memory segments mapped into the program; empty when it is gone.
    QList<qint64> sharedSegmentSizes() const;
    // Open file descriptors of the program.
    int openFileDescriptors() const;

private:
    qint64 statusField(const char* name) const;

    PrivateSessionBus m_bus;
    QTemporaryDir m_config;
    QTemporaryDir m_runtime;
    QProcessEnvironment m_environment;
    QProcess m_process;
    QByteArray m_errors;
};
