// SPDX-License-Identifier: MIT
#include "platform/x11/X11Capture.h"
#include "platform/x11/XcbReply.h"

#include <sys/ipc.h>
#include <sys/shm.h>
#include <xcb/shm.h>

#include <QAtomicInt>
#include <QThreadPool>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <vector>

namespace {

struct Segment {
    xcb_shm_seg_t id = 0;
    int shmId = -1;
    uchar* address = nullptr;
    size_t size = 0;
    int generation = 0;  // of the connection it is attached on
};

// Bits per pixel of the server's Z-pixmap format for a depth; 0 when it has none.
int bitsPerPixel(xcb_connection_t* connection, uint8_t depth) {
    for (auto it = xcb_setup_pixmap_formats_iterator(xcb_get_setup(connection)); it.rem > 0; xcb_format_next(&it)) {
        if (it.data->depth == depth) {
            return it.data->bits_per_pixel;
        }
    }
    return 0;
}

}  // namespace

// The shared-memory segments of a capture. A picture holds its segment until the image is destroyed,
// then hands it back here, which may happen on any thread and after the capture is gone. A segment handed
// back is kept as a spare for the next picture of its size, and the capture's release timer is started
// again; segments of a closed or earlier connection are let go at once. When the timer runs out, every
// spare is let go.
class X11Capture::SegmentPool {
public:
    explicit SegmentPool(QTimer* releaseTimer) : m_releaseTimer(releaseTimer) {}

    // From now on segments are attached on this connection; spares of the one before are let go.
    void open(xcb_connection_t* connection) {
        QMutexLocker lock(&m_mutex);
        destroySpares();
        m_connection = connection;
        ++m_generation;
    }

    // The connection is about to close: spares go now, segments handed back later are only detached
    // from this process.
    void close() {
        QMutexLocker lock(&m_mutex);
        destroySpares();
        m_connection = nullptr;
    }

    // The capture is gone: nothing starts its timer any more.
    void forgetTimer() {
        QMutexLocker lock(&m_mutex);
        m_releaseTimer = nullptr;
    }

    // A spare segment of exactly the size, or a new one attached to the server; nothing when shared
    // memory fails.
    std::optional<Segment> take(size_t size) {
        {
            QMutexLocker lock(&m_mutex);
            const auto spare = std::find_if(m_spares.begin(), m_spares.end(),
                                            [size](const Segment& segment) { return segment.size == size; });
            if (spare != m_spares.end()) {
                const Segment segment = *spare;
                m_spares.erase(spare);
                return segment;
            }
        }
        return create(size);
    }

    // Makes spares ahead of their pictures, one per size given (a size may come more than once), less
    // the spares of those sizes that wait already.
    void prepare(std::vector<size_t> sizes) {
        {
            QMutexLocker lock(&m_mutex);
            for (const Segment& spare : m_spares) {
                const auto same = std::find(sizes.begin(), sizes.end(), spare.size);
                if (same != sizes.end()) {
                    sizes.erase(same);
                }
            }
        }
        for (const size_t size : sizes) {
            const std::optional<Segment> segment = create(size);
            if (!segment) {
                return;
            }
            QMutexLocker lock(&m_mutex);
            if (m_connection == nullptr || segment->generation != m_generation) {
                destroy(*segment);
                return;
            }
            m_spares.push_back(*segment);
        }
    }

    void give(const Segment& segment) {
        QMutexLocker lock(&m_mutex);
        if (m_connection == nullptr || segment.generation != m_generation) {
            destroy(segment);
            return;
        }
        m_spares.push_back(segment);
        if (m_releaseTimer != nullptr) {
            QMetaObject::invokeMethod(m_releaseTimer, qOverload<>(&QTimer::start), Qt::QueuedConnection);
        }
    }

    void releaseSpares() {
        QMutexLocker lock(&m_mutex);
        destroySpares();
    }

    int spareCount() {
        QMutexLocker lock(&m_mutex);
        return int(m_spares.size());
    }
    int madeCount() const { return m_made.loadRelaxed(); }

