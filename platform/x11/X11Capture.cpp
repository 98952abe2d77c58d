#include "platform/x11/X11Capture.h"

#include <cstdlib>
#include <cstring>

X11Capture::X11Capture(QByteArray displayName) : m_displayName(std::move(displayName)) {}

X11Capture::~X11Capture() {
    if (m_connection != nullptr) {
        xcb_disconnect(m_connection);
    }
}

bool X11Capture::ensureConnected() {
    if (m_connection != nullptr && xcb_connection_has_error(m_connection) == 0) {
        return true;
    }
    if (m_connection != nullptr) {
        xcb_disconnect(m_connection);
        m_connection = nullptr;
    }
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
    return m_screen != nullptr;
}

QImage X11Capture::capture(const QRect& rootRect) {
    QMutexLocker lock(&m_mutex);
    if (rootRect.isEmpty() || !ensureConnected()) {
        return {};
    }
    const QRect rootArea(0, 0, m_screen->width_in_pixels, m_screen->height_in_pixels);
    const QRect rect = rootRect.intersected(rootArea);
    if (rect.isEmpty()) {
        return {};
    }
    return captureWithGetImage(rect);
}

QImage X11Capture::captureWithGetImage(const QRect& rect) {
    xcb_get_image_cookie_t cookie =
        xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen->root, static_cast<int16_t>(rect.x()),
                      static_cast<int16_t>(rect.y()), static_cast<uint16_t>(rect.width()),
                      static_cast<uint16_t>(rect.height()), ~0u);
    xcb_get_image_reply_t* reply = xcb_get_image_reply(m_connection, cookie, nullptr);
    if (reply == nullptr) {
        return {};
    }
    QImage image;
    const int length = xcb_get_image_data_length(reply);
    if (reply->depth == 24 || reply->depth == 32) {
        const qsizetype bytesPerLine = static_cast<qsizetype>(length) / rect.height();
        QImage view(xcb_get_image_data(reply), rect.width(), rect.height(), bytesPerLine, QImage::Format_RGB32);
        image = view.copy();
    }
    std::free(reply);
    return image;
}
