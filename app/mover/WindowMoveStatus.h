// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include "app/model/Models.h"

// The status messages that report a move, the same in the panel and on the command line.
namespace WindowMoveStatus {

// "Moved N of M windows."
QString allWindows(const WindowMoveResult& result);
// "Moved N of M <application> windows."
QString applicationWindows(const WindowMoveResult& result, const QString& application);
// "Moved focused window to <monitor>.", or why it was not moved.
QString focusedWindow(const WindowMoveResult& result, const QString& monitor);

}  // namespace WindowMoveStatus
