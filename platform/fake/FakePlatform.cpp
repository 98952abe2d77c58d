// SPDX-License-Identifier: MIT
#include "platform/fake/FakePlatform.h"

FakePlatform::FakePlatform() {
    windowList.answerApplicationsFrom(&windowControl);
    Platform::install({&monitors, &windowList, &runningApplications, &windowControl, &hotKeys, &keyboardLayout,
                       &settings, &autostart, &sessionCheck, &taskbarPresence, &foregroundActivation, &desktopLauncher,
                       &systemInfo, &trayHost});
}

FakePlatform::~FakePlatform() {
    Platform::install({});
}
