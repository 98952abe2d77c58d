#pragma once

#include <QRectF>
#include <QSet>
#include <QString>

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

// Process ids of the running applications that are regular and not terminated.
QSet<pid_t> regularApplicationPIDs();

}  // namespace WindowListFilters
