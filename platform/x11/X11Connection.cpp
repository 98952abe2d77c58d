// SPDX-License-Identifier: MIT
#include "platform/x11/X11Connection.h"
#include "platform/x11/XcbReply.h"

#include <poll.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcX11Connection, "lattica.x11.connection", QtInfoMsg)

namespace {

const char* errorName(uint8_t code) {
    switch (code) {
        case XCB_REQUEST:
            return "BadRequest";
        case XCB_VALUE:
            return "BadValue";
        case XCB_WINDOW:
            return "BadWindow";
        case XCB_PIXMAP:
            return "BadPixmap";
        case XCB_ATOM:
            return "BadAtom";
        case XCB_CURSOR:
            return "BadCursor";
        case XCB_FONT:
            return "BadFont";
        case XCB_MATCH:
            return "BadMatch";
        case XCB_DRAWABLE:
            return "BadDrawable";
        case XCB_ACCESS:
            return "BadAccess";
        case XCB_ALLOC:
            return "BadAlloc";
        case XCB_COLORMAP:
            return "BadColormap";
        case XCB_G_CONTEXT:
            return "BadGC";
        case XCB_ID_CHOICE:
            return "BadIDChoice";
        case XCB_NAME:
            return "BadName";
        case XCB_LENGTH:
            return "BadLength";
        case XCB_IMPLEMENTATION:
            return "BadImplementation";
        default:
            return "extension error";
    }
}

}  // namespace

std::unique_ptr<X11Connection> X11Connection::open(const QByteArray& displayName) {
    int screenNumber = 0;
    xcb_connection_t* connection =
        xcb_connect(displayName.isEmpty() ? nullptr : displayName.constData(), &screenNumber);
    if (connection == nullptr || xcb_connection_has_error(connection)) {
        if (connection != nullptr) {
            xcb_disconnect(connection);
        }
        return nullptr;
    }
    xcb_screen_iterator_t it = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < screenNumber && it.rem > 0; ++i) {
        xcb_screen_next(&it);
    }
    if (it.rem == 0) {
        xcb_disconnect(connection);
        return nullptr;
    }
    const QByteArray name = displayName.isEmpty() ? qgetenv("DISPLAY") : displayName;
    return std::unique_ptr<X11Connection>(new X11Connection(connection, it.data, name));
}

X11Connection::X11Connection(xcb_connection_t* connection, xcb_screen_t* screen, QByteArray displayName)
    : m_connection(connection), m_screen(screen), m_displayName(std::move(displayName)) {
    if (QCoreApplication::instance() != nullptr) {
        m_notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(m_connection), QSocketNotifier::Read);
        connect(m_notifier.get(), &QSocketNotifier::activated, this, &X11Connection::dispatchPendingEvents);
        // xcb may already have read events into its queue while a service waited for a reply; the
        // socket then stays quiet, so look at the queue each time the loop is about to sleep.
        if (auto* dispatcher = QAbstractEventDispatcher::instance()) {
            connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &X11Connection::dispatchPendingEvents);
        }
    }
}

X11Connection::~X11Connection() {
    m_notifier.reset();
    xcb_disconnect(m_connection);
}

xcb_atom_t X11Connection::atom(const char* name) {
    {
        QMutexLocker lock(&m_atomMutex);
        const auto found = m_atoms.constFind(QByteArray(name));
        if (found != m_atoms.constEnd()) {
            return *found;
        }
    }
    internAtoms({name});
    QMutexLocker lock(&m_atomMutex);
    return m_atoms.value(QByteArray(name), XCB_ATOM_NONE);
}

void X11Connection::internAtoms(std::initializer_list<const char*> names) {
    QList<std::pair<QByteArray, xcb_intern_atom_cookie_t>> cookies;
    for (const char* name : names) {
        const QByteArray key(name);
        {
            QMutexLocker lock(&m_atomMutex);
            if (m_atoms.contains(key)) {
                continue;
            }
        }
        cookies.append({key, xcb_intern_atom(m_connection, 0, static_cast<uint16_t>(key.size()), key.constData())});
    }
    for (const auto& [key, cookie] : cookies) {
        const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
        const xcb_atom_t value = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
        QMutexLocker lock(&m_atomMutex);
        m_atoms.insert(key, value);
    }
}

int X11Connection::addEventHandler(EventHandler handler) {
    const int id = m_nextHandlerId++;
    m_handlers.append({id, std::move(handler)});
    return id;
}

void X11Connection::removeEventHandler(int handlerId) {
    m_handlers.removeIf([handlerId](const auto& entry) { return entry.first == handlerId; });
}

void X11Connection::dispatch(xcb_generic_event_t* event) {
    if (event->response_type == 0) {
        noteError(reinterpret_cast<const xcb_generic_error_t*>(event));
    }
    // Copy: a handler may add or remove handlers while it runs.
    const auto handlers = m_handlers;
    for (const auto& [id, handler] : handlers) {
        if (handler(event)) {
            return;
        }
    }
}

void X11Connection::noteError(const xcb_generic_error_t* error) {
    // Requests nobody checks fail for ordinary reasons (a window closed meanwhile), again and again:
    // say each kind of failure once.
    const quint32 kind = quint32(error->error_code) << 24 | quint32(error->major_code) << 16 | error->minor_code;
    if (m_reportedErrors.contains(kind)) {
        return;
    }
    m_reportedErrors.insert(kind);
    qCWarning(lcX11Connection).nospace() << "X error " << errorName(error->error_code) << " (" << error->error_code
                                         << ") for request " << error->major_code << "." << error->minor_code
                                         << " on resource 0x" << Qt::hex << error->resource_id
                                         << "; later errors of this kind are not reported";
}

void X11Connection::dispatchPendingEvents() {
    QMutexLocker lock(&m_dispatchMutex);
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
        dispatch(event.get());
    }
}

bool X11Connection::waitForEvent(const std::function<bool(xcb_generic_event_t*)>& predicate, int timeoutMs) {
    xcb_flush(m_connection);
    QDeadlineTimer deadline(timeoutMs);
    while (!hasError()) {
        {
            QMutexLocker lock(&m_dispatchMutex);
            while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
                const bool matched = predicate(event.get());
                dispatch(event.get());
                if (matched) {
                    return true;
                }
            }
        }
        const qint64 remaining = deadline.remainingTime();
        if (remaining <= 0) {
            return false;
        }
        pollfd descriptor{xcb_get_file_descriptor(m_connection), POLLIN, 0};
        ::poll(&descriptor, 1, static_cast<int>(remaining));
    }
    return false;
}
