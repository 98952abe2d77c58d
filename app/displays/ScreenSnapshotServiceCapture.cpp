// SPDX-License-Identifier: MIT
#include "app/displays/ScreenSnapshotService.h"
#include "app/model/Geometry.h"
#include "platform/Monitors.h"
#include "platform/Platform.h"

QList<DisplaySnapshot> ScreenSnapshotService::captureDisplaySnapshots(const QList<DisplayDescriptor>& descriptors) {
    if (descriptors.isEmpty()) {
        return {};
    }
    Monitors* monitors = Platform::services().monitors;
    // The pictures come first: they take a few milliseconds, and this runs while the panel is about to
    // appear, so taken now they show the displays as the user left them rather than the panel itself.
    QList<QImage> pictures;
    pictures.reserve(descriptors.size());
    for (const DisplayDescriptor& descriptor : descriptors) {
        pictures.append(monitors->capture(descriptor.id));
    }
    // One inventory for all displays.
    const QList<QualifiedWindow> inventory = qualifyingWindows();

    QList<DisplaySnapshot> snapshots;
    for (qsizetype i = 0; i < descriptors.size(); ++i) {
        const DisplayDescriptor& descriptor = descriptors.at(i);
        DisplaySnapshot snapshot = DisplaySnapshot::placeholder(descriptor);
        if (!pictures.at(i).isNull()) {
            snapshot.previewImage = pictures.at(i);
        }
        QList<QualifiedWindow> onDisplay;
        for (const QualifiedWindow& window : inventory) {
            if (Geometry::intersects(window.bounds, descriptor.bounds)) {
                onDisplay.append(window);
            }
        }
        const auto visible = std::count_if(onDisplay.cbegin(), onDisplay.cend(),
                                           [](const QualifiedWindow& window) { return window.isOnScreen; });
        snapshot.visibleWindowCount = static_cast<int>(visible);
        snapshot.invisibleWindowCount = static_cast<int>(onDisplay.size() - visible);
        snapshot.appGroups = groupedApplications(onDisplay);
        snapshots.append(snapshot);
    }
    return snapshots;
}
