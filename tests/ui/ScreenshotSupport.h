#pragma once

#include <QPalette>
#include <QString>

// Where screenshots go: $LATTICA_SCREENSHOT_DIR, or nowhere (empty) when it is not set.
QString screenshotDirectory();
// A dark palette for the screenshots that check the views in dark mode.
QPalette darkPalette();
