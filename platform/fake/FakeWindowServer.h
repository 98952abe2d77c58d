#pragma once

#include <QMutex>
#include <QRectF>
#include <QVariantMap>
#include <functional>

#include "platform/WindowServer.h"

// A scripted window list for tests. Safe to query from a background thread.
class FakeWindowServer : public WindowServer {
public:
    // One window-list entry, as entry() builds it.
    struct Window {
        qint64 number = 0;
        pid_t pid = 0;
        QString ownerName;
        QRectF bounds;
        int layer = 0;
        double alpha = 1.0;
        bool onScreen = true;
        QString title;
    };

    // A complete entry with the window server's keys.
    static WindowInfo entry(const Window& window) {
        QVariantMap bounds{{QStringLiteral("X"), window.bounds.x()},
                           {QStringLiteral("Y"), window.bounds.y()},
                           {QStringLiteral("Width"), window.bounds.width()},
                           {QStringLiteral("Height"), window.bounds.height()}};
        return {{QLatin1String(kCGWindowNumber), window.number},
                {QLatin1String(kCGWindowOwnerPID), static_cast<int>(window.pid)},
                {QLatin1String(kCGWindowOwnerName), window.ownerName},
                {QLatin1String(kCGWindowBounds), bounds},
                {QLatin1String(kCGWindowLayer), window.layer},
                {QLatin1String(kCGWindowAlpha), window.alpha},
                {QLatin1String(kCGWindowIsOnscreen), window.onScreen},
                {QLatin1String(kCGWindowName), window.title}};
    }

    // Replaces the list (front to back); nothing models an unavailable list.
    void setWindowList(const std::optional<QList<WindowInfo>>& list) {
        QMutexLocker locker(&m_mutex);
        m_windowList = list;
    }
    void setWindows(const QList<Window>& windows) {
        QList<WindowInfo> list;
        for (const Window& window : windows) {
            list.append(entry(window));
        }
        setWindowList(list);
    }
    // Runs inside every query, on the querying thread, after the list has been taken (tests use it to
    // hold a background query until they let it go).
    void setQueryHook(std::function<void(int queryNumber)> hook) {
        QMutexLocker locker(&m_mutex);
        m_hook = std::move(hook);
    }
    quint32 lastOptions() const {
        QMutexLocker locker(&m_mutex);
        return m_lastOptions;
    }
    int queryCount() const {
        QMutexLocker locker(&m_mutex);
        return m_queryCount;
    }

    std::optional<QList<WindowInfo>> copyWindowInfo(quint32 options) override {
        std::function<void(int)> hook;
        std::optional<QList<WindowInfo>> list;
        int queryNumber = 0;
        {
            QMutexLocker locker(&m_mutex);
            m_lastOptions = options;
            queryNumber = ++m_queryCount;
            list = m_windowList;
            hook = m_hook;
        }
        if (hook) {
            hook(queryNumber);
        }
        return list;
    }

private:
    mutable QMutex m_mutex;
    std::optional<QList<WindowInfo>> m_windowList = QList<WindowInfo>{};
    std::function<void(int)> m_hook;
    quint32 m_lastOptions = 0;
    int m_queryCount = 0;
};
