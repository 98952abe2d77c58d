// SPDX-License-Identifier: MIT
#include "app/ui/LatticaApp.h"

#include <QApplication>
#include <QBackingStore>
#include <QCloseEvent>
#include <QCursor>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QKeyEvent>
#include <QLoggingCategory>
#include <QMenu>
#include <QScreen>
#include <QStyleHints>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>
#include <QtMath>
#include <chrono>
#include <cstdio>
#include <functional>

#include "KeyboardShortcuts/widgets/MenuWatcher.h"
#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "app/ui/WindowPresenter.h"
#include "app/ui/common/PixmapCacheRelease.h"
#include "app/ui/common/SymbolIcons.h"
#include "app/ui/panel/PanelGeometry.h"
#include "app/ui/panel/TrayPanelView.h"
#include "platform/TrayHost.h"

namespace {

// When the panel opens, shows and paints, on the system's monotonic clock, for timing the panel from outside.
Q_LOGGING_CATEGORY(lcPanelPaint, "lattica.panel.paint", QtInfoMsg)

long long monotonicNanoseconds() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// Posted, so that the line is written once the painted window has been handed to the X server.
void tracePainted(QObject* context, const char* what) {
    if (lcPanelPaint().isDebugEnabled()) {
        QTimer::singleShot(0, context, [what] { qCDebug(lcPanelPaint, "%s at %lld", what, monotonicNanoseconds()); });
    }
}

// Runs a step when the application is told to quit, before it handles that itself.
class QuitWatcher : public QObject {
public:
    QuitWatcher(QObject* parent, std::function<void()> step) : QObject(parent), m_step(std::move(step)) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == qApp && event->type() == QEvent::Quit) {
            m_step();
        }
        return false;
    }

private:
    std::function<void()> m_step;
};

}  // namespace

LatticaApp::LatticaApp(AppController& controller, WindowPresenter& windows, TrayHost* trayHost)
    : m_controller(controller),
      m_menuWatcher(std::make_unique<KeyboardShortcuts::MenuWatcher>(controller.shortcuts())),
      m_windows(windows),
      m_trayHost(trayHost) {
    // Told once the focus an opening asked for has come (see m_panelAwaitsFocus).
    connect(qApp, &QGuiApplication::focusWindowChanged, this, [this](const QWindow* window) {
        if (m_panel && window != nullptr && window == m_panel->windowHandle()) {
            m_panelAwaitsFocus = false;
            qCDebug(lcPanelPaint, "focused at %lld", monotonicNanoseconds());
        }
    });
    connect(qApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive) {
            m_panelAwaitsFocus = false;
        }
    });
    // Quitting closes every window first and gives up if one refuses: nothing may refuse from then on.
    qApp->installEventFilter(new QuitWatcher(this, [this] { m_panelAwaitsFocus = false; }));
    new PixmapCacheRelease(this);
}

LatticaApp::~LatticaApp() = default;

QIcon LatticaApp::programIcon() {
    // The icon installed with the program, as the desktop's theme has it; drawn here when none is installed
    // (or the SVG icon engine is missing).
    return QIcon::fromTheme(QStringLiteral("app.lattica.Lattica"),
                            SymbolIcons::drawnIcon(QStringLiteral("rectangle.on.rectangle.angled")));
}

QIcon LatticaApp::trayIconImage(bool statusNotifierHost) {
    if (!statusNotifierHost) {
        return programIcon();
    }
    for (const QString& name :
         {QStringLiteral("app.lattica.Lattica-symbolic"), QStringLiteral("app.lattica.Lattica")}) {
        const QIcon themed = QIcon::fromTheme(name);
        if (!themed.isNull() && !themed.availableSizes().isEmpty()) {
            return themed;
        }
    }
    // The host looks an icon's name up in its own theme, which knows no drawn symbol: without a name of
    // ours the toolkit sends the pixels instead.
    const QIcon drawn = programIcon();
    QIcon pixels;
    for (const int size : {16, 22, 24, 32, 48, 64}) {
        pixels.addPixmap(drawn.pixmap(QSize(size, size), 1.0));
    }
    return pixels;
}

