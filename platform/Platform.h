#pragma once

class Accessibility;
class Activation;
class Autostart;
class HotKeys;
class KeyboardLayout;
class Monitors;
class Permissions;
class SettingsStore;
class WindowServer;
class Workspace;

// The services of the platform the program runs on. A backend (X11, or the fake one in tests) fills
// them in once at start-up; the core reaches the system only through them.
struct PlatformServices {
    Monitors* monitors = nullptr;
    WindowServer* windowServer = nullptr;
    Workspace* workspace = nullptr;
    Accessibility* accessibility = nullptr;
    HotKeys* hotKeys = nullptr;
    KeyboardLayout* keyboardLayout = nullptr;
    SettingsStore* settings = nullptr;
    Autostart* autostart = nullptr;
    Permissions* permissions = nullptr;
    Activation* activation = nullptr;
};

namespace Platform {
// The installed services. Every pointer is set once a backend has been installed.
const PlatformServices& services();
void install(const PlatformServices& services);
}  // namespace Platform
