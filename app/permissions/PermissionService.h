// SPDX-License-Identifier: MIT
#pragma once

#include "app/model/Models.h"

// Reads what the session allows and opens the pages that explain it. Stateless.
namespace PermissionService {

// Screen capture is checked first, then window control.
PermissionState currentState();
// Checks window control again; no prompt exists, so this is all a request can do.
CapabilityCheck requestWindowControl();
// Checks screen capture again.
CapabilityCheck requestScreenCapture();
// Opens the page that explains what the session needs for a capability; false when there is none or
// nothing could open it.
bool openHelp(Capability capability);

}  // namespace PermissionService
