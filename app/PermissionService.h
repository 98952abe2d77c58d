#pragma once

#include "app/Models.h"

// Reads and requests the two grants the program needs. Stateless.
namespace PermissionService {

inline constexpr const char* kAccessibilitySettingsURL =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";
inline constexpr const char* kScreenRecordingSettingsURL =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture";

// Screen capture is read first, then accessibility trust.
PermissionState currentState();
// Prompts for accessibility trust unless it is already granted.
void requestAccessibility();
void requestScreenRecording();
void openAccessibilitySettings();
void openScreenRecordingSettings();

}  // namespace PermissionService
