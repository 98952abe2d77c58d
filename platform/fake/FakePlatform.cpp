#include "platform/fake/FakePlatform.h"

FakePlatform::FakePlatform() {
    Platform::install({&displays, &windowServer, &workspace, &accessibility, &hotKeys, &keyboardLayout, &userDefaults,
                       &loginItems, &sessionCheck, &taskbarPresence, &foregroundActivation, &desktopLauncher,
                       &systemInfo});
}

FakePlatform::~FakePlatform() {
    Platform::install({});
}
