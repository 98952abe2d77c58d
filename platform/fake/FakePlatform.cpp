#include "platform/fake/FakePlatform.h"

FakePlatform::FakePlatform() {
    Platform::install({&displays, &windowServer, &workspace, &accessibility, &hotKeys, &keyboardLayout, &userDefaults,
                       &loginItems, &sessionCheck, &activation});
}

FakePlatform::~FakePlatform() {
    Platform::install({});
}
