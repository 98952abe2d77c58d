// SPDX-License-Identifier: MIT
#pragma once

namespace KeyboardShortcuts {

// What the hot-key service reports of a registered hot key.
enum class HotKeyEvent { pressed, released };

// What the raw key monitor reports of a key while a menu holds the keyboard.
enum class RawKeyEvent {
    keyDown,
    keyUp,
    // A repeat or a shortcut override: only asks whether the key is one of ours; nothing runs.
    probe,
};

}  // namespace KeyboardShortcuts
