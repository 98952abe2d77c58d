#include "app/Geometry.h"
#include "app/ScreenSnapshotService.h"
#include "platform/Displays.h"
#include "platform/Platform.h"

QList<DisplaySnapshot> ScreenSnapshotService::captureDisplaySnapshots(const QList<DisplayDescriptor>& descriptors) {
    if (descriptors.isEmpty()) {
        return {};
    }
    Displays* displays = Platform::services().displays;
    // One inventory for all displays.
    const QList<QualifiedWindow> inventory = qualifyingWindows();

    QList<DisplaySnapshot> snapshots;
    for (const DisplayDescriptor& descriptor : descriptors) {
        DisplaySnapshot snapshot = DisplaySnapshot::placeholder(descriptor);
        const QImage image = displays->createImage(descriptor.id);
        if (!image.isNull()) {
            snapshot.previewImage = image;
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
