// SPDX-License-Identifier: MIT
#pragma once

class Autostart;
class DesktopLauncher;
class ForegroundActivation;
class HotKeys;
class KeyboardLayout;
class Monitors;
class RunningApplications;
class SessionCheck;
class SettingsStore;
class SystemInfo;
class TaskbarPresence;
class TrayHost;
class WindowControl;
class WindowList;

// The services of the platform the program runs on. A backend (X11, or the fake one in tests) fills
// them in once at start-up; the core reaches the system only through them.
struct PlatformServices {
    Monitors* monitors = nullptr;
    WindowList* windowList = nullptr;
    RunningApplications* runningApplications = nullptr;
    WindowControl* windowControl = nullptr;
    HotKeys* hotKeys = nullptr;
    KeyboardLayout* keyboardLayout = nullptr;
    SettingsStore* settings = nullptr;
    Autostart* autostart = nullptr;
    SessionCheck* sessionCheck = nullptr;
    TaskbarPresence* taskbarPresence = nullptr;
    ForegroundActivation* foregroundActivation = nullptr;
    DesktopLauncher* desktopLauncher = nullptr;
    SystemInfo* systemInfo = nullptr;
    TrayHost* trayHost = nullptr;
};

namespace Platform {
// The installed services. Every pointer is set once a backend has been installed.
const PlatformServices& services();
void install(const PlatformServices& services);
}  // namespace Platform
