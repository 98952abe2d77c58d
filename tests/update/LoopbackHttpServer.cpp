// SPDX-License-Identifier: MIT
#include "tests/update/LoopbackHttpServer.h"

#include <QFile>
#include <QHostAddress>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>

namespace {

QByteArray fixture(const char* name) {
    QFile file(QStringLiteral(LATTICA_SOURCE_DIR "/tests/update/fixtures/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::unique_ptr<QTcpServer> makeServer(LoopbackHttpServer::Transport transport) {
    if (transport == LoopbackHttpServer::Transport::PlainHttp) {
        return std::make_unique<QTcpServer>();
    }
    auto server = std::make_unique<QSslServer>();
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(QSslCertificate(fixture("loopback-cert.pem")));
    configuration.setPrivateKey(QSslKey(fixture("loopback-key.pem"), QSsl::Rsa));
    server->setSslConfiguration(configuration);
    return server;
}

}  // namespace

LoopbackHttpServer::LoopbackHttpServer(Transport transport) : m_transport(transport), m_server(makeServer(transport)) {
    m_server->listen(QHostAddress::LocalHost, 0);
    connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, this, [this] {
        while (QTcpSocket* socket = m_server->nextPendingConnection()) {
            socket->setParent(this);
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { handleReadable(socket); });
            connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
                m_pending.remove(socket);
                socket->deleteLater();
            });
        }
    });
}

QUrl LoopbackHttpServer::url(const QString& path) const {
    const QString scheme = m_transport == Transport::PlainHttp ? QStringLiteral("http") : QStringLiteral("https");
    return QUrl(QStringLiteral("%1://127.0.0.1:%2%3").arg(scheme).arg(m_server->serverPort()).arg(path));
}

void LoopbackHttpServer::handleReadable(QTcpSocket* socket) {
    QByteArray& buffer = m_pending[socket];
    buffer += socket->readAll();
    if (!buffer.contains("\r\n\r\n")) {
        return;
    }
    const QList<QByteArray> requestLine = buffer.left(buffer.indexOf("\r\n")).split(' ');
    buffer.clear();
    const QString path = requestLine.size() >= 2 ? QString::fromLatin1(requestLine[1]) : QString();
    m_requestedPaths.append(path);

    const Route route = m_routes.value(path, Route{404, QByteArray("not found"), "text/plain", false});
    if (route.neverAnswer) {
        return;
    }
    QByteArray response = "HTTP/1.1 " + QByteArray::number(route.status) + " Status\r\n";
    response += "Content-Type: " + route.contentType + "\r\n";
    response += "Content-Length: " + QByteArray::number(route.body.size()) + "\r\n";
    if (!route.location.isEmpty()) {
        response += "Location: " + route.location + "\r\n";
    }
    response += "Connection: close\r\n\r\n";
    response += route.body;
    socket->write(response);
    socket->disconnectFromHost();
}
