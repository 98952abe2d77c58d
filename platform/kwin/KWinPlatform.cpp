// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinPlatform.h"

#include "platform/kwin/KWinApplicationNames.h"
#include "platform/kwin/KWinBridge.h"
#include "platform/kwin/KWinGlobalShortcuts.h"
#include "platform/kwin/KWinMonitors.h"
#include "platform/kwin/KWinOutputDevices.h"
#include "platform/kwin/KWinOwnWindows.h"
#include "platform/kwin/KWinRunningApplications.h"
#include "platform/kwin/KWinScreenCapture.h"
#include "platform/kwin/KWinSessionCheck.h"
#include "platform/kwin/KWinTrayHost.h"
#include "platform/kwin/KWinWindowControl.h"
#include "platform/kwin/KWinWindowList.h"
#include "platform/kwin/NoKeyboardLayout.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11KeyboardLayout.h"
#include "platform/xdg/FileSettingsStore.h"
#include "platform/xdg/LinuxSystemInfo.h"
#include "platform/xdg/XdgAutostart.h"
#include "platform/xdg/XdgDesktopLauncher.h"

struct KWinPlatform::Owned {
    std::unique_ptr<KWinBridge> bridge;
    std::unique_ptr<X11Connection> xwayland;
    std::unique_ptr<KeyboardLayout> keyboardLayout;
    std::unique_ptr<KWinGlobalShortcuts> hotKeys;
    std::unique_ptr<KWinApplicationNames> names;
    std::unique_ptr<KWinScreenCapture> capture;
    std::unique_ptr<KWinOutputDevices> outputDevices;
    std::unique_ptr<KWinMonitors> monitors;
    std::unique_ptr<KWinWindowList> windowList;
    std::unique_ptr<KWinRunningApplications> runningApplications;
    std::unique_ptr<KWinWindowControl> windowControl;
    std::unique_ptr<KWinSessionCheck> sessionCheck;
    std::unique_ptr<KWinOwnWindows> ownWindows;
    std::unique_ptr<KWinTrayHost> trayHost;
    std::unique_ptr<FileSettingsStore> settings;
    std::unique_ptr<XdgAutostart> autostart;
    std::unique_ptr<XdgDesktopLauncher> desktopLauncher;
    std::unique_ptr<LinuxSystemInfo> systemInfo;
};

KWinPlatform::KWinPlatform() : m_owned(std::make_unique<Owned>()) {}

std::unique_ptr<KWinPlatform> KWinPlatform::connect(QString* problem) {
    std::unique_ptr<KWinBridge> bridge = KWinBridge::connect(problem);
    if (!bridge) {
        return nullptr;
    }
    std::unique_ptr<KWinPlatform> platform(new KWinPlatform());
    Owned& owned = *platform->m_owned;
    owned.bridge = std::move(bridge);
    KWinBridge& kwin = *owned.bridge;

    // The layout is the same for Xwayland as for Wayland clients: KWin hands both its keymap.
    if (!qEnvironmentVariableIsEmpty("DISPLAY")) {
        owned.xwayland = X11Connection::open();
    }
    if (owned.xwayland) {
        owned.keyboardLayout = std::make_unique<X11KeyboardLayout>(*owned.xwayland);
    } else {
        owned.keyboardLayout = std::make_unique<NoKeyboardLayout>();
    }
    owned.hotKeys = std::make_unique<KWinGlobalShortcuts>(kwin.bus(), owned.keyboardLayout.get());
    owned.names = std::make_unique<KWinApplicationNames>();
    owned.capture = std::make_unique<KWinScreenCapture>(kwin.bus());
    owned.outputDevices = KWinOutputDevices::connect();
    owned.monitors = std::make_unique<KWinMonitors>(kwin, owned.capture.get(), owned.outputDevices.get());
    owned.windowList = std::make_unique<KWinWindowList>(kwin, *owned.names);
    owned.runningApplications = std::make_unique<KWinRunningApplications>(kwin, *owned.names);
    owned.windowControl = std::make_unique<KWinWindowControl>(kwin);
    KWinMonitors* monitors = owned.monitors.get();
    owned.sessionCheck = std::make_unique<KWinSessionCheck>(kwin, *owned.capture, [monitors] {
        const QList<Monitor> all = monitors->monitors();
        return !all.isEmpty() && !monitors->capture(all.constFirst().id).isNull();
    });
    owned.ownWindows = std::make_unique<KWinOwnWindows>(kwin);
    owned.trayHost = std::make_unique<KWinTrayHost>(kwin.bus());
    owned.settings = std::make_unique<FileSettingsStore>(FileSettingsStore::standardPath());
    owned.autostart = std::make_unique<XdgAutostart>(XdgAutostart::standardPath());
    owned.desktopLauncher = std::make_unique<XdgDesktopLauncher>();
    owned.systemInfo = std::make_unique<LinuxSystemInfo>(QStringLiteral("KWin (KDE Plasma on Wayland)"));

    PlatformServices& services = platform->m_services;
    services.monitors = owned.monitors.get();
    services.windowList = owned.windowList.get();
    services.runningApplications = owned.runningApplications.get();
    services.windowControl = owned.windowControl.get();
    services.hotKeys = owned.hotKeys.get();
    services.keyboardLayout = owned.keyboardLayout.get();
    services.settings = owned.settings.get();
    services.autostart = owned.autostart.get();
    services.sessionCheck = owned.sessionCheck.get();
    services.taskbarPresence = owned.ownWindows.get();
    services.foregroundActivation = owned.ownWindows.get();
    services.desktopLauncher = owned.desktopLauncher.get();
    services.systemInfo = owned.systemInfo.get();
    services.trayHost = owned.trayHost.get();
    return platform;
}

KWinPlatform::~KWinPlatform() {
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
    owned.outputDevices.reset();
    owned.capture.reset();
    owned.names.reset();
    owned.hotKeys.reset();
    owned.keyboardLayout.reset();
    owned.xwayland.reset();
    owned.bridge.reset();
}

void KWinPlatform::install() {
    Platform::install(m_services);
}

KWinBridge& KWinPlatform::bridge() const {
    return *m_owned->bridge;
}
