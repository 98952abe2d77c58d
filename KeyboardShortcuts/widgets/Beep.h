// SPDX-License-Identifier: MIT
#pragma once

namespace KeyboardShortcuts {

// Sounds the alert beep. Counted so that tests can tell a refusal happened.
void beep();
int beepCount();

}  // namespace KeyboardShortcuts
