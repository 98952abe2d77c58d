// SPDX-License-Identifier: MIT
#include "platform/x11/X11Platform.h"

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11ForegroundActivation.h"
#include "platform/x11/X11HotKeys.h"
#include "platform/x11/X11KeyboardLayout.h"
#include "platform/x11/X11Monitors.h"
#include "platform/x11/X11RunningApplications.h"
#include "platform/x11/X11SessionCheck.h"
#include "platform/x11/X11TaskbarPresence.h"
#include "platform/x11/X11TrayHost.h"
#include "platform/x11/X11WindowCache.h"
#include "platform/x11/X11WindowControl.h"
#include "platform/x11/X11WindowDesktopEntries.h"
#include "platform/x11/X11WindowList.h"
#include "platform/xdg/FileSettingsStore.h"
#include "platform/xdg/LinuxSystemInfo.h"
#include "platform/xdg/XdgAutostart.h"
#include "platform/xdg/XdgDesktopLauncher.h"

struct X11Platform::Owned {
    std::unique_ptr<X11KeyboardLayout> keyboardLayout;
    std::unique_ptr<X11HotKeys> hotKeys;
    std::unique_ptr<X11Monitors> monitors;
    std::unique_ptr<FileSettingsStore> settings;
    std::unique_ptr<XdgAutostart> autostart;
    std::unique_ptr<X11SessionCheck> sessionCheck;
    std::unique_ptr<X11WindowDesktopEntries> desktopEntries;
    std::unique_ptr<X11WindowCache> windowCache;
    // The window list answers for the window control too, so the control outlives it.
    std::unique_ptr<X11WindowControl> windowControl;
    std::unique_ptr<X11WindowList> windowList;
    std::unique_ptr<X11RunningApplications> runningApplications;
    std::unique_ptr<X11TaskbarPresence> taskbarPresence;
    std::unique_ptr<X11ForegroundActivation> foregroundActivation;
    std::unique_ptr<XdgDesktopLauncher> desktopLauncher;
    std::unique_ptr<LinuxSystemInfo> systemInfo;
    std::unique_ptr<X11TrayHost> trayHost;
};

std::unique_ptr<X11Platform> X11Platform::connect(const QByteArray& displayName) {
    std::unique_ptr<X11Connection> connection = X11Connection::open(displayName);
    if (!connection) {
        return nullptr;
    }
    X11Connection& x11 = *connection;
    return std::unique_ptr<X11Platform>(new X11Platform(std::move(connection), x11));
}

std::unique_ptr<X11Platform> X11Platform::on(X11Connection& connection) {
    return std::unique_ptr<X11Platform>(new X11Platform(nullptr, connection));
}

X11Platform::X11Platform(std::unique_ptr<X11Connection> owned, X11Connection& connection)
    : m_ownedConnection(std::move(owned)), m_x11(&connection), m_owned(std::make_unique<Owned>()) {
    X11Connection& x11 = connection;
    m_owned->monitors = std::make_unique<X11Monitors>(x11);
    m_owned->settings = std::make_unique<FileSettingsStore>(FileSettingsStore::standardPath());
    m_owned->autostart =
        std::make_unique<XdgAutostart>(XdgAutostart::standardPath(), XdgAutostart::legacyStandardPath());
    m_owned->sessionCheck = std::make_unique<X11SessionCheck>(x11);
    m_owned->desktopEntries = std::make_unique<X11WindowDesktopEntries>();
    // The window list, the running applications and the window control's reads share what they learn of
    // windows. Without a second connection they simply read everything each time.
    if (std::unique_ptr<X11Connection> watch = X11Connection::open(x11.displayName())) {
        m_owned->windowCache = std::make_unique<X11WindowCache>(std::move(watch));
    }
    X11WindowCache* cache = m_owned->windowCache.get();
    m_owned->windowControl = std::make_unique<X11WindowControl>(x11, cache);
    m_owned->windowList =
        std::make_unique<X11WindowList>(x11, *m_owned->desktopEntries, cache, m_owned->windowControl.get());
    m_owned->runningApplications = std::make_unique<X11RunningApplications>(x11, *m_owned->desktopEntries, cache);
    m_owned->taskbarPresence = std::make_unique<X11TaskbarPresence>(x11);
    m_owned->foregroundActivation = std::make_unique<X11ForegroundActivation>(x11);
    m_owned->desktopLauncher = std::make_unique<XdgDesktopLauncher>();
    m_owned->trayHost = std::make_unique<X11TrayHost>(x11);
    const bool wayland = X11SessionCheck::isWaylandSession(qEnvironmentVariable("XDG_SESSION_TYPE"),
                                                           qEnvironmentVariable("WAYLAND_DISPLAY"));
    m_owned->systemInfo =
        std::make_unique<LinuxSystemInfo>(wayland ? QStringLiteral("X11 (through Xwayland)") : QStringLiteral("X11"));

    m_owned->keyboardLayout = std::make_unique<X11KeyboardLayout>(x11);
    m_owned->hotKeys = std::make_unique<X11HotKeys>(x11, m_owned->keyboardLayout.get());

    m_services.monitors = m_owned->monitors.get();
    m_services.hotKeys = m_owned->hotKeys.get();
    m_services.keyboardLayout = m_owned->keyboardLayout.get();
    m_services.settings = m_owned->settings.get();
    m_services.autostart = m_owned->autostart.get();
    m_services.sessionCheck = m_owned->sessionCheck.get();
    m_services.windowList = m_owned->windowList.get();
    m_services.runningApplications = m_owned->runningApplications.get();
    m_services.windowControl = m_owned->windowControl.get();
    m_services.taskbarPresence = m_owned->taskbarPresence.get();
    m_services.foregroundActivation = m_owned->foregroundActivation.get();
    m_services.desktopLauncher = m_owned->desktopLauncher.get();
    m_services.systemInfo = m_owned->systemInfo.get();
    m_services.trayHost = m_owned->trayHost.get();
}

X11Platform::~X11Platform() {
    // Nothing may reach the services once they are gone.
    if (Platform::services().monitors == m_services.monitors) {
        Platform::install(PlatformServices{});
    }
    m_owned.reset();
    m_x11->flush();
}

X11WindowCache* X11Platform::windowCache() const {
    return m_owned->windowCache.get();
}

void X11Platform::install() {
    Platform::install(m_services);
}
