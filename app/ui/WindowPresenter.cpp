// SPDX-License-Identifier: MIT
#include "app/ui/WindowPresenter.h"

#include <QCursor>
#include <QGuiApplication>
#include <QLayout>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>

#include "app/controller/AppController.h"
#include "app/ui/guide/PermissionGuideView.h"
#include "app/ui/settings/SettingsView.h"
#include "platform/ForegroundActivation.h"
#include "platform/Platform.h"
#include "platform/TaskbarPresence.h"

namespace {

constexpr QSize kSettingsWindowSize(760, 540);
constexpr QSize kPermissionWindowSize(640, 480);
// Distance of a presented window from the top of the screen's usable area.
constexpr int kTopInset = 24;

// A window that hosts one view; closing it only hides it, so it can be shown again as it was.
QWidget* makeHostWindow(QWidget* content, const QSize& size, const QString& title) {
    auto* window = new QWidget(
        nullptr, Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::WindowMinimizeButtonHint);
    window->setAttribute(Qt::WA_DeleteOnClose, false);
    window->setWindowTitle(title);
    // The user works in these windows: they are reachable from the taskbar and Alt+Tab while open, even
    // when Lattica otherwise keeps out of the taskbar.
    window->winId();
    window->windowHandle()->setProperty(kAlwaysInTaskbarProperty, true);
    auto* layout = new QVBoxLayout(window);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(content);
    window->resize(size);
    return window;
}

}  // namespace

WindowPresenter::WindowPresenter(AppController& controller, Updater* updater, QObject* parent)
    : QObject(parent), m_controller(controller) {
    if (updater) {
        m_updates = std::make_unique<UpdatePresenter>(*updater);
    }
    connect(&m_controller, &AppController::permissionGuideRequested, this, &WindowPresenter::showPermissionGuideWindow);
}

WindowPresenter::~WindowPresenter() {
    // The windows have no parent: they go with the presenter that made them.
    delete m_settingsWindow;
    delete m_permissionWindow;
}

void WindowPresenter::showSettingsWindow() {
    if (!m_settingsWindow) {
        auto* content = new SettingsView(m_controller);
        content->setSelectedSection(SettingsSection::Permissions);
        // The settings are laid out for this size; the window never fits itself below it.
        content->setMinimumSize(kSettingsWindowSize);
        m_settingsWindow = makeHostWindow(content, kSettingsWindowSize, QString());
        m_settingsWindow->setObjectName(QStringLiteral("settingsWindow"));
    }
    present(m_settingsWindow);
}

void WindowPresenter::showPermissionGuideWindow() {
    if (!m_permissionWindow) {
        m_permissionWindow = makeHostWindow(new PermissionGuideView(m_controller), kPermissionWindowSize,
                                            tr("Grant Required Permissions"));
        m_permissionWindow->setObjectName(QStringLiteral("permissionWindow"));
    }
    present(m_permissionWindow);
}

void WindowPresenter::present(QWidget* window) {
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

QScreen* WindowPresenter::activeScreen() {
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
