#include "app/PermissionService.h"

#include "platform/Permissions.h"
#include "platform/Platform.h"

namespace {
Permissions* permissions() {
    return Platform::services().permissions;
}
}  // namespace

PermissionState PermissionService::currentState() {
    PermissionState state;
    state.screenRecordingGranted = permissions()->preflightScreenCaptureAccess();
    state.accessibilityGranted = permissions()->isProcessTrusted();
    return state;
}

void PermissionService::requestAccessibility() {
    if (permissions()->isProcessTrusted()) {
        return;
    }
    permissions()->isProcessTrustedWithOptions(true);
}

void PermissionService::requestScreenRecording() {
    permissions()->requestScreenCaptureAccess();
}

void PermissionService::openAccessibilitySettings() {
    permissions()->openSettingsPage(QString::fromLatin1(kAccessibilitySettingsURL));
}

void PermissionService::openScreenRecordingSettings() {
    permissions()->openSettingsPage(QString::fromLatin1(kScreenRecordingSettingsURL));
}
