// SPDX-License-Identifier: MIT
#include "platform/gnome/GnomeRunningApplications.h"

#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <algorithm>

#include "platform/gnome/GnomeShellBridge.h"

namespace {

ApplicationPolicy policyOf(const GnomeShellWindow& window) {
    switch (static_cast<GnomeWindowType>(window.type)) {
        case GnomeWindowType::Desktop:
        case GnomeWindowType::Dock:
            return ApplicationPolicy::Prohibited;
        case GnomeWindowType::Normal:
        case GnomeWindowType::Dialog:
        case GnomeWindowType::ModalDialog:
            return window.skipTaskbar ? ApplicationPolicy::Accessory : ApplicationPolicy::Regular;
        default:
            return ApplicationPolicy::Accessory;
    }
}

// Regular before accessory before prohibited: an application is as present as its most present window.
ApplicationPolicy morePresent(ApplicationPolicy a, ApplicationPolicy b) {
    return static_cast<int>(a) < static_cast<int>(b) ? a : b;
}

// The process's start time in clock ticks since boot, from /proc; 0 when it cannot be read.
quint64 startTimeOf(pid_t pid) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QByteArray stat = file.readAll();
    // Fields after the command name (which may hold spaces) start after its closing parenthesis;
    // the start time is field 22, the 20th after it.
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    return fields.size() > 19 ? fields.at(19).toULongLong() : 0;
}

}  // namespace

QList<RunningApplication> GnomeRunningApplications::applicationsOf(const QList<GnomeShellWindow>& windows) {
    QMap<pid_t, RunningApplication> byPid;
    for (const GnomeShellWindow& window : windows) {
        if (window.pid <= 0) {
            continue;
        }
        auto found = byPid.find(window.pid);
        if (found == byPid.end()) {
            RunningApplication application;
            application.pid = window.pid;
            application.name = window.application
                                   ? window.application
                                   : (window.wmClass.isEmpty() ? std::nullopt : std::optional<QString>(window.wmClass));
            if (window.desktopId) {
                QString id = *window.desktopId;
                id.remove(QRegularExpression(QStringLiteral("\\.desktop$")));
                application.desktopId = id;
            }
            application.policy = policyOf(window);
            byPid.insert(window.pid, application);
        } else {
            found->policy = morePresent(found->policy, policyOf(window));
        }
    }
    QList<RunningApplication> applications = byPid.values();
    QMap<pid_t, quint64> started;
    for (const RunningApplication& application : applications) {
        started.insert(application.pid, startTimeOf(application.pid));
    }
    std::stable_sort(applications.begin(), applications.end(),
                     [&](const RunningApplication& a, const RunningApplication& b) {
                         return started.value(a.pid) < started.value(b.pid);
                     });
    return applications;
}

QList<RunningApplication> GnomeRunningApplications::runningApplications() {
    return applicationsOf(m_bridge.windows().value_or(QList<GnomeShellWindow>{}));
}

std::optional<RunningApplication> GnomeRunningApplications::frontmostApplication() {
    const std::optional<quint64> focused = m_bridge.focusedWindow();
    const QList<GnomeShellWindow> windows = m_bridge.windows().value_or(QList<GnomeShellWindow>{});
    const auto window = std::find_if(windows.cbegin(), windows.cend(),
                                     [&](const GnomeShellWindow& w) { return focused && w.id == *focused; });
    if (window == windows.cend() || window->pid <= 0) {
        return std::nullopt;
    }
    for (const RunningApplication& application : applicationsOf(windows)) {
        if (application.pid == window->pid) {
            return application;
        }
    }
    return std::nullopt;
}

QImage GnomeRunningApplications::iconForApplication(pid_t) {
    return {};
}
