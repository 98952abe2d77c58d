// The controller's launch sequence and its two windows.
#include <QCursor>
#include <QGuiApplication>
#include <QLayout>
#include <QScreen>
#include <QUrl>
#include <QUrlQuery>
#include <QVBoxLayout>

#include "BuildConfig.h"
#include "app/controller/AppController.h"
#include "app/ui/guide/PermissionGuideView.h"
#include "app/ui/settings/SettingsView.h"
#include "app/update/UpdaterService.h"
#include "platform/DesktopLauncher.h"
#include "platform/ForegroundActivation.h"
#include "platform/Platform.h"
#include "platform/SystemInfo.h"
#include "platform/TaskbarPresence.h"

namespace {

constexpr QSize kSettingsWindowSize(760, 540);
constexpr QSize kPermissionWindowSize(640, 480);
// Distance of a presented window from the top of the screen's usable area.
constexpr int kTopInset = 24;

QString valueOrUnknown(const char* value) {
    const QString text = QString::fromUtf8(value);
    return text.isEmpty() ? QStringLiteral("Unknown") : text;
}

// A window that hosts one view; closing it only hides it, so it can be shown again as it was.
QWidget* makeHostWindow(QWidget* content, const QSize& size, const QString& title) {
    auto* window = new QWidget(
        nullptr, Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::WindowMinimizeButtonHint);
    window->setAttribute(Qt::WA_DeleteOnClose, false);
    window->setWindowTitle(title);
    auto* layout = new QVBoxLayout(window);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(content);
    window->resize(size);
    return window;
}

}  // namespace

void AppController::applicationDidFinishLaunching() {
    Platform::services().taskbarPresence->setShownInTaskbar(m_dockIconVisible);
    refreshPermissions();
    refreshShortcutDisplays();
    if (m_autoCheckForUpdatesEnabled) {
        m_updaterService->updaterController()->updater()->checkForUpdatesInBackground();
    }
    if (!m_permissionState.bothGranted()) {
        showPermissionGuideWindow();
    }
}

void AppController::showSettingsWindow() {
    if (!m_settingsWindow) {
        auto* content = new SettingsView(*this);
        content->setSelectedSection(SettingsSection::Permissions);
        // The settings are laid out for this size; the window never fits itself below it.
        content->setMinimumSize(kSettingsWindowSize);
        m_settingsWindow = makeHostWindow(content, kSettingsWindowSize, QString());
        m_settingsWindow->setObjectName(QStringLiteral("settingsWindow"));
    }
    presentWindow(m_settingsWindow);
}

void AppController::showPermissionGuideWindow() {
    if (!m_permissionWindow) {
        m_permissionWindow = makeHostWindow(new PermissionGuideView(*this), kPermissionWindowSize,
                                            QStringLiteral("Grant Required Permissions"));
        m_permissionWindow->setObjectName(QStringLiteral("permissionWindow"));
    }
    presentWindow(m_permissionWindow);
}

void AppController::presentWindow(QWidget* window) {
    if (QLayout* layout = window->layout()) {
        layout->activate();
    }
    const QSize fitting = window->sizeHint();
    if (fitting.width() > 0 && fitting.height() > 0) {
        window->resize(fitting);
    }

    if (QScreen* screen = activeScreen()) {
        const QRect visible = screen->availableGeometry();
        const int x = visible.x() + visible.width() / 2 - window->width() / 2;
        const int y = visible.y() + kTopInset;
        window->move(x, y);
    }

    window->show();
    Platform::services().foregroundActivation->bringToFront();
    window->raise();
    window->activateWindow();
}

QScreen* AppController::activeScreen() const {
    const QList<QScreen*> screens = QGuiApplication::screens();
    const QPoint pointer = QCursor::pos();
    for (QScreen* screen : screens) {
        if (screen->geometry().contains(pointer)) {
            return screen;
        }
    }
    if (QScreen* primary = QGuiApplication::primaryScreen()) {
        return primary;
    }
    return screens.isEmpty() ? nullptr : screens.first();
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
