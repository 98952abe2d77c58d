// SPDX-License-Identifier: MIT
#pragma once

#include <QAtomicInteger>
#include <QByteArray>
#include <QSemaphore>
#include <QThread>
#include <QUrl>

// An update feed server that misbehaves, on 127.0.0.1, on a thread of its own so that it keeps serving
// while the test waits on the program under test. It streams what it sends: it never holds a large
// body in memory, so the memory of the test process says nothing about the feed's size.
class HostileFeedServer : public QThread {
public:
    enum class Behaviour {
        DripOneBytePerSecond,  // a valid start, then one byte a second for ever
        HundredMegabytes,      // a body of 100 MB, sent as fast as the client reads
        EntityExpansion,       // a small document whose entities expand to gigabytes
    };

    explicit HostileFeedServer(Behaviour behaviour);
    ~HostileFeedServer() override;

    // Starts the thread and waits until it listens; false when it cannot.
    bool listen();
    QUrl url() const;

    // What happened so far, readable from any thread.
    int requests() const { return m_requests.loadAcquire(); }
    qint64 bytesSent() const { return m_bytesSent.loadAcquire(); }
    // Whether the client has closed the connection of the first request.
    bool clientClosed() const { return m_clientClosed.loadAcquire() != 0; }

protected:
    void run() override;

private:
    Behaviour m_behaviour;
    QAtomicInteger<quint16> m_port = 0;
    QAtomicInteger<int> m_listening = 0;
    QAtomicInteger<int> m_requests = 0;
    QAtomicInteger<qint64> m_bytesSent = 0;
    QAtomicInteger<int> m_clientClosed = 0;
    QSemaphore m_ready;
};
