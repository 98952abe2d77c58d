// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>
#include <functional>
#include <optional>

// Stored shortcuts name a physical key with a Carbon virtual key code; KDE's global shortcuts name keys
// as Qt does (Qt::Key plus Qt modifiers), which depends on the layout for keys that type characters.
namespace KWinKeyCodes {

// The Qt key for a Carbon key code: keys that type nothing (function keys, arrows, Return, the keypad)
// from a fixed table, the others from the character the current layout gives them, or a US layout's
// when it gives none. Nothing when the key has no Qt equivalent.
std::optional<int> qtKey(int carbonKeyCode, const std::function<std::optional<QString>(int)>& characterForKey);
// Qt modifiers for Carbon modifier bits; nothing when a bit has no Qt equivalent (function).
std::optional<int> qtModifiers(quint32 carbonModifiers);

}  // namespace KWinKeyCodes
