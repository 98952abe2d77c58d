// SPDX-License-Identifier: MIT
#include "tests/support/FinishedProcess.h"

#include <QProcess>

FinishedProcess runToEnd(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment,
                         int timeoutMs) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
    }
    const bool ended = process.exitStatus() == QProcess::NormalExit && process.error() != QProcess::FailedToStart;
    return {ended ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}