void LatticaApp::start() {
    // For trays that keep clicks to themselves: the panel, and the same two actions as the panel's footer.
    m_trayMenu = std::make_unique<QMenu>();
    // Hosts that show the menu on a single click reach the panel through it.
    QAction* open = m_trayMenu->addAction(tr("Open panel"), this, &LatticaApp::openPanel);
    m_trayMenu->setDefaultAction(open);
    m_trayMenu->addSeparator();
    m_trayMenu->addAction(SymbolIcons::icon(QStringLiteral("gearshape")), tr("Settings"), this,
                          [this] { m_windows.showSettingsWindow(); });
    QAction* quit =
        m_trayMenu->addAction(SymbolIcons::icon(QStringLiteral("power")), tr("Quit"), qApp, &QCoreApplication::quit);
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));

    connect(&m_controller, &AppController::permissionStateChanged, this, &LatticaApp::resizePanel);
    connect(&m_controller, &AppController::displaysChanged, this, &LatticaApp::resizePanel);
    // Until the panel opens nothing shows previews, so a move's refresh keeps no pictures.
    m_controller.setPreviewsShown(false);

    if (m_trayHost) {
        connect(m_trayHost, &TrayHost::availabilityChanged, this, [this](bool available) {
            if (available && !m_trayIcon) {
                moveIntoTray();
            }
        });
    }
    if (QSystemTrayIcon::isSystemTrayAvailable()) {
        showTrayIcon();
    } else {
        std::fputs("Lattica: no system tray is available; the panel opens as an ordinary window.\n", stdout);
        std::fflush(stdout);
        ensurePanel(false);
        QTimer::singleShot(0, this, &LatticaApp::openPanel);
    }
    QTimer::singleShot(0, this, [this] {
        m_controller.start();
        // A turn of the event loop later, so that the icon is docked in the tray first.
        if (m_trayIcon) {
            QTimer::singleShot(0, this, &LatticaApp::prebuildPanel);
        }
    });
}

void LatticaApp::showTrayIcon() {
    // The toolkit shows the icon through a StatusNotifierItem host whenever one is on the session bus.
    QDBusConnectionInterface* bus = QDBusConnection::sessionBus().interface();
    const bool statusNotifierHost =
        bus != nullptr && bus->isServiceRegistered(QStringLiteral("org.kde.StatusNotifierWatcher")).value();
    m_trayIcon = std::make_unique<QSystemTrayIcon>(trayIconImage(statusNotifierHost));
    m_trayIcon->setToolTip(QStringLiteral("Lattica"));
    m_trayIcon->setContextMenu(m_trayMenu.get());
    connect(m_trayIcon.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        // A click soon after the one that closed the panel comes as a double click.
        if (reason != QSystemTrayIcon::Trigger && reason != QSystemTrayIcon::DoubleClick) {
            return;
        }
        // Some hosts report one double click as two activations (GNOME's AppIndicator host does, for
        // both the press and the release of the second click, until it knows the item takes them): an
        // activation within the double-click time of the one that opened the panel is part of it, and
        // would close the panel before it is drawn.
        const int doubleClickTime = QGuiApplication::styleHints()->mouseDoubleClickInterval();
        if (m_panel && m_panel->isVisible() && m_openedByActivation.isValid() && doubleClickTime > 0 &&
            !m_openedByActivation.hasExpired(doubleClickTime)) {
            return;
        }
        const bool opening = !m_panel || !m_panel->isVisible();
        togglePanel();
        if (opening) {
            // Counted from when the opening is done: a repeat sent meanwhile waits in the queue.
            m_openedByActivation.start();
        } else {
            m_openedByActivation.invalidate();
        }
    });
    m_trayIcon->show();
}

void LatticaApp::moveIntoTray() {
    std::fputs("Lattica: a system tray is available now; the panel opens from its icon.\n", stdout);
    std::fflush(stdout);
    // The ordinary window goes; the next opening builds the panel as the tray's popup.
    if (m_panel) {
        m_panel->removeEventFilter(this);
        m_panel->hide();
        m_panel.reset();
        m_content = nullptr;
    }
    showTrayIcon();
    prebuildPanel();
}

