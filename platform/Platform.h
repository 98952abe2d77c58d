#pragma once

class Accessibility;
class DesktopLauncher;
class Displays;
class ForegroundActivation;
class HotKeys;
class KeyboardLayout;
class LoginItems;
class SessionCheck;
class SystemInfo;
class TaskbarPresence;
class UserDefaults;
class WindowServer;
class Workspace;

// The services of the platform the program runs on. A backend (X11, or the fake one in tests) fills
// them in once at start-up; the core reaches the system only through them.
struct PlatformServices {
    Displays* displays = nullptr;
    WindowServer* windowServer = nullptr;
    Workspace* workspace = nullptr;
    Accessibility* accessibility = nullptr;
    HotKeys* hotKeys = nullptr;
    KeyboardLayout* keyboardLayout = nullptr;
    UserDefaults* userDefaults = nullptr;
    LoginItems* loginItems = nullptr;
    SessionCheck* sessionCheck = nullptr;
    TaskbarPresence* taskbarPresence = nullptr;
    ForegroundActivation* foregroundActivation = nullptr;
    DesktopLauncher* desktopLauncher = nullptr;
    SystemInfo* systemInfo = nullptr;
};

namespace Platform {
// The installed services. Every pointer is set once a backend has been installed.
const PlatformServices& services();
void install(const PlatformServices& services);
}  // namespace Platform
