#pragma once

#include <QImage>
#include <QList>
#include <QObject>
#include <QRectF>
#include <QVariantMap>

#include "platform/Types.h"

// Key of a screen's device description that holds its display number.
inline constexpr const char* kNSScreenNumber = "NSScreenNumber";

// One screen as the platform lists it.
struct PlatformScreen {
    // "NSScreenNumber" holds the display number; a screen without it (or with a non-number) is unusable.
    QVariantMap deviceDescription;
    QString localizedName;
};

// Connected displays, their hardware identity and their pictures.
// Everything is in the global display space: origin at the top-left corner of the main display, y downwards.
class Displays : public QObject {
    Q_OBJECT
public:
    Displays() = default;
    ~Displays() override = default;
    Displays(const Displays&) = delete;
    Displays& operator=(const Displays&) = delete;

    // The connected screens, main display first, then in the platform's order.
    virtual QList<PlatformScreen> screens() = 0;
    // The display's rectangle in the global display space (empty when unknown).
    virtual QRectF bounds(CGDirectDisplayID display) = 0;
    // Hardware numbers of the display; 0 when the display does not report one.
    virtual quint32 vendorNumber(CGDirectDisplayID display) = 0;
    virtual quint32 modelNumber(CGDirectDisplayID display) = 0;
    virtual quint32 serialNumber(CGDirectDisplayID display) = 0;
    virtual quint32 unitNumber(CGDirectDisplayID display) = 0;
    // A full-resolution picture of the display's current contents; a null image when it cannot be taken.
    // Safe to call from any thread.
    virtual QImage createImage(CGDirectDisplayID display) = 0;

Q_SIGNALS:
    // Emitted once per display configuration change, on the main thread.
    void screenParametersChanged();
};
