#include "platform/fake/FakePlatform.h"

FakePlatform::FakePlatform() {
    Platform::install({&monitors, &windowList, &runningApplications, &windowControl, &hotKeys, &keyboardLayout,
                       &userDefaults, &loginItems, &sessionCheck, &taskbarPresence, &foregroundActivation,
                       &desktopLauncher, &systemInfo});
}

FakePlatform::~FakePlatform() {
    Platform::install({});
}
