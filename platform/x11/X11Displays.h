#pragma once

#include <QHash>
#include <QMutex>
#include <QTimer>
#include <memory>

#include "platform/Displays.h"
#include "platform/x11/X11Capture.h"

class X11Connection;

// Displays from RandR 1.5 monitors: the primary monitor first, then RandR's order. The global space is
// the root window shifted so that the primary monitor's top-left corner is the origin.
class X11Displays : public Displays {
    Q_OBJECT
public:
    explicit X11Displays(X11Connection& connection);
    ~X11Displays() override;

    QList<PlatformScreen> screens() override;
    QRectF bounds(CGDirectDisplayID display) override;
    quint32 vendorNumber(CGDirectDisplayID display) override;
    quint32 modelNumber(CGDirectDisplayID display) override;
    quint32 serialNumber(CGDirectDisplayID display) override;
    quint32 unitNumber(CGDirectDisplayID display) override;
    QImage createImage(CGDirectDisplayID display) override;

    // Where the global space's origin lies in root coordinates.
    QPoint globalOriginInRoot();

    struct Monitor {
        CGDirectDisplayID id = 0;
        QString name;
        QRect rootRect;  // in root coordinates
        quint32 vendor = 0;
        quint32 model = 0;
        quint32 serial = 0;
        quint32 unit = 0;
        bool primary = false;

        bool operator==(const Monitor&) const = default;
    };

private:
    // Reads the active monitors from the server, primary first.
    QList<Monitor> fetchMonitors();
    const Monitor* findMonitor(CGDirectDisplayID display);
    bool handleEvent(xcb_generic_event_t* event);
    void checkForConfigurationChange();
    // The raw monitor list as the server reports it; cheap enough to poll.
    QByteArray monitorSignature();
    void pollForUnannouncedChange();

    X11Connection& m_connection;
    int m_eventHandler = 0;
    uint8_t m_randrFirstEvent = 0;
    bool m_hasRandr15 = false;
    QTimer m_coalesceTimer;
    QTimer m_pollTimer;
    QByteArray m_lastSignature;
    QList<Monitor> m_monitors;           // from the last fetch
    QList<Monitor> m_signalledMonitors;  // the configuration last announced
    QMutex m_rectMutex;
    QHash<CGDirectDisplayID, QRect> m_rootRects;  // read by capture threads
    X11Capture m_capture;
};
