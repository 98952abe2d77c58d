// SPDX-License-Identifier: MIT
// The controller's launch sequence and what it opens outside the program.
#include <QUrl>
#include <QUrlQuery>

#include "BuildConfig.h"
#include "app/controller/AppController.h"
#include "app/update/Updater.h"
#include "platform/DesktopLauncher.h"
#include "platform/Platform.h"
#include "platform/RunningApplications.h"
#include "platform/SystemInfo.h"
#include "platform/TaskbarPresence.h"

namespace {

QString valueOrUnknown(const char* value) {
    const QString text = QString::fromUtf8(value);
    return text.isEmpty() ? QStringLiteral("Unknown") : text;
}

}  // namespace

void AppController::start() {
    Platform::services().taskbarPresence->setShownInTaskbar(m_dockIconVisible);
    refreshPermissions();
    refreshShortcutDisplays();
    if (m_updater && m_autoCheckForUpdatesEnabled) {
        m_updater->checkForUpdatesInBackground();
    }
    if (!m_permissionState.bothGranted()) {
        Q_EMIT permissionGuideRequested();
    }
}

void AppController::openProjectPage() {
    Platform::services().desktopLauncher->openUrl(QUrl(QString::fromLatin1(BuildConfig::kProjectUrl)));
}

QImage AppController::applicationIcon(pid_t pid) const {
    return Platform::services().runningApplications->iconForApplication(pid);
}

void AppController::contactSupport() {
    const QString version = valueOrUnknown(BuildConfig::kVersion);
    const QString build = valueOrUnknown(BuildConfig::kBuildNumber);
    const SystemDescription system = Platform::services().systemInfo->describe();
    const QString body = QStringLiteral("Please describe your issue here.\n\n---\nApp: Lattica\nVersion: ") + version +
                         QStringLiteral(" (") + build + QStringLiteral(")\nDistribution: ") + system.distribution +
                         QStringLiteral("\nKernel: ") + system.kernel + QStringLiteral("\nDesktop: ") + system.desktop +
                         QStringLiteral("\nSession: ") + system.sessionType + QStringLiteral("\nBackend: ") +
                         system.backend;

    QUrl url;
    url.setScheme(QStringLiteral("mailto"));
    url.setPath(QString::fromUtf8(BuildConfig::kSupportEmail));
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("subject"), QStringLiteral("Lattica Support"));
    query.addQueryItem(QStringLiteral("body"), body);
    url.setQuery(query);
    if (!url.isValid() || url.path().isEmpty()) {
        return;
    }
    Platform::services().desktopLauncher->openUrl(url);
}
