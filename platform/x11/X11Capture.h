// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <QMutex>
#include <QRect>
#include <memory>

// Takes pictures of parts of the root window on a connection of its own, so that it can run on a
// background thread while the main thread uses the shared connection. Pictures come through MIT-SHM
// straight into shared memory that the returned image keeps (no copy) and lets go with it, or through plain GetImage
// when shared memory is unavailable.
class X11Capture {
public:
    enum class Method { Automatic, SharedMemory, GetImage };

    explicit X11Capture(QByteArray displayName);
    ~X11Capture();
    X11Capture(const X11Capture&) = delete;
    X11Capture& operator=(const X11Capture&) = delete;

    // A picture of the rectangle of the root window (root coordinates); null when it cannot be taken.
    // Automatic uses shared memory when it works and GetImage otherwise. Thread-safe.
    QImage capture(const QRect& rootRect, Method method = Method::Automatic);
    // Whether the server offers shared-memory pictures to this process (connects when needed).
    bool hasSharedMemory();
    // Shared-memory segments this process holds for pictures still alive, over every capture object.
    // Nothing else keeps one: a segment goes when its picture goes.
    static int attachedSegments();

    class SegmentPool;

private:
    bool ensureConnected();
    void disconnect();
    QImage captureWithGetImage(const QRect& rect);
    QImage captureWithSharedMemory(const QRect& rect);

    QByteArray m_displayName;
    QMutex m_mutex;
    xcb_connection_t* m_connection = nullptr;
    xcb_screen_t* m_screen = nullptr;
    bool m_sharedMemoryUsable = false;
    std::shared_ptr<SegmentPool> m_pool;
};
