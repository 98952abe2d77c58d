// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include "platform/SystemInfo.h"

// The distribution from os-release, the kernel from uname, the desktop and session from the XDG
// session variables, and the backend this program was started with.
class LinuxSystemInfo : public SystemInfo {
public:
    explicit LinuxSystemInfo(QString backend);

    SystemDescription describe() override;

    // The distribution's name from the text of an os-release file: PRETTY_NAME, else NAME, else "Unknown".
    static QString distributionName(const QByteArray& osRelease);
    // "Linux 6.1.0", or "Unknown" when uname told nothing.
    static QString kernelLine(const QString& kernelName, const QString& kernelRelease);
    // The value, or "Unknown" when it is empty.
    static QString valueOrUnknown(const QString& value);

private:
    QString m_backend;
};
