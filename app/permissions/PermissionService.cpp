// SPDX-License-Identifier: MIT
#include "app/permissions/PermissionService.h"

#include "platform/DesktopLauncher.h"
#include "platform/Platform.h"
#include "platform/SessionCheck.h"

namespace {
SessionCheck* sessionCheck() {
    return Platform::services().sessionCheck;
}
}  // namespace

PermissionState PermissionService::currentState() {
    const CapabilityCheck screenCapture = sessionCheck()->screenCapture();
    const CapabilityCheck windowControl = sessionCheck()->windowControl();
    return PermissionState::fromChecks(screenCapture, windowControl);
}

CapabilityCheck PermissionService::requestWindowControl() {
    return sessionCheck()->windowControl();
}

CapabilityCheck PermissionService::requestScreenCapture() {
    return sessionCheck()->screenCapture();
}

bool PermissionService::openHelp(Capability capability) {
    const QUrl page = sessionCheck()->helpPage(capability);
    if (page.isEmpty()) {
        return false;
    }
    return Platform::services().desktopLauncher->openUrl(page);
}
