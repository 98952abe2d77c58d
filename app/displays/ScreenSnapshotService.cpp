// SPDX-License-Identifier: MIT
#include "app/displays/ScreenSnapshotService.h"

#include "platform/Monitors.h"
#include "platform/Platform.h"

QList<DisplayDescriptor> ScreenSnapshotService::currentDisplayDescriptors() {
    QList<DisplayDescriptor> descriptors;
    int index = 1;
    for (const Monitor& monitor : Platform::services().monitors->monitors()) {
        if (monitor.id == 0) {
            continue;
        }
        DisplayDescriptor descriptor;
        descriptor.id = monitor.id;
        descriptor.persistentID = stableDisplayIdentifier(monitor);
        descriptor.index = index++;
        descriptor.name = monitor.name;
        descriptor.bounds = monitor.bounds;
        descriptor.formerPersistentID = formerDisplayIdentifier(monitor);
        descriptors.append(descriptor);
    }
    return descriptors;
}

QString ScreenSnapshotService::stableDisplayIdentifier(const Monitor& monitor) {
    if (monitor.serial != 0) {
        return QStringLiteral("v%1-m%2-s%3").arg(monitor.vendor).arg(monitor.model).arg(monitor.serial);
    }
    if (monitor.vendor != 0 || monitor.model != 0) {
        return QStringLiteral("v%1-m%2-u%3").arg(monitor.vendor).arg(monitor.model).arg(monitor.unit);
    }
    return QStringLiteral("display-%1").arg(monitor.id);
}

QString ScreenSnapshotService::formerDisplayIdentifier(const Monitor& monitor) {
    if (monitor.formerId == 0) {
        return {};
    }
    const QString former = QStringLiteral("display-%1").arg(monitor.formerId);
    return former == stableDisplayIdentifier(monitor) ? QString() : former;
}