    // Segments attached and not yet let go, across every pool.
    static int attachedCount() { return s_attached.loadRelaxed(); }

private:
    std::optional<Segment> create(size_t size) {
        Segment segment;
        segment.size = size;
        segment.shmId = shmget(IPC_PRIVATE, size, IPC_CREAT | 0600);
        if (segment.shmId < 0) {
            return std::nullopt;
        }
        void* address = shmat(segment.shmId, nullptr, 0);
        if (address == reinterpret_cast<void*>(-1)) {
            shmctl(segment.shmId, IPC_RMID, nullptr);
            return std::nullopt;
        }
        segment.address = static_cast<uchar*>(address);
        QMutexLocker lock(&m_mutex);
        if (m_connection == nullptr) {
            shmdt(address);
            shmctl(segment.shmId, IPC_RMID, nullptr);
            return std::nullopt;
        }
        segment.id = xcb_generate_id(m_connection);
        segment.generation = m_generation;
        const XcbReply<xcb_generic_error_t> error(xcb_request_check(
            m_connection, xcb_shm_attach_checked(m_connection, segment.id, static_cast<uint32_t>(segment.shmId), 0)));
        // Once both sides are attached the segment can be marked for removal: it lives until the last detach.
        shmctl(segment.shmId, IPC_RMID, nullptr);
        if (error) {
            shmdt(address);
            return std::nullopt;
        }
        s_attached.ref();
        m_made.ref();
        return segment;
    }

    void destroySpares() {
        for (const Segment& segment : m_spares) {
            destroy(segment);
        }
        m_spares.clear();
    }

    void destroy(const Segment& segment) {
        if (m_connection != nullptr && segment.generation == m_generation) {
            xcb_shm_detach(m_connection, segment.id);
            xcb_flush(m_connection);
        }
        shmdt(segment.address);
        s_attached.deref();
    }

    static inline QAtomicInt s_attached;
    QAtomicInt m_made;
    QMutex m_mutex;
    xcb_connection_t* m_connection = nullptr;
    // Counts the connections opened, so that a segment handed back knows whether its connection is the current one.
    int m_generation = 0;
    std::vector<Segment> m_spares;
    QTimer* m_releaseTimer;
};

namespace {

// What an image needs to give its segment back when it is destroyed.
struct SegmentLoan {
    std::shared_ptr<X11Capture::SegmentPool> pool;
    Segment segment;
};

void returnSegment(void* info) {
    auto* loan = static_cast<SegmentLoan*>(info);
    loan->pool->give(loan->segment);
    delete loan;
}

}  // namespace

X11Capture::X11Capture(QByteArray displayName, std::chrono::milliseconds keepSpares)
    : m_displayName(std::move(displayName)), m_pool(std::make_shared<SegmentPool>(&m_releaseTimer)) {
    m_releaseTimer.setSingleShot(true);
    m_releaseTimer.setInterval(keepSpares);
    // Unmapping tens of megabytes takes milliseconds: not on the thread that may be opening the panel.
    QObject::connect(&m_releaseTimer, &QTimer::timeout, &m_releaseTimer,
                     [pool = m_pool] { QThreadPool::globalInstance()->start([pool] { pool->releaseSpares(); }); });
}

X11Capture::~X11Capture() {
    m_pool->forgetTimer();
    QMutexLocker lock(&m_mutex);
    disconnect();
}

void X11Capture::disconnect() {
    m_pool->close();
    if (m_connection != nullptr) {
        xcb_disconnect(m_connection);
        m_connection = nullptr;
    }
    m_sharedMemoryUsable = false;
}

bool X11Capture::ensureConnected() {
    if (m_connection != nullptr && xcb_connection_has_error(m_connection) == 0) {
        return true;
    }
    disconnect();
    int screenNumber = 0;
    m_connection = xcb_connect(m_displayName.isEmpty() ? nullptr : m_displayName.constData(), &screenNumber);
    if (xcb_connection_has_error(m_connection) != 0) {
        xcb_disconnect(m_connection);
        m_connection = nullptr;
        return false;
    }
    xcb_screen_iterator_t it = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
    for (int i = 0; i < screenNumber && it.rem > 0; ++i) {
        xcb_screen_next(&it);
    }
    m_screen = it.data;
    const xcb_query_extension_reply_t* shm = xcb_get_extension_data(m_connection, &xcb_shm_id);
    if (shm != nullptr && shm->present) {
        const XcbReply<xcb_shm_query_version_reply_t> version(
            xcb_shm_query_version_reply(m_connection, xcb_shm_query_version(m_connection), nullptr));
        m_sharedMemoryUsable = version != nullptr;
    }
    m_pool->open(m_connection);
    return m_screen != nullptr;
}

