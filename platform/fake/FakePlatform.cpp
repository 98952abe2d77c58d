#include "platform/fake/FakePlatform.h"

FakePlatform::FakePlatform() {
    Platform::install({&monitors, &windowServer, &workspace, &accessibility, &hotKeys, &keyboardLayout, &settings,
                       &autostart, &permissions, &activation});
}

FakePlatform::~FakePlatform() {
    Platform::install({});
}
