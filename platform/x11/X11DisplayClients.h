// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <optional>

// The local processes connected to one X server, found as `ss -xp` finds them: the server's ends of its
// Unix-socket connections carry the name of its listening socket, their peers are the clients' sockets,
// and a process's open files name the sockets it holds. Where the server cannot name a window's client
// (no X-Resource), a window's _NET_WM_PID is believed only when it names one of these processes: a pid
// from a PID namespace or another machine names some other process, or none.
//
// One object serves one read of the windows: the server's connections are listed on the first question
// and each process is looked at once.
class X11DisplayClients {
public:
    // connectionFd: our own connection to the server, whose peer names the server's socket.
    explicit X11DisplayClients(int connectionFd);

    // Whether the process holds a connection to the server; false when that cannot be found out (the
    // process is gone or another user's, or the kernel does not list sockets).
    bool holdsConnection(pid_t pid);

    // The name of the server's socket as the peer of our connection reports it, without the leading NUL
    // of an abstract name (so the abstract and the file-system socket of one display compare equal).
    static std::optional<QByteArray> serverSocketName(int connectionFd);
    // The inodes of the client sockets connected to sockets of that name; nothing when the kernel's
    // socket listing is not available.
    static std::optional<QSet<quint64>> clientSocketsOf(const QByteArray& serverSocketName);
    // The inodes of the sockets the process holds open.
    static QSet<quint64> socketsHeldBy(pid_t pid);

private:
    int m_connectionFd;
    bool m_listed = false;
    QSet<quint64> m_clientSockets;
    QHash<pid_t, bool> m_answers;
};
