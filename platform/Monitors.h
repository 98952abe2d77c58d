// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QList>
#include <QObject>
#include <QRectF>
#include <QString>

#include "platform/Types.h"

// One connected monitor. Everything is in the global display space: origin at the top-left corner of the
// primary monitor, y downwards.
struct Monitor {
    // The display number while the monitor stays connected; 0 when the monitor has none, which leaves it
    // unaddressable (the core skips such a monitor).
    MonitorId id = 0;
    QString name;
    QRectF bounds;
    bool primary = false;
    // Identity from the monitor's EDID; 0 where it reports none.
    quint32 vendor = 0;
    quint32 model = 0;
    quint32 serial = 0;
    // The monitor's position among the outputs of its screen.
    quint32 unit = 0;
    // Where the identity comes from the EDID but earlier versions of the program did not read it there:
    // the display number they knew the monitor by, so that what they stored under it is found again; 0
    // when there is none.
    MonitorId formerId = 0;

    bool operator==(const Monitor&) const = default;
};

// Connected monitors and their pictures.
class Monitors : public QObject {
    Q_OBJECT
public:
    Monitors() = default;
    ~Monitors() override = default;
    Monitors(const Monitors&) = delete;
    Monitors& operator=(const Monitors&) = delete;

    // The connected monitors, primary first, then in the platform's order.
    virtual QList<Monitor> monitors() = 0;
    // A full-resolution picture of the monitor's current contents; a null image when it cannot be taken.
    // Safe to call from any thread.
    virtual QImage capture(MonitorId id) = 0;
    // Readies what the next capture of an area of this size (global space; none when empty) needs, so that
    // the panel's opening does not wait for it: on X11 the capture's own connection to the display server
    // and the shared memory of the area's picture, which holds no memory until a picture is written into
    // it. Captures work without it.
    virtual void prepareCapture(const QRectF& area) { Q_UNUSED(area); }
    // Whether captureArea can take pictures here.
    virtual bool canCaptureAreas() const { return false; }
    // A full-resolution picture of an area of the global space, as it is on screen when the call returns
    // (so that one of our windows shown afterwards is not in it); a null image when it cannot be taken.
    // Safe to call from any thread.
    virtual QImage captureArea(const QRectF& area) {
        Q_UNUSED(area);
        return {};
    }

Q_SIGNALS:
    // Emitted once per monitor configuration change, on the main thread.
    void changed();
};
