// SPDX-License-Identifier: MIT
#pragma once

#include <QLocale>

// The user interface in the desktop's language: Lattica's own translations (compiled in) and Qt's for
// its standard texts. English needs none.
namespace Translations {
// Installs the translations for the locale into the application; returns whether Lattica's own were
// found for it.
bool install(const QLocale& locale = QLocale());
}  // namespace Translations
