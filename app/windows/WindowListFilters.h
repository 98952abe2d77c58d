// SPDX-License-Identifier: MIT
#pragma once

#include <QRectF>
#include <QSet>
#include <QString>

#include "platform/WindowControl.h"
#include "platform/WindowList.h"

// The tests that tell user windows from other window-list entries, shared by the inventory and the mover.
namespace WindowListFilters {

// Owners whose layer-0 surfaces are never user windows.
bool isExcludedOwnerName(const QString& name);
// Whether the entry sits on the layer of ordinary windows (0).
bool isOnNormalLayer(const WindowEntry& entry);
// True when the entry has an opacity and it is no greater than 0.01.
bool isTransparent(const WindowEntry& entry);
// True when the entry has an owner name and it is one of the excluded ones.
bool hasExcludedOwnerName(const WindowEntry& entry);
// Whether bounds are large enough for a user window: at least 120 x 80 points.
bool hasUserWindowSize(const QRectF& bounds);

// Whether an entry is a user window: on the normal layer, owned by a regular running application (one
// of regularPIDs), not an excluded owner, not transparent and of user-window size. The panel counts
// exactly the windows the mover moves, so both decide here.
bool isUserWindow(const WindowEntry& entry, const QSet<pid_t>& regularPIDs);
// Whether a role is one a user moves: a window or a dialog.
bool isMovableRole(WindowRole role);

// Process ids of the running applications that are regular and not terminated.
QSet<pid_t> regularApplicationPIDs();

}  // namespace WindowListFilters
