#include "platform/fake/FakePlatform.h"

FakePlatform::FakePlatform() {
    Platform::install({&monitors, &windowServer, &workspace, &accessibility, &hotKeys, &keyboardLayout, &settings,
                       &loginItems, &permissions, &activation});
}

FakePlatform::~FakePlatform() {
    Platform::install({});
}
