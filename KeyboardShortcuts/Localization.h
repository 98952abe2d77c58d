#pragma once

#include <QString>

namespace KeyboardShortcuts {

// The English text of a localisation key of the shortcut subsystem; the key itself when unknown.
QString localized(const char* key);
// Foundation-style capitalisation: the first letter of each word upper-case, the rest lower-case.
QString capitalized(const QString& text);

}  // namespace KeyboardShortcuts
