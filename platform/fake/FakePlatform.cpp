#include "platform/fake/FakePlatform.h"

FakePlatform::FakePlatform() {
    Platform::install({&displays, &windowList, &runningApplications, &accessibility, &hotKeys, &keyboardLayout,
                       &userDefaults, &loginItems, &permissions, &activation});
}

FakePlatform::~FakePlatform() {
    Platform::install({});
}
