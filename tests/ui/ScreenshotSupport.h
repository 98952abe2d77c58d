// SPDX-License-Identifier: MIT
#pragma once

#include <QPalette>
#include <QString>

// Where screenshots go: $LATTICA_SCREENSHOT_DIR, else a folder of the build tree.
QString screenshotDirectory();
// A dark palette for the screenshots that check the views in dark mode.
QPalette darkPalette();
