// SPDX-License-Identifier: MIT
#include "platform/gnome/GnomePlatform.h"

#include <QDBusConnectionInterface>

#include "platform/gnome/GnomeAccelerators.h"
#include "platform/gnome/GnomeMonitors.h"
#include "platform/gnome/GnomeOwnWindows.h"
#include "platform/gnome/GnomeRunningApplications.h"
#include "platform/gnome/GnomeSessionCheck.h"
#include "platform/gnome/GnomeShellBridge.h"
#include "platform/gnome/GnomeTrayHost.h"
#include "platform/gnome/GnomeWindowControl.h"
#include "platform/gnome/GnomeWindowList.h"
#include "platform/kwin/NoKeyboardLayout.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11KeyboardLayout.h"
#include "platform/xdg/FileSettingsStore.h"
#include "platform/xdg/LinuxSystemInfo.h"
#include "platform/xdg/XdgAutostart.h"
#include "platform/xdg/XdgDesktopLauncher.h"

struct GnomePlatform::Owned {
    std::unique_ptr<GnomeShellBridge> bridge;
    std::unique_ptr<X11Connection> xwayland;
    std::unique_ptr<KeyboardLayout> keyboardLayout;
    std::unique_ptr<GnomeAccelerators> hotKeys;
    std::unique_ptr<GnomeMonitors> monitors;
    std::unique_ptr<GnomeWindowList> windowList;
    std::unique_ptr<GnomeRunningApplications> runningApplications;
    std::unique_ptr<GnomeWindowControl> windowControl;
    std::unique_ptr<GnomeSessionCheck> sessionCheck;
    std::unique_ptr<GnomeOwnWindows> ownWindows;
    std::unique_ptr<GnomeTrayHost> trayHost;
    std::unique_ptr<FileSettingsStore> settings;
    std::unique_ptr<XdgAutostart> autostart;
    std::unique_ptr<XdgDesktopLauncher> desktopLauncher;
    std::unique_ptr<LinuxSystemInfo> systemInfo;
};

namespace {

// The extension answers only the owner of Lattica's bus name. The program owns it once it runs; a
// command run without the program takes it for as long as it runs. Held by someone else, it stays theirs.
void claimLatticaBusName(const QDBusConnection& bus) {
    if (bus.interface() != nullptr) {
        bus.interface()->registerService(QStringLiteral("app.lattica.Lattica"),
                                         QDBusConnectionInterface::DontQueueService,
                                         QDBusConnectionInterface::DontAllowReplacement);
    }
}

}  // namespace

GnomePlatform::GnomePlatform() : m_owned(std::make_unique<Owned>()) {}

std::unique_ptr<GnomePlatform> GnomePlatform::connect(QString* problem) {
    std::unique_ptr<GnomeShellBridge> bridge = GnomeShellBridge::connect(problem);
    if (!bridge) {
        return nullptr;
    }
    std::unique_ptr<GnomePlatform> platform(new GnomePlatform());
    Owned& owned = *platform->m_owned;
    owned.bridge = std::move(bridge);
    GnomeShellBridge& shell = *owned.bridge;
    claimLatticaBusName(shell.bus());

    // The layout is read through Xwayland when the session has one; GNOME hands it the same keymap.
    if (!qEnvironmentVariableIsEmpty("DISPLAY")) {
        owned.xwayland = X11Connection::open();
    }
    if (owned.xwayland) {
        owned.keyboardLayout = std::make_unique<X11KeyboardLayout>(*owned.xwayland);
    } else {
        owned.keyboardLayout = std::make_unique<NoKeyboardLayout>();
    }
    owned.hotKeys = std::make_unique<GnomeAccelerators>(shell);
    owned.monitors = std::make_unique<GnomeMonitors>(shell);
    owned.windowList = std::make_unique<GnomeWindowList>(shell);
    owned.runningApplications = std::make_unique<GnomeRunningApplications>(shell);
    owned.windowControl = std::make_unique<GnomeWindowControl>(shell);
    owned.sessionCheck = std::make_unique<GnomeSessionCheck>(shell, *owned.monitors);
    owned.ownWindows = std::make_unique<GnomeOwnWindows>(shell);
    owned.trayHost = std::make_unique<GnomeTrayHost>(shell.bus());
    owned.settings = std::make_unique<FileSettingsStore>(FileSettingsStore::standardPath());
    owned.autostart = std::make_unique<XdgAutostart>(XdgAutostart::standardPath());
    owned.desktopLauncher = std::make_unique<XdgDesktopLauncher>();
    owned.systemInfo = std::make_unique<LinuxSystemInfo>(QStringLiteral("GNOME Shell (Wayland)"));

    PlatformServices& services = platform->m_services;
    services.monitors = owned.monitors.get();
    services.windowList = owned.windowList.get();
    services.runningApplications = owned.runningApplications.get();
    services.windowControl = owned.windowControl.get();
    services.sessionCheck = owned.sessionCheck.get();
    services.hotKeys = owned.hotKeys.get();
    services.keyboardLayout = owned.keyboardLayout.get();
    services.taskbarPresence = owned.ownWindows.get();
    services.foregroundActivation = owned.ownWindows.get();
    services.trayHost = owned.trayHost.get();
    services.settings = owned.settings.get();
    services.autostart = owned.autostart.get();
    services.desktopLauncher = owned.desktopLauncher.get();
    services.systemInfo = owned.systemInfo.get();
    return platform;
}

GnomePlatform::~GnomePlatform() {
    if (Platform::services().monitors == m_services.monitors) {
        Platform::install(PlatformServices{});
    }
    // The services use the bridge: they go first, in reverse order of making.
    Owned& owned = *m_owned;
    owned.systemInfo.reset();
    owned.desktopLauncher.reset();
    owned.autostart.reset();
    owned.settings.reset();
    owned.trayHost.reset();
    owned.ownWindows.reset();
    owned.sessionCheck.reset();
    owned.windowControl.reset();
    owned.runningApplications.reset();
    owned.windowList.reset();
    owned.monitors.reset();
    owned.hotKeys.reset();
    owned.keyboardLayout.reset();
    owned.xwayland.reset();
    owned.bridge.reset();
}

void GnomePlatform::install() {
    Platform::install(m_services);
}

GnomeShellBridge& GnomePlatform::bridge() const {
    return *m_owned->bridge;
}
