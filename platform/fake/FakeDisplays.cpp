#include "platform/fake/FakeDisplays.h"

void FakeDisplays::changeDisplays(const QList<Display>& displays) {
    m_displays = displays;
    Q_EMIT screenParametersChanged();
}

QList<PlatformScreen> FakeDisplays::screens() {
    QList<PlatformScreen> screens;
    for (const Display& display : m_displays) {
        PlatformScreen screen;
        if (display.hasScreenNumber) {
            screen.deviceDescription.insert(QLatin1String(kNSScreenNumber), display.id);
        }
        screen.localizedName = display.name;
        screens.append(screen);
    }
    return screens;
}

const FakeDisplays::Display* FakeDisplays::find(CGDirectDisplayID display) const {
    for (const Display& candidate : m_displays) {
        if (candidate.id == display) {
            return &candidate;
        }
    }
    return nullptr;
}

QRectF FakeDisplays::bounds(CGDirectDisplayID display) {
    const Display* found = find(display);
    return found != nullptr ? found->bounds : QRectF();
}

quint32 FakeDisplays::vendorNumber(CGDirectDisplayID display) {
    const Display* found = find(display);
    return found != nullptr ? found->vendor : 0;
}

quint32 FakeDisplays::modelNumber(CGDirectDisplayID display) {
    const Display* found = find(display);
    return found != nullptr ? found->model : 0;
}

quint32 FakeDisplays::serialNumber(CGDirectDisplayID display) {
    const Display* found = find(display);
    return found != nullptr ? found->serial : 0;
}

quint32 FakeDisplays::unitNumber(CGDirectDisplayID display) {
    const Display* found = find(display);
    return found != nullptr ? found->unit : 0;
}

QImage FakeDisplays::createImage(CGDirectDisplayID display) {
    ++m_captureCount;
    const Display* found = find(display);
    return found != nullptr ? found->image : QImage();
}
