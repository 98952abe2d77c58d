#pragma once

#include <QHash>

#include "platform/Displays.h"

// Scripted displays for tests.
class FakeDisplays : public Displays {
    Q_OBJECT
public:
    struct Display {
        CGDirectDisplayID id = 0;
        QString name;
        QRectF bounds;
        quint32 vendor = 0;
        quint32 model = 0;
        quint32 serial = 0;
        quint32 unit = 0;
        QImage image;                 // what createImage returns; null means the capture fails
        bool hasScreenNumber = true;  // false lists the screen without "NSScreenNumber"
    };

    // Replaces the connected displays (main display first) without signalling.
    void setDisplays(const QList<Display>& displays) { m_displays = displays; }
    // Replaces them and emits the change signal, as a real configuration change would.
    void changeDisplays(const QList<Display>& displays);
    const QList<Display>& displays() const { return m_displays; }
    int captureCount() const { return m_captureCount; }

    QList<PlatformScreen> screens() override;
    QRectF bounds(CGDirectDisplayID display) override;
    quint32 vendorNumber(CGDirectDisplayID display) override;
    quint32 modelNumber(CGDirectDisplayID display) override;
    quint32 serialNumber(CGDirectDisplayID display) override;
    quint32 unitNumber(CGDirectDisplayID display) override;
    QImage createImage(CGDirectDisplayID display) override;

private:
    const Display* find(CGDirectDisplayID display) const;

    QList<Display> m_displays;
    std::atomic<int> m_captureCount = 0;
};
