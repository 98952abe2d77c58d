// SPDX-License-Identifier: MIT
#pragma once

#include "platform/KeyboardLayout.h"

// Where no layout can be read (no Xwayland): keys are shown by position only.
class NoKeyboardLayout : public KeyboardLayout {
public:
    std::optional<QString> characterForKeyCode(int) override { return std::nullopt; }
    std::optional<int> carbonKeyCodeForScanCode(quint32) override { return std::nullopt; }
};
