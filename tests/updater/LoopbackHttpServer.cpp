#include "tests/updater/LoopbackHttpServer.h"

#include <QHostAddress>

LoopbackHttpServer::LoopbackHttpServer() {
    m_server.listen(QHostAddress::LocalHost, 0);
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = m_server.nextPendingConnection()) {
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
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(m_server.serverPort()).arg(path));
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
