// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <QList>
#include <QMutex>
#include <QRect>
#include <QSize>
#include <QTimer>
#include <chrono>
#include <memory>

// Takes pictures of parts of the root window on a connection of its own, so that it can run on a
// background thread while the main thread uses the shared connection. Pictures come through MIT-SHM
// straight into shared memory that the returned image keeps (no copy), or through plain GetImage when
// shared memory is unavailable. A segment whose picture is gone is kept for the next picture of the same
// size (pictures come in sets of the same sizes, one set per panel opening) until no picture has been
// let go for keepSpares; then every spare is released. The release runs from the event loop of the
// thread that made the capture: without one, spares stay until releaseSpareSegments or the capture's end.
class X11Capture {
public:
    enum class Method { Automatic, SharedMemory, GetImage };

    static constexpr std::chrono::milliseconds kKeepSpares{1000};

    explicit X11Capture(QByteArray displayName, std::chrono::milliseconds keepSpares = kKeepSpares);
    ~X11Capture();
    X11Capture(const X11Capture&) = delete;
    X11Capture& operator=(const X11Capture&) = delete;

    // A picture of the rectangle of the root window (root coordinates); null when it cannot be taken.
    // Automatic uses shared memory when it works and GetImage otherwise. Thread-safe.
    QImage capture(const QRect& rootRect, Method method = Method::Automatic);
    // Whether the server offers shared-memory pictures to this process (connects when needed).
    bool hasSharedMemory();
    // Shared-memory segments this process holds, for pictures still alive and as spares, over every
    // capture object.
    static int attachedSegments();
    // Connects, and makes the segments for pictures of these sizes (in pixels) now, ahead of the pictures,
    // less the spares that wait already. Thread-safe.
    void prepare(const QList<QSize>& pictureSizes);
    // Segments of this capture kept for reuse, and how many segments it has made since it was created.
    int spareSegments() const;
    int segmentsMade() const;
    // Lets every spare segment go now.
    void releaseSpareSegments();

    class SegmentPool;

private:
    bool ensureConnected();
    void disconnect();
    QImage captureWithGetImage(const QRect& rect);
    QImage captureWithSharedMemory(const QRect& rect);
    // Whether the screen's pixels come in the 32-bit format the pictures read from shared memory.
    bool sharedMemoryFormat() const;

    QByteArray m_displayName;
    QMutex m_mutex;
    xcb_connection_t* m_connection = nullptr;
    xcb_screen_t* m_screen = nullptr;
    bool m_sharedMemoryUsable = false;
    std::shared_ptr<SegmentPool> m_pool;
    // Started each time a picture's segment comes back; lives on the thread that made the capture.
    QTimer m_releaseTimer;
};
