// SPDX-License-Identifier: MIT
#include "platform/x11/X11DisplayClients.h"

#include <dirent.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <linux/sock_diag.h>
#include <linux/unix_diag.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>

namespace {

QByteArray withoutAbstractPrefix(QByteArray name) {
    // Abstract names start with a NUL; some servers' names are padded with NULs at the end.
    if (name.startsWith('\0')) {
        name.remove(0, 1);
    }
    while (name.endsWith('\0')) {
        name.chop(1);
    }
    return name;
}

// Closes a descriptor when it goes out of scope.
class Descriptor {
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    ~Descriptor() {
        if (m_fd >= 0) {
            ::close(m_fd);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return m_fd; }

private:
    int m_fd;
};

// Reads the attributes after one unix_diag_msg: its socket name and the inode of its peer.
void readAttributes(const char* data, size_t length, QByteArray* name, quint32* peer) {
    size_t offset = 0;
    while (offset + sizeof(rtattr) <= length) {
        rtattr attribute;
        std::memcpy(&attribute, data + offset, sizeof(attribute));
        if (attribute.rta_len < sizeof(rtattr) || offset + attribute.rta_len > length) {
            return;
        }
        const char* payload = data + offset + RTA_LENGTH(0);
        const size_t payloadLength = attribute.rta_len - RTA_LENGTH(0);
        if (attribute.rta_type == UNIX_DIAG_NAME) {
            *name = QByteArray(payload, static_cast<qsizetype>(payloadLength));
        } else if (attribute.rta_type == UNIX_DIAG_PEER && payloadLength >= sizeof(quint32)) {
            std::memcpy(peer, payload, sizeof(quint32));
        }
        offset += RTA_ALIGN(attribute.rta_len);
    }
}

}  // namespace

X11DisplayClients::X11DisplayClients(int connectionFd) : m_connectionFd(connectionFd) {}

bool X11DisplayClients::holdsConnection(pid_t pid) {
    if (pid <= 0) {
        return false;
    }
    const auto known = m_answers.constFind(pid);
    if (known != m_answers.constEnd()) {
        return *known;
    }
    if (!m_listed) {
        m_listed = true;
        if (const std::optional<QByteArray> server = serverSocketName(m_connectionFd)) {
            m_clientSockets = clientSocketsOf(*server).value_or(QSet<quint64>());
        }
    }
    bool holds = false;
    if (!m_clientSockets.isEmpty()) {
        const QSet<quint64> held = socketsHeldBy(pid);
        holds = held.intersects(m_clientSockets);
    }
    m_answers.insert(pid, holds);
    return holds;
}

std::optional<QByteArray> X11DisplayClients::serverSocketName(int connectionFd) {
    sockaddr_un address{};
    socklen_t length = sizeof(address);
    if (connectionFd < 0 || ::getpeername(connectionFd, reinterpret_cast<sockaddr*>(&address), &length) != 0 ||
        address.sun_family != AF_UNIX || length <= offsetof(sockaddr_un, sun_path)) {
        return std::nullopt;  // TCP, or not a socket at all: no local clients to find
    }
    const QByteArray name = withoutAbstractPrefix(
        QByteArray(address.sun_path, static_cast<qsizetype>(length - offsetof(sockaddr_un, sun_path))));
    return name.isEmpty() ? std::nullopt : std::optional<QByteArray>(name);
}

std::optional<QSet<quint64>> X11DisplayClients::clientSocketsOf(const QByteArray& serverSocketName) {
    const Descriptor netlink(::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC, NETLINK_SOCK_DIAG));
    if (netlink.get() < 0) {
        return std::nullopt;
    }
    struct {
        nlmsghdr header;
        unix_diag_req body;
    } request{};
    request.header.nlmsg_len = sizeof(request);
    request.header.nlmsg_type = SOCK_DIAG_BY_FAMILY;
    request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request.body.sdiag_family = AF_UNIX;
    request.body.udiag_states = ~0u;
    request.body.udiag_show = UDIAG_SHOW_NAME | UDIAG_SHOW_PEER;
    sockaddr_nl kernel{};
    kernel.nl_family = AF_NETLINK;
    if (::sendto(netlink.get(), &request, sizeof(request), 0, reinterpret_cast<sockaddr*>(&kernel), sizeof(kernel)) <
        0) {
        return std::nullopt;
    }
    QSet<quint64> clients;
    alignas(nlmsghdr) char buffer[32768];
    for (;;) {
        const ssize_t received = ::recv(netlink.get(), buffer, sizeof(buffer), 0);
        if (received <= 0) {
            return std::nullopt;
        }
        const auto length = static_cast<size_t>(received);
        size_t offset = 0;
        while (offset + sizeof(nlmsghdr) <= length) {
            nlmsghdr header;
            std::memcpy(&header, buffer + offset, sizeof(header));
            if (header.nlmsg_len < sizeof(nlmsghdr) || offset + header.nlmsg_len > length) {
                return std::nullopt;
            }
            if (header.nlmsg_type == NLMSG_DONE) {
                return clients;
            }
            if (header.nlmsg_type == NLMSG_ERROR || header.nlmsg_len < NLMSG_LENGTH(sizeof(unix_diag_msg))) {
                return std::nullopt;
            }
            unix_diag_msg message;
            std::memcpy(&message, buffer + offset + NLMSG_LENGTH(0), sizeof(message));
            QByteArray name;
            quint32 peer = 0;
            const size_t attributesAt = NLMSG_LENGTH(sizeof(unix_diag_msg));
            readAttributes(buffer + offset + attributesAt, header.nlmsg_len - attributesAt, &name, &peer);
            // The server's accepted connections carry the listening socket's name; the listening socket
            // itself has no peer.
            if (peer != 0 && withoutAbstractPrefix(name) == serverSocketName) {
                clients.insert(peer);
            }
            offset += NLMSG_ALIGN(header.nlmsg_len);
        }
    }
}

QSet<quint64> X11DisplayClients::socketsHeldBy(pid_t pid) {
    QSet<quint64> sockets;
    const QByteArray folder = "/proc/" + QByteArray::number(pid) + "/fd";
    DIR* directory = ::opendir(folder.constData());
    if (directory == nullptr) {
        return sockets;  // gone, or another user's process
    }
    while (const dirent* entry = ::readdir(directory)) {
        if (entry->d_name[0] == '.') {
            continue;
        }
        char target[64];
        const QByteArray link = folder + '/' + entry->d_name;
        const ssize_t length = ::readlink(link.constData(), target, sizeof(target) - 1);
        if (length <= 0) {
            continue;
        }
        const QByteArray value(target, length);
        // "socket:[12345]"
        if (value.startsWith("socket:[") && value.endsWith(']')) {
            bool ok = false;
            const quint64 inode = value.mid(8, value.size() - 9).toULongLong(&ok);
            if (ok) {
                sockets.insert(inode);
            }
        }
    }
    ::closedir(directory);
    return sockets;
}
