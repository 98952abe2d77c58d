// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <QHash>
#include <QMutex>
#include <QObject>
#include <QRecursiveMutex>
#include <QSet>
#include <QSocketNotifier>
#include <functional>
#include <memory>

// One connection to the X server, shared by the X11 services of the main thread.
// It owns the event loop integration: every event read from the connection goes to the registered
// handlers in order, whether it arrives while Qt's loop is idle or while a service waits for a reply.
class X11Connection : public QObject {
    Q_OBJECT
public:
    // Returns true when the handler consumed the event (later handlers do not see it).
    using EventHandler = std::function<bool(xcb_generic_event_t* event)>;

    // Connects to the named display ($DISPLAY when empty); nothing when no X server answers.
    static std::unique_ptr<X11Connection> open(const QByteArray& displayName = {});
    ~X11Connection() override;
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    xcb_connection_t* xcb() const { return m_connection; }
    xcb_screen_t* screen() const { return m_screen; }
    xcb_window_t root() const { return m_screen->root; }
    const QByteArray& displayName() const { return m_displayName; }

    // The atom of a name, interned once and cached. Thread-safe.
    xcb_atom_t atom(const char* name);
    // Interns many names with one round trip.
    void internAtoms(std::initializer_list<const char*> names);

    int addEventHandler(EventHandler handler);
    void removeEventHandler(int handlerId);
    qsizetype eventHandlerCount() const { return m_handlers.size(); }

    // Hands every event already read from the server to the handlers, and logs the errors of
    // requests nobody checks, each kind once. Safe on any thread: events are
    // taken and handled one thread at a time, so once this returns, every event that had arrived
    // before the call has been handled.
    void dispatchPendingEvents();
    // Reads events until one satisfies the predicate or the time limit passes. Every event, the
    // matching one included, is dispatched to the handlers as usual. True when a match was seen.
    bool waitForEvent(const std::function<bool(xcb_generic_event_t*)>& predicate, int timeoutMs);

    void flush() { xcb_flush(m_connection); }
    // True once the server has closed the connection.
    bool hasError() const { return xcb_connection_has_error(m_connection) != 0; }

private:
    X11Connection(xcb_connection_t* connection, xcb_screen_t* screen, QByteArray displayName);
    void dispatch(xcb_generic_event_t* event);
    void noteError(const xcb_generic_error_t* error);

    xcb_connection_t* m_connection = nullptr;
    xcb_screen_t* m_screen = nullptr;
    QByteArray m_displayName;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QRecursiveMutex m_dispatchMutex;  // a handler may wait for events itself
    QMutex m_atomMutex;
    QHash<QByteArray, xcb_atom_t> m_atoms;
    QList<std::pair<int, EventHandler>> m_handlers;
    int m_nextHandlerId = 1;
    QSet<quint32> m_reportedErrors;  // error code, major and minor opcode of the errors logged
};