int X11Capture::attachedSegments() {
    return SegmentPool::attachedCount();
}

void X11Capture::prepare(const QList<QSize>& pictureSizes) {
    QMutexLocker lock(&m_mutex);
    if (!ensureConnected() || !m_sharedMemoryUsable || !sharedMemoryFormat()) {
        return;
    }
    std::vector<size_t> sizes;
    for (const QSize& size : pictureSizes) {
        if (!size.isEmpty()) {
            sizes.push_back(size_t(size.width()) * 4 * size_t(size.height()));
        }
    }
    m_pool->prepare(std::move(sizes));
}

bool X11Capture::sharedMemoryFormat() const {
    const uint8_t depth = m_screen->root_depth;
    return (depth == 24 || depth == 32) && bitsPerPixel(m_connection, depth) == 32;
}

int X11Capture::spareSegments() const {
    return m_pool->spareCount();
}

int X11Capture::segmentsMade() const {
    return m_pool->madeCount();
}

void X11Capture::releaseSpareSegments() {
    m_pool->releaseSpares();
}

bool X11Capture::hasSharedMemory() {
    QMutexLocker lock(&m_mutex);
    return ensureConnected() && m_sharedMemoryUsable;
}

QImage X11Capture::capture(const QRect& rootRect, Method method) {
    QMutexLocker lock(&m_mutex);
    if (rootRect.isEmpty() || !ensureConnected()) {
        return {};
    }
    const QRect rootArea(0, 0, m_screen->width_in_pixels, m_screen->height_in_pixels);
    const QRect rect = rootRect.intersected(rootArea);
    if (rect.isEmpty()) {
        return {};
    }
    if (method != Method::GetImage && m_sharedMemoryUsable) {
        QImage image = captureWithSharedMemory(rect);
        if (!image.isNull() || method == Method::SharedMemory) {
            return image;
        }
    } else if (method == Method::SharedMemory) {
        return {};
    }
    return captureWithGetImage(rect);
}

QImage X11Capture::captureWithSharedMemory(const QRect& rect) {
    if (!sharedMemoryFormat()) {
        return {};
    }
    const qsizetype bytesPerLine = qsizetype(rect.width()) * 4;
    const size_t size = size_t(bytesPerLine) * size_t(rect.height());
    std::optional<Segment> segment = m_pool->take(size);
    if (!segment) {
        m_sharedMemoryUsable = false;  // e.g. a server on another machine: GetImage from now on
        return {};
    }
    xcb_generic_error_t* rawError = nullptr;
    const XcbReply<xcb_shm_get_image_reply_t> reply(xcb_shm_get_image_reply(
        m_connection,
        xcb_shm_get_image(m_connection, m_screen->root, static_cast<int16_t>(rect.x()), static_cast<int16_t>(rect.y()),
                          static_cast<uint16_t>(rect.width()), static_cast<uint16_t>(rect.height()), ~0u,
                          XCB_IMAGE_FORMAT_Z_PIXMAP, segment->id, 0),
        &rawError));
    const XcbReply<xcb_generic_error_t> error(rawError);
    const bool ok = reply && !error && reply->size >= size;
    if (!ok) {
        m_pool->give(*segment);
        return {};
    }
    // The image reads the segment in place and hands it back to the pool when it is destroyed.
    auto* loan = new SegmentLoan{m_pool, *segment};
    return QImage(segment->address, rect.width(), rect.height(), bytesPerLine, QImage::Format_RGB32, returnSegment,
                  loan);
}

QImage X11Capture::captureWithGetImage(const QRect& rect) {
    xcb_get_image_cookie_t cookie = xcb_get_image(
        m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen->root, static_cast<int16_t>(rect.x()),
        static_cast<int16_t>(rect.y()), static_cast<uint16_t>(rect.width()), static_cast<uint16_t>(rect.height()), ~0u);
    const XcbReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(m_connection, cookie, nullptr));
    if (!reply) {
        return {};
    }
    QImage image;
    const int length = xcb_get_image_data_length(reply.get());
    if (reply->depth == 24 || reply->depth == 32) {
        const qsizetype bytesPerLine = static_cast<qsizetype>(length) / rect.height();
        QImage view(xcb_get_image_data(reply.get()), rect.width(), rect.height(), bytesPerLine, QImage::Format_RGB32);
        image = view.copy();
    }
    return image;
}
