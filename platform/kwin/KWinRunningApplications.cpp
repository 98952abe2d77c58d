// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinRunningApplications.h"

#include <signal.h>

#include <QFileInfo>
#include <QGuiApplication>
#include <QHash>
#include <QIcon>
#include <algorithm>
#include <cerrno>

#include "platform/kwin/KWinApplicationNames.h"
#include "platform/kwin/KWinBridge.h"
#include "platform/x11/X11WindowOwners.h"

namespace {

constexpr int kIconSize = 64;

ApplicationPolicy policyOf(const KWinWindow& window) {
    if (window.desktopWindow || window.dock) {
        return ApplicationPolicy::Prohibited;
    }
    if ((window.normal || window.dialog) && !window.skipTaskbar) {
        return ApplicationPolicy::Regular;
    }
    return ApplicationPolicy::Accessory;
}

// Regular beats accessory beats prohibited.
ApplicationPolicy stronger(ApplicationPolicy a, ApplicationPolicy b) {
    auto rank = [](ApplicationPolicy policy) {
        return policy == ApplicationPolicy::Regular ? 2 : policy == ApplicationPolicy::Accessory ? 1 : 0;
    };
    return rank(a) >= rank(b) ? a : b;
}

bool processIsGone(pid_t pid) {
    return ::kill(pid, 0) != 0 && errno == ESRCH;
}

}  // namespace

QList<RunningApplication> KWinRunningApplications::runningApplications() {
    const KWinState state = m_bridge.state();
    QList<RunningApplication> applications;
    QHash<pid_t, qsizetype> indexOf;
    QHash<pid_t, int> frontStacking;
    for (const KWinWindow& window : state.windows) {
        if (window.pid <= 0) {
            continue;
        }
        auto found = indexOf.find(window.pid);
        if (found == indexOf.end()) {
            RunningApplication application;
            application.pid = window.pid;
            application.policy = policyOf(window);
            application.terminated = processIsGone(window.pid);
            indexOf.insert(window.pid, applications.size());
            applications.append(application);
            frontStacking.insert(window.pid, window.stacking - 1);
            found = indexOf.find(window.pid);
        }
        RunningApplication& application = applications[*found];
        application.policy = stronger(application.policy, policyOf(window));
        // The name and desktop entry come from the application's front-most window.
        if (window.stacking > frontStacking.value(window.pid)) {
            frontStacking.insert(window.pid, window.stacking);
            application.name = m_names.name(window);
            const auto entry = m_names.entry(window);
            application.desktopId = entry ? std::optional<QString>(entry->id) : std::nullopt;
        }
    }
    std::stable_sort(applications.begin(), applications.end(),
                     [](const RunningApplication& a, const RunningApplication& b) {
                         const quint64 startA = X11WindowOwners::processStartTime(a.pid).value_or(0);
                         const quint64 startB = X11WindowOwners::processStartTime(b.pid).value_or(0);
                         return startA != startB ? startA < startB : a.pid < b.pid;
                     });
    return applications;
}

std::optional<RunningApplication> KWinRunningApplications::frontmostApplication() {
    const KWinState state = m_bridge.state();
    const KWinWindow* active = state.window(state.activeUuid);
    if (active == nullptr || active->pid <= 0) {
        return std::nullopt;
    }
    for (const RunningApplication& application : runningApplications()) {
        if (application.pid == active->pid) {
            return application;
        }
    }
    return std::nullopt;
}

QImage KWinRunningApplications::iconForApplication(pid_t pid) {
    const KWinState state = m_bridge.state();
    for (const KWinWindow& window : state.windows) {
        if (window.pid != pid) {
            continue;
        }
        const auto entry = m_names.entry(window);
        if (!entry || entry->icon.isEmpty()) {
            continue;
        }
        if (QFileInfo(entry->icon).isAbsolute()) {
            const QImage image(entry->icon);
            if (!image.isNull()) {
                return image;
            }
        } else if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr) {
            const QIcon icon = QIcon::fromTheme(entry->icon);
            if (!icon.isNull()) {
                return icon.pixmap(kIconSize, kIconSize).toImage();
            }
        }
    }
    return {};
}
