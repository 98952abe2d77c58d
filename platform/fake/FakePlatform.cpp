#include "platform/fake/FakePlatform.h"

FakePlatform::FakePlatform() {
    Platform::install({&monitors, &windowList, &workspace, &accessibility, &hotKeys, &keyboardLayout, &userDefaults,
                       &loginItems, &sessionCheck, &activation});
}

FakePlatform::~FakePlatform() {
    Platform::install({});
}
