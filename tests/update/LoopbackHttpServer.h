// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>
#include <memory>

// A minimal HTTP/1.1 server on 127.0.0.1 for update checks in tests. Each path answers with a
// fixed status and body, or never answers at all. With TLS it serves HTTPS under a self-signed
// certificate for 127.0.0.1 that no client trusts.
class LoopbackHttpServer : public QObject {
    Q_OBJECT
public:
    struct Route {
        int status = 200;
        QByteArray body;
        QByteArray contentType = "application/rss+xml";
        bool neverAnswer = false;
        QByteArray location;  // sent as the Location header when set
    };

    enum class Transport { PlainHttp, SelfSignedTls };

    explicit LoopbackHttpServer(Transport transport = Transport::PlainHttp);
    bool isListening() const { return m_server->isListening(); }

    void setRoute(const QString& path, const Route& route) { m_routes.insert(path, route); }
    QUrl url(const QString& path) const;
    // Paths requested so far, in order.
    const QList<QString>& requestedPaths() const { return m_requestedPaths; }

private:
    void handleReadable(QTcpSocket* socket);

    Transport m_transport;
    std::unique_ptr<QTcpServer> m_server;
    QHash<QString, Route> m_routes;
    QHash<QTcpSocket*, QByteArray> m_pending;
    QList<QString> m_requestedPaths;
};
