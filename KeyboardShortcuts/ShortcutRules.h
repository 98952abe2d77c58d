// SPDX-License-Identifier: MIT
#pragma once

#include "KeyboardShortcuts/Shortcut.h"

// The rules every global shortcut obeys, whether it was just recorded or read back from the preferences.
namespace KeyboardShortcuts::ShortcutRules {

// Why a shortcut cannot be a global shortcut.
enum class Refusal {
    none,
    // Without Ctrl, Alt or Super the key would be taken from every application; function keys are the
    // exception.
    needsModifier,
    // Alt alone, or Alt with Shift, on a hot-key service that refuses those.
    optionOnly,
};

bool isFunctionKey(Key key);
// Alt is the only modifier that counts (Shift may come with it).
bool isOptionOnly(const Shortcut& shortcut);
Refusal refusal(const Shortcut& shortcut, bool optionOnlyRestricted);

}  // namespace KeyboardShortcuts::ShortcutRules
