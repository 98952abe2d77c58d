// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <optional>

#include "KeyboardShortcuts/Key.h"

namespace KeyboardShortcuts {

// The character a character key prints without modifiers in the current layout; nothing for special
// keys, when there is no layout, or when the key does not produce exactly one character.
std::optional<QString> keyToCharacter(Key key);

// Capitalises each word: the first letter upper-case, the rest lower-case.
QString capitalized(const QString& text);

}  // namespace KeyboardShortcuts
