// SPDX-License-Identifier: MIT
#include "platform/x11/X11WindowCache.h"

#include <algorithm>
#include <cstdlib>

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11WindowEvents.h"

namespace {
// Past this many, news older than every read under way is let go.
constexpr qsizetype kNewsToKeep = 256;
}  // namespace

X11WindowCache::X11WindowCache(std::unique_ptr<X11Connection> connection) : m_connection(std::move(connection)) {
    m_handlerId = m_connection->addEventHandler([this](xcb_generic_event_t* event) { return takeNews(event); });
}

X11WindowCache::~X11WindowCache() {
    m_connection->removeEventHandler(m_handlerId);
}

void X11WindowCache::takeInNews() {
    m_connection->dispatchPendingEvents();
}

bool X11WindowCache::hasNewsSince(xcb_window_t window, quint64 mark) const {
    QMutexLocker lock(&m_mutex);
    return newsSince(window, mark);
}

quint64 X11WindowCache::beginRead() {
    QMutexLocker lock(&m_mutex);
    m_readsUnderWay.append(m_sequence);
    return m_sequence;
}

void X11WindowCache::endRead(quint64 mark) {
    QMutexLocker lock(&m_mutex);
    m_readsUnderWay.removeOne(mark);
    pruneNews();
}

X11WindowCache::Known X11WindowCache::lookup(xcb_window_t window) const {
    QMutexLocker lock(&m_mutex);
    return m_known.value(window);
}

unsigned X11WindowCache::lookup(xcb_window_t window, unsigned fields, X11WindowFacts& facts) const {
    QMutexLocker lock(&m_mutex);
    const auto found = m_known.constFind(window);
    if (found == m_known.constEnd()) {
        return 0;
    }
    const unsigned known = found->fields & fields;
    facts.copyFields(found->facts, known);
    return known;
}

void X11WindowCache::watch(xcb_window_t window) {
    {
        QMutexLocker lock(&m_mutex);
        if (m_watched.contains(window)) {
            return;
        }
        m_watched.insert(window);
    }
    X11WindowEvents::watch(m_connection->xcb(), window);
}

void X11WindowCache::store(const X11WindowFacts& facts, unsigned fields, quint64 mark) {
    if (!facts.exists || fields == 0) {
        return;
    }
    QMutexLocker lock(&m_mutex);
    if (newsSince(facts.window, mark)) {
        return;
    }
    Known& known = m_known[facts.window];
    known.facts.window = facts.window;
    known.facts.copyFields(facts, fields);
    known.fields |= fields;
}

void X11WindowCache::forget(xcb_window_t window) {
    QMutexLocker lock(&m_mutex);
    noteNews(window);
}

qsizetype X11WindowCache::size() const {
    QMutexLocker lock(&m_mutex);
    return m_known.size();
}

void X11WindowCache::clear() {
    QMutexLocker lock(&m_mutex);
    for (auto it = m_known.cbegin(); it != m_known.cend(); ++it) {
        m_news.insert(it.key(), m_sequence + 1);
    }
    ++m_sequence;
    m_known.clear();
}

bool X11WindowCache::takeNews(xcb_generic_event_t* event) {
    const xcb_window_t window = X11WindowEvents::subject(event);
    if (window == XCB_NONE) {
        return false;
    }
    QMutexLocker lock(&m_mutex);
    noteNews(window);
    // The server forgets what was selected on a window that has ended.
    if ((event->response_type & 0x7f) == XCB_DESTROY_NOTIFY) {
        m_watched.remove(window);
    }
    return true;
}

void X11WindowCache::noteNews(xcb_window_t window) {
    m_known.remove(window);
    m_news.insert(window, ++m_sequence);
}

bool X11WindowCache::newsSince(xcb_window_t window, quint64 mark) const {
    return m_news.value(window, 0) > mark;
}

void X11WindowCache::pruneNews() {
    if (m_news.size() <= kNewsToKeep) {
        return;
    }
    const quint64 oldestRead =
        m_readsUnderWay.isEmpty() ? m_sequence : *std::min_element(m_readsUnderWay.cbegin(), m_readsUnderWay.cend());
    m_news.removeIf([oldestRead](const auto& entry) { return entry.value() <= oldestRead; });
}
