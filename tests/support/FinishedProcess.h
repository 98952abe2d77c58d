// SPDX-License-Identifier: MIT
#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

// What a program run to its end left: its exit status (-1 when it crashed or was killed) and its output.
struct FinishedProcess {
    int status = -1;
    QString output;
    QString errors;
};

// Runs a program to its end in the environment given; it is killed when it runs longer than the time given.
FinishedProcess runToEnd(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment,
                         int timeoutMs = 20000);
