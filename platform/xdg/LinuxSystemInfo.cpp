// SPDX-License-Identifier: MIT
#include "platform/xdg/LinuxSystemInfo.h"

#include <sys/utsname.h>

#include <QFile>

namespace {

QString osReleaseValue(const QByteArray& text, const QByteArray& key) {
    for (const QByteArray& rawLine : text.split('\n')) {
        const QByteArray line = rawLine.trimmed();
        if (!line.startsWith(key + '=')) {
            continue;
        }
        QByteArray value = line.mid(key.size() + 1);
        if (value.size() >= 2 && (value.startsWith('"') || value.startsWith('\'')) && value.endsWith(value.at(0))) {
            value = value.mid(1, value.size() - 2);
        }
        return QString::fromUtf8(value).replace(QStringLiteral("\\\""), QStringLiteral("\""));
    }
    return {};
}

QByteArray readOsRelease() {
    for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
        QFile file(QString::fromLatin1(path));
        if (file.open(QIODevice::ReadOnly)) {
            return file.readAll();
        }
    }
    return {};
}

}  // namespace

LinuxSystemInfo::LinuxSystemInfo(QString backend) : m_backend(std::move(backend)) {}

QString LinuxSystemInfo::valueOrUnknown(const QString& value) {
    return value.trimmed().isEmpty() ? QStringLiteral("Unknown") : value.trimmed();
}

QString LinuxSystemInfo::distributionName(const QByteArray& osRelease) {
    const QString pretty = osReleaseValue(osRelease, "PRETTY_NAME");
    return valueOrUnknown(pretty.isEmpty() ? osReleaseValue(osRelease, "NAME") : pretty);
}

QString LinuxSystemInfo::kernelLine(const QString& kernelName, const QString& kernelRelease) {
    return valueOrUnknown(kernelName + QLatin1Char(' ') + kernelRelease);
}

SystemDescription LinuxSystemInfo::describe() {
    SystemDescription description;
    description.distribution = distributionName(readOsRelease());
    struct utsname system {};
    description.kernel = ::uname(&system) == 0
                             ? kernelLine(QString::fromUtf8(system.sysname), QString::fromUtf8(system.release))
                             : kernelLine({}, {});
    description.desktop = valueOrUnknown(qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
    description.sessionType = valueOrUnknown(qEnvironmentVariable("XDG_SESSION_TYPE"));
    description.backend = valueOrUnknown(m_backend);
    return description;
}
