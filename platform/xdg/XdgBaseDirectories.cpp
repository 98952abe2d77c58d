// SPDX-License-Identifier: MIT
#include "platform/xdg/XdgBaseDirectories.h"

#include <pwd.h>
#include <unistd.h>

#include <QDir>

namespace {

// A usable folder: an absolute path that is not the root itself.
QString usable(const QString& path) {
    if (path.isEmpty() || !QDir::isAbsolutePath(path)) {
        return {};
    }
    const QString cleaned = QDir::cleanPath(path);
    return cleaned == QLatin1String("/") ? QString() : cleaned;
}

QString accountHome() {
    const passwd* account = ::getpwuid(::getuid());
    return account != nullptr && account->pw_dir != nullptr ? QString::fromLocal8Bit(account->pw_dir) : QString();
}

}  // namespace

QString XdgBaseDirectories::home() {
    const QString fromEnvironment = usable(qEnvironmentVariable("HOME"));
    return !fromEnvironment.isEmpty() ? fromEnvironment : usable(accountHome());
}

QString XdgBaseDirectories::configHome() {
    const QString configured = usable(qEnvironmentVariable("XDG_CONFIG_HOME"));
    if (!configured.isEmpty()) {
        return configured;
    }
    const QString base = home();
    return base.isEmpty() ? QString() : base + QStringLiteral("/.config");
}
