#pragma once

#include "platform/Platform.h"
#include "platform/fake/FakeAccessibility.h"
#include "platform/fake/FakeActivation.h"
#include "platform/fake/FakeAutostart.h"
#include "platform/fake/FakeHotKeys.h"
#include "platform/fake/FakeKeyboardLayout.h"
#include "platform/fake/FakeMonitors.h"
#include "platform/fake/FakePermissions.h"
#include "platform/fake/FakeSettingsStore.h"
#include "platform/fake/FakeWindowServer.h"
#include "platform/fake/FakeWorkspace.h"

// Every platform service in memory. Constructing one installs it; tests script it through its members.
class FakePlatform {
public:
    FakePlatform();
    ~FakePlatform();
    FakePlatform(const FakePlatform&) = delete;
    FakePlatform& operator=(const FakePlatform&) = delete;

    FakeMonitors monitors;
    FakeWindowServer windowServer;
    FakeWorkspace workspace;
    FakeAccessibility accessibility;
    FakeHotKeys hotKeys;
    FakeKeyboardLayout keyboardLayout;
    FakeSettingsStore settings;
    FakeAutostart autostart;
    FakePermissions permissions;
    FakeActivation activation;
};