void LatticaApp::ensurePanel(bool asPopup) {
    if (m_panel) {
        return;
    }
    m_panelIsPopup = asPopup;
    const Qt::WindowFlags flags = asPopup ? Qt::Popup | Qt::FramelessWindowHint : Qt::Window;
    m_panel = std::make_unique<QWidget>(nullptr, flags);
    m_panel->setObjectName(QStringLiteral("panel"));
    m_panel->setWindowTitle(QStringLiteral("Lattica"));
    m_panel->setWindowIcon(programIcon());
    // A click outside closes the popup and goes no further, so a click on the tray icon only closes it.
    m_panel->setAttribute(Qt::WA_NoMouseReplay);
    auto* layout = new QVBoxLayout(m_panel.get());
    layout->setContentsMargins(0, 0, 0, 0);
    m_content = new TrayPanelView(m_controller, m_panel.get());
    layout->addWidget(m_content);
    connect(m_content, &TrayPanelView::dismissRequested, this, &LatticaApp::closePanel);
    connect(m_content, &TrayPanelView::settingsRequested, &m_windows, &WindowPresenter::showSettingsWindow);
    connect(m_content, &TrayPanelView::cardsPainted, this, [this] {
        // Drawn into the window's buffer now; handed to the X server right after, in the same turn.
        qCDebug(lcPanelPaint, "cards drawn at %lld", monotonicNanoseconds());
        tracePainted(this, "cards painted");
    });
    connect(m_content, &TrayPanelView::previewsPainted, this, [this] { tracePainted(this, "previews painted"); });
    m_panel->installEventFilter(this);
    resizePanel();
}

void LatticaApp::createPanelWindow() {
    m_panel->winId();
    if (m_panelIsPopup) {
        // Closing a window makes the toolkit destroy its native window and backing store, which every
        // opening would then build again: a popup's closing is turned into hiding (see eventFilter).
        m_panel->windowHandle()->installEventFilter(this);
    }
}

QSize LatticaApp::panelSize(bool granted, int displayCount) {
    return {qCeil(PanelGeometry::popupWidth(granted, displayCount)),
            qCeil(PanelGeometry::popupHeight(granted, displayCount))};
}

QSize LatticaApp::panelSize() const {
    return panelSize(m_controller.permissionState().bothGranted(), static_cast<int>(m_controller.displays().size()));
}

void LatticaApp::prebuildPanel() {
    if (m_panel && m_panel->isVisible()) {
        return;
    }
    ensurePanel(true);
    QList<DisplaySnapshot> placeholders;
    if (m_controller.permissionState().bothGranted()) {
        for (const DisplayDescriptor& descriptor : ScreenSnapshotService::currentDisplayDescriptors()) {
            placeholders.append(DisplaySnapshot::placeholder(descriptor));
        }
    }
    // Sized as the opening will size it, so the cards are laid out at their width; an opening for other
    // displays resizes it.
    m_panel->setFixedSize(panelSize(m_controller.permissionState().bothGranted(), int(placeholders.size())));
    m_content->prepare(placeholders);
    // Made where the opening will put it: moving it later would make the toolkit ask the X server for its
    // frame again after the first mapping.
    m_anchorIcon = m_trayIcon ? m_trayIcon->geometry() : QRect();
    m_anchorPointer = QCursor::pos();
    placePanel();
    createPanelWindow();
    // Asks the X server for the window's frame now; the showing reads it.
    m_panel->frameGeometry();
    // The arrow pointer is loaded from the cursor theme when a window first shows one.
    m_panel->setCursor(Qt::ArrowCursor);
    // The window's buffer at the panel's size (shared memory attached to the X server), made now
    // rather than in the first opening's paint. Nothing is drawn or shown.
    if (QBackingStore* store = m_panel->backingStore()) {
        store->resize(m_panel->size());
    }
    m_controller.preparePreviews(m_content->displaySpaceArea());
    // Painted unseen: nothing hides to empty the caches the painting filled.
    PixmapCacheRelease::releaseSoon();
}

void LatticaApp::resizePanel() {
    if (!m_panel) {
        return;
    }
    const QSize size = panelSize();
    if (m_panel->size() == size) {
        return;
    }
    m_panel->setFixedSize(size);
    if (m_panel->isVisible() && m_panelIsPopup) {
        placePanel();
    }
}

void LatticaApp::placePanel() {
    const QPoint anchor = m_anchorIcon.isValid() ? m_anchorIcon.center() : m_anchorPointer;
    QScreen* screen = QGuiApplication::screenAt(anchor);
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    if (screen == nullptr) {
        return;
    }
    m_panel->move(
        PanelGeometry::panelOrigin(m_panel->size(), m_anchorIcon, m_anchorPointer, screen->availableGeometry()));
}

