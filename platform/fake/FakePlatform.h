// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Platform.h"
#include "platform/fake/FakeAutostart.h"
#include "platform/fake/FakeDesktopLauncher.h"
#include "platform/fake/FakeForegroundActivation.h"
#include "platform/fake/FakeHotKeys.h"
#include "platform/fake/FakeKeyboardLayout.h"
#include "platform/fake/FakeMonitors.h"
#include "platform/fake/FakeRunningApplications.h"
#include "platform/fake/FakeSessionCheck.h"
#include "platform/fake/FakeSettingsStore.h"
#include "platform/fake/FakeSystemInfo.h"
#include "platform/fake/FakeTaskbarPresence.h"
#include "platform/fake/FakeTrayHost.h"
#include "platform/fake/FakeWindowControl.h"
#include "platform/fake/FakeWindowList.h"

// Every platform service in memory. Constructing one installs it; tests script it through its members.
class FakePlatform {
public:
    FakePlatform();
    ~FakePlatform();
    FakePlatform(const FakePlatform&) = delete;
    FakePlatform& operator=(const FakePlatform&) = delete;

    FakeMonitors monitors;
    FakeWindowList windowList;
    FakeRunningApplications runningApplications;
    FakeWindowControl windowControl;
    FakeHotKeys hotKeys;
    FakeKeyboardLayout keyboardLayout;
    FakeSettingsStore settings;
    FakeAutostart autostart;
    FakeSessionCheck sessionCheck;
    FakeTaskbarPresence taskbarPresence;
    FakeTrayHost trayHost;
    FakeForegroundActivation foregroundActivation;
    FakeDesktopLauncher desktopLauncher;
    FakeSystemInfo systemInfo;
};
