// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinApplicationNames.h"

#include <QFile>

std::optional<X11WindowDesktopEntries::Entry> KWinApplicationNames::entry(const KWinWindow& window) {
    if (!window.desktopFile.isEmpty()) {
        if (auto found = m_entries.find(window.desktopFile.toUtf8(), window.desktopFile.toUtf8())) {
            return found;
        }
    }
    if (!window.resourceClass.isEmpty() || !window.resourceName.isEmpty()) {
        return m_entries.find(window.resourceName.toUtf8(), window.resourceClass.toUtf8());
    }
    return std::nullopt;
}

std::optional<QString> KWinApplicationNames::name(const KWinWindow& window) {
    if (const auto found = entry(window); found && !found->name.isEmpty()) {
        return found->name;
    }
    if (!window.resourceClass.isEmpty()) {
        return window.resourceClass;
    }
    if (!window.resourceName.isEmpty()) {
        return window.resourceName;
    }
    if (window.pid > 0) {
        QFile comm(QStringLiteral("/proc/%1/comm").arg(window.pid));
        if (comm.open(QIODevice::ReadOnly)) {
            const QString name = QString::fromUtf8(comm.readAll()).trimmed();
            if (!name.isEmpty()) {
                return name;
            }
        }
    }
    return std::nullopt;
}
