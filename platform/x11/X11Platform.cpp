#include "platform/x11/X11Platform.h"

#include "platform/x11/X11Accessibility.h"
#include "platform/x11/X11Activation.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11HotKeys.h"
#include "platform/x11/X11KeyboardLayout.h"
#include "platform/x11/X11Monitors.h"
#include "platform/x11/X11Permissions.h"
#include "platform/x11/X11WindowCache.h"
#include "platform/x11/X11WindowDesktopEntries.h"
#include "platform/x11/X11WindowServer.h"
#include "platform/x11/X11Workspace.h"
#include "platform/xdg/FileSettingsStore.h"
#include "platform/xdg/XdgAutostart.h"

struct X11Platform::Owned {
    std::unique_ptr<X11KeyboardLayout> keyboardLayout;
    std::unique_ptr<X11HotKeys> hotKeys;
    std::unique_ptr<X11Monitors> monitors;
    std::unique_ptr<FileSettingsStore> settings;
    std::unique_ptr<XdgAutostart> autostart;
    std::unique_ptr<X11Permissions> permissions;
    std::unique_ptr<X11WindowDesktopEntries> desktopEntries;
    std::unique_ptr<X11WindowCache> windowCache;
    std::unique_ptr<X11WindowServer> windowServer;
    std::unique_ptr<X11Workspace> workspace;
    std::unique_ptr<X11Accessibility> accessibility;
    std::unique_ptr<X11Activation> activation;
};

std::unique_ptr<X11Platform> X11Platform::connect(const QByteArray& displayName) {
    std::unique_ptr<X11Connection> connection = X11Connection::open(displayName);
    if (!connection) {
        return nullptr;
    }
    return std::unique_ptr<X11Platform>(new X11Platform(std::move(connection)));
}

X11Platform::X11Platform(std::unique_ptr<X11Connection> connection)
    : m_connection(std::move(connection)), m_owned(std::make_unique<Owned>()) {
    X11Connection& x11 = *m_connection;
    m_owned->monitors = std::make_unique<X11Monitors>(x11);
    m_owned->settings = std::make_unique<FileSettingsStore>(FileSettingsStore::standardPath());
    m_owned->autostart = std::make_unique<XdgAutostart>(XdgAutostart::standardPath());
    m_owned->permissions = std::make_unique<X11Permissions>(x11);
    m_owned->desktopEntries = std::make_unique<X11WindowDesktopEntries>();
    // The window list, the running applications and the Accessibility reads share what they learn of
    // windows. Without a second connection they simply read everything each time.
    if (std::unique_ptr<X11Connection> watch = X11Connection::open(x11.displayName())) {
        m_owned->windowCache = std::make_unique<X11WindowCache>(std::move(watch));
    }
    X11WindowCache* cache = m_owned->windowCache.get();
    m_owned->windowServer = std::make_unique<X11WindowServer>(x11, *m_owned->desktopEntries, cache);
    m_owned->workspace = std::make_unique<X11Workspace>(x11, *m_owned->desktopEntries, cache);
    m_owned->accessibility = std::make_unique<X11Accessibility>(x11, cache);
    m_owned->activation = std::make_unique<X11Activation>(x11);

    m_owned->keyboardLayout = std::make_unique<X11KeyboardLayout>(x11);
    m_owned->hotKeys = std::make_unique<X11HotKeys>(x11, m_owned->keyboardLayout.get());

    m_services.monitors = m_owned->monitors.get();
    m_services.hotKeys = m_owned->hotKeys.get();
    m_services.keyboardLayout = m_owned->keyboardLayout.get();
    m_services.settings = m_owned->settings.get();
    m_services.autostart = m_owned->autostart.get();
    m_services.permissions = m_owned->permissions.get();
    m_services.windowServer = m_owned->windowServer.get();
    m_services.workspace = m_owned->workspace.get();
    m_services.accessibility = m_owned->accessibility.get();
    m_services.activation = m_owned->activation.get();
}

X11Platform::~X11Platform() {
    m_owned.reset();
}

X11WindowCache* X11Platform::windowCache() const {
    return m_owned->windowCache.get();
}

void X11Platform::install() {
    Platform::install(m_services);
}
