#include "platform/fake/FakePlatform.h"

FakePlatform::FakePlatform() {
    Platform::install({&displays, &windowServer, &workspace, &windowControl, &hotKeys, &keyboardLayout, &userDefaults,
                       &loginItems, &permissions, &activation});
}

FakePlatform::~FakePlatform() {
    Platform::install({});
}
