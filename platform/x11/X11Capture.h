#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <QMutex>
#include <QRect>

// Takes pictures of parts of the root window on a connection of its own, so that it can run on a
// background thread while the main thread uses the shared connection.
class X11Capture {
public:
    explicit X11Capture(QByteArray displayName);
    ~X11Capture();
    X11Capture(const X11Capture&) = delete;
    X11Capture& operator=(const X11Capture&) = delete;

    // A picture of the rectangle of the root window (root coordinates); null when it cannot be taken.
    // Thread-safe.
    QImage capture(const QRect& rootRect);

private:
    bool ensureConnected();
    QImage captureWithGetImage(const QRect& rect);

    QByteArray m_displayName;
    QMutex m_mutex;
    xcb_connection_t* m_connection = nullptr;
    xcb_screen_t* m_screen = nullptr;
};
