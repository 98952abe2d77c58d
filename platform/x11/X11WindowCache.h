// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <QHash>
#include <QList>
#include <QMutex>
#include <QSet>
#include <memory>

#include "platform/x11/X11WindowFacts.h"

class X11Connection;

// What earlier reads found out about windows, kept until the server reports a change. Every window is
// watched from its first read on (property and structure changes), and any news of a window drops what
// is known about it. A read then asks the server only about windows that are new or changed, instead of
// every property of hundreds of windows each time the panel opens.
//
// Window managers tell a client when they move its frame (a synthetic ConfigureNotify, as ICCCM asks),
// so moves by the window manager are news of the client window too.
//
// The cache has a connection of its own: each selection is then ordered with the reads that follow it,
// and its news can be taken in on any thread without touching the handlers of the main connection.
class X11WindowCache {
public:
    // What the cache knows of a window: the fields read, and what they said.
    struct Known {
        X11WindowFacts facts;
        unsigned fields = 0;
    };

    explicit X11WindowCache(std::unique_ptr<X11Connection> connection);
    ~X11WindowCache();
    X11WindowCache(const X11WindowCache&) = delete;
    X11WindowCache& operator=(const X11WindowCache&) = delete;

    X11Connection& connection() const { return *m_connection; }

    // Hands every event the cache's connection has received to the cache. A reader that takes facts
    // from the cache makes a round trip after its lookups, calls this, and reads again each window
    // with news since its mark.
    void takeInNews();
    bool hasNewsSince(xcb_window_t window, quint64 mark) const;

    // A read starts: facts it collects are kept only if no news of their window comes after this mark.
    quint64 beginRead();
    void endRead(quint64 mark);

    // Nothing when the window was never read or has changed since.
    Known lookup(xcb_window_t window) const;
    // Copies into facts what is known of the given fields of a window; returns the fields it knew.
    unsigned lookup(xcb_window_t window, unsigned fields, X11WindowFacts& facts) const;
    // Asks the server for news of a window; sent before its first read, and again only once the window
    // has ended (its number may then be given to a new window).
    void watch(xcb_window_t window);
    void store(const X11WindowFacts& facts, unsigned fields, quint64 mark);
    // Drops what is known of a window, as if news of it had come.
    void forget(xcb_window_t window);

    qsizetype size() const;
    void clear();

private:
    bool takeNews(xcb_generic_event_t* event);
    void noteNews(xcb_window_t window);
    bool newsSince(xcb_window_t window, quint64 mark) const;
    void pruneNews();

    std::unique_ptr<X11Connection> m_connection;
    int m_handlerId = 0;
    mutable QMutex m_mutex;
    QHash<xcb_window_t, Known> m_known;
    QSet<xcb_window_t> m_watched;
    quint64 m_sequence = 0;
    // The last news of each window, for reads that were under way when it came.
    QHash<xcb_window_t, quint64> m_news;
    QList<quint64> m_readsUnderWay;
};
