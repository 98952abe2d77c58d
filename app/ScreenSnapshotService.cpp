#include "app/ScreenSnapshotService.h"

#include "platform/Displays.h"
#include "platform/Platform.h"

QList<DisplayDescriptor> ScreenSnapshotService::currentDisplayDescriptors() {
    Displays* displays = Platform::services().displays;
    QList<DisplayDescriptor> descriptors;
    int index = 1;
    for (const PlatformScreen& screen : displays->screens()) {
        const QVariant number = screen.deviceDescription.value(QLatin1String(kNSScreenNumber));
        bool isNumber = false;
        switch (number.typeId()) {
            case QMetaType::Int:
            case QMetaType::UInt:
            case QMetaType::LongLong:
            case QMetaType::ULongLong:
            case QMetaType::Double:
                isNumber = true;
                break;
            default:
                break;
        }
        if (!isNumber) {
            continue;
        }
        DisplayDescriptor descriptor;
        descriptor.id = static_cast<CGDirectDisplayID>(number.toULongLong());
        descriptor.persistentID = stableDisplayIdentifier(descriptor.id);
        descriptor.index = index++;
        descriptor.name = screen.localizedName;
        descriptor.bounds = displays->bounds(descriptor.id);
        descriptors.append(descriptor);
    }
    return descriptors;
}

QString ScreenSnapshotService::stableDisplayIdentifier(CGDirectDisplayID display) {
    Displays* displays = Platform::services().displays;
    const quint32 vendor = displays->vendorNumber(display);
    const quint32 model = displays->modelNumber(display);
    const quint32 serial = displays->serialNumber(display);
    if (serial != 0) {
        return QStringLiteral("v%1-m%2-s%3").arg(vendor).arg(model).arg(serial);
    }
    if (vendor != 0 || model != 0) {
        return QStringLiteral("v%1-m%2-u%3").arg(vendor).arg(model).arg(displays->unitNumber(display));
    }
    return QStringLiteral("display-%1").arg(display);
}
