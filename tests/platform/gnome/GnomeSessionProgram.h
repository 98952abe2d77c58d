// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/FinishedProcess.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

// The real program in the GNOME session, with a configuration folder of its own: one-off commands, and
// the tray program kept running.
class GnomeSessionProgram {
public:
    using Finished = FinishedProcess;

    explicit GnomeSessionProgram(QString config);
    ~GnomeSessionProgram();

    // Runs `lattica ARGUMENTS` to its end.
    Finished run(const QStringList& arguments) const;
    // The line of `lattica windows` for the window with the title: id, monitor, frame, pid, app, title.
    QStringList windowLine(const QString& title) const;

    // Starts the tray program, with the panel's paint trace on its error output.
    bool start();
    // Waits until the program has written the text on either output (or has ended).
    bool waitForOutput(const QString& text, int timeoutMs = 20000);
    // Waits until the program has written the text count times in all (or has ended).
    bool waitForCount(const QString& text, int count, int timeoutMs = 20000);
    // How often the program has written the text so far, with what it has written until now read.
    int countOf(const QString& text);
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    qint64 processId() const { return m_process.processId(); }
    QString output() const { return m_output; }

private:
    QProcessEnvironment environment() const;

    QString m_config;
    QProcess m_process;
    QString m_output;
};
