// SPDX-License-Identifier: MIT
#include "tests/faults/HostileFeedServer.h"

#include <QEventLoop>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

namespace {

constexpr qint64 kHundredMegabytes = 100LL * 1024 * 1024;
constexpr qint64 kChunk = 64 * 1024;

const QByteArray kFeedStart = QByteArrayLiteral(
    "<?xml version=\"1.0\"?>\n<rss version=\"2.0\" xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/"
    "sparkle\"><channel><title>Lattica</title>");

// Ten levels of ten references each: 10^10 copies of "lol" once expanded.
QByteArray entityExpansionDocument() {
    QByteArray document = "<?xml version=\"1.0\"?>\n<!DOCTYPE rss [\n<!ENTITY lol0 \"lol\">\n";
    for (int level = 1; level <= 10; ++level) {
        document += "<!ENTITY lol" + QByteArray::number(level) + " \"";
        for (int i = 0; i < 10; ++i) {
            document += "&lol" + QByteArray::number(level - 1) + ";";
        }
        document += "\">\n";
    }
    document +=
        "]>\n<rss version=\"2.0\" xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">"
        "<channel><item><title>&lol10;</title>"
        "<sparkle:version>99</sparkle:version></item></channel></rss>\n";
    return document;
}

QByteArray header(qint64 length) {
    return "HTTP/1.1 200 OK\r\nContent-Type: application/rss+xml\r\nContent-Length: " + QByteArray::number(length) +
           "\r\nConnection: close\r\n\r\n";
}

}  // namespace

HostileFeedServer::HostileFeedServer(Behaviour behaviour) : m_behaviour(behaviour) {}

HostileFeedServer::~HostileFeedServer() {
    quit();
    wait();
}

bool HostileFeedServer::listen() {
    start();
    return m_ready.tryAcquire(1, 5000) && m_listening.loadAcquire() > 0;
}

QUrl HostileFeedServer::url() const {
    return QUrl(QStringLiteral("http://127.0.0.1:%1/appcast.xml").arg(m_port.loadAcquire()));
}

void HostileFeedServer::run() {
    QTcpServer server;
    if (!server.listen(QHostAddress::LocalHost)) {
        m_listening.storeRelease(-1);
        m_ready.release();
        return;
    }
    m_port.storeRelease(server.serverPort());
    m_listening.storeRelease(1);
    m_ready.release();

    QObject::connect(&server, &QTcpServer::newConnection, &server, [this, &server] {
        while (QTcpSocket* socket = server.nextPendingConnection()) {
            const bool first = m_requests.fetchAndAddAcquire(1) == 0;
            QObject::connect(socket, &QTcpSocket::disconnected, socket, [this, socket, first] {
                if (first) {
                    m_clientClosed.storeRelease(1);
                }
                socket->deleteLater();
            });
            auto send = [this, socket](const QByteArray& bytes) {
                socket->write(bytes);
                m_bytesSent.fetchAndAddRelease(bytes.size());
            };
            // The request itself does not matter: every path gets the same answer once it has arrived.
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket, send] {
                socket->readAll();
                if (socket->property("answered").toBool()) {
                    return;
                }
                socket->setProperty("answered", true);
                switch (m_behaviour) {
                    case Behaviour::DripOneBytePerSecond: {
                        socket->write(header(kFeedStart.size() + 100000));
                        auto* drip = new QTimer(socket);
                        auto position = std::make_shared<qsizetype>(0);
                        QObject::connect(drip, &QTimer::timeout, socket, [send, position] {
                            send(kFeedStart.mid(*position % kFeedStart.size(), 1));
                            ++*position;
                        });
                        drip->start(1000);
                        break;
                    }
                    case Behaviour::HundredMegabytes: {
                        socket->write(header(kHundredMegabytes));
                        auto more = [this, socket, send] {
                            while (socket->bytesToWrite() < 4 * kChunk &&
                                   m_bytesSent.loadAcquire() < kHundredMegabytes) {
                                send(QByteArray(kChunk, ' '));
                            }
                        };
                        QObject::connect(socket, &QTcpSocket::bytesWritten, socket, more);
                        send(kFeedStart);
                        more();
                        break;
                    }
                    case Behaviour::EntityExpansion: {
                        const QByteArray document = entityExpansionDocument();
                        socket->write(header(document.size()));
                        send(document);
                        socket->disconnectFromHost();
                        break;
                    }
                }
            });
        }
    });
    exec();
}
