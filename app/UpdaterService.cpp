#include "app/UpdaterService.h"

#include "BuildConfig.h"

void Updater::checkForUpdatesInBackground() {}

QString SparkleUpdaterDelegate::feedURLString() const {
    return QString::fromLatin1(BuildConfig::kAppcastUrl);
}

StandardUpdaterController::StandardUpdaterController(SparkleUpdaterDelegate* delegate, QObject* parent)
    : QObject(parent), m_delegate(delegate) {}

void StandardUpdaterController::checkForUpdates() {}

UpdaterService& UpdaterService::shared() {
    static UpdaterService* instance = new UpdaterService();
    return *instance;
}

UpdaterService::UpdaterService() : m_updaterController(&m_updaterDelegate) {}