void LatticaApp::openPanel() {
    qCDebug(lcPanelPaint, "opening at %lld", monotonicNanoseconds());
    ensurePanel(true);
    m_anchorIcon = m_trayIcon ? m_trayIcon->geometry() : QRect();
    m_anchorPointer = QCursor::pos();
    m_controller.setPreviewsShown(true);
    m_controller.refreshForMenuOpen();
    qCDebug(lcPanelPaint, "refreshed at %lld", monotonicNanoseconds());
    resizePanel();
    if (m_panelIsPopup) {
        placePanel();
    }
    createPanelWindow();
    // Inactive, or still taking the hidden panel for the focused window: the focus this opening asks
    // for is told after whatever focus change of the previous showing is still unread.
    m_panelAwaitsFocus = QGuiApplication::applicationState() != Qt::ApplicationActive ||
                         QGuiApplication::focusWindow() == m_panel->windowHandle();
    if (lcPanelPaint().isDebugEnabled()) {
        // The window's expose and the content's first paint after showing, for the trace.
        m_panel->windowHandle()->installEventFilter(this);
        m_content->installEventFilter(this);
        m_tracePaint = true;
    }
    m_panel->show();
    m_panel->raise();
    m_panel->activateWindow();
    const QRect frame = m_panel->geometry();
    qCDebug(lcPanelPaint, "shown at %lld on %d,%d %dx%d", monotonicNanoseconds(), frame.x(), frame.y(), frame.width(),
            frame.height());
    Q_EMIT panelShown();
}

void LatticaApp::closePanel() {
    if (!m_panel) {
        return;
    }
    m_panel->hide();
}

void LatticaApp::togglePanel() {
    if (m_panel && m_panel->isVisible()) {
        closePanel();
    } else {
        openPanel();
    }
}

bool LatticaApp::eventFilter(QObject* watched, QEvent* event) {
    if (m_panel && watched == m_panel->windowHandle() && event->type() == QEvent::Expose) {
        qCDebug(lcPanelPaint, "exposed at %lld", monotonicNanoseconds());
    }
    if (m_panel && m_panelIsPopup && watched == m_panel->windowHandle() && event->type() == QEvent::Close) {
        // The popup closes (a click outside, the focus gone) as the panel widget decides, but only hides:
        // its native window stays for the next opening.
        QCloseEvent close;
        QCoreApplication::sendEvent(m_panel.get(), &close);
        if (close.isAccepted()) {
            m_panel->hide();
        }
        event->setAccepted(close.isAccepted());
        return true;
    }
    if (m_tracePaint && watched == m_content && event->type() == QEvent::Paint) {
        m_tracePaint = false;
        qCDebug(lcPanelPaint, "painting at %lld", monotonicNanoseconds());
    }
    if (m_panel && watched == m_panel.get()) {
        // However the panel went (Escape, a click outside, a move), its pictures are not needed until the
        // next opening takes new ones.
        if (event->type() == QEvent::Hide) {
            qCDebug(lcPanelPaint, "hidden at %lld", monotonicNanoseconds());
            m_controller.setPreviewsShown(false);
            m_panelAwaitsFocus = false;
        }
        // The toolkit closes popups when the program is told it lost the focus. A closing panel's focus-out
        // read only after the panel was opened again (a busy program, a quick second click) would close
        // the new opening at once, before it paints. A click outside still closes it. (The toolkit asks
        // again a bounded number of times; each asking is refused here.)
        if (event->type() == QEvent::Close && m_panelIsPopup && m_panelAwaitsFocus && m_panel->isVisible() &&
            QGuiApplication::applicationState() != Qt::ApplicationActive &&
            QGuiApplication::mouseButtons() == Qt::NoButton) {
            event->ignore();
            return true;
        }
        if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
            closePanel();
            return true;
        }
        // Without a tray host the panel window is the only way to the program: closing it ends the program,
        // unless a tray host has come since or a display shortcut still needs the program running.
        if (event->type() == QEvent::Close && !m_panelIsPopup && !m_trayIcon &&
            !m_controller.hasAssignedDisplayShortcuts()) {
            QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        }
    }
    return QObject::eventFilter(watched, event);
}
