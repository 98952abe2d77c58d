// SPDX-License-Identifier: MIT
#include "platform/x11/X11DisplayProbe.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QElapsedTimer>
#include <cerrno>

namespace {

// The connection is tried in a child process, so that a server which never answers can be given up on
// without leaving a blocked thread behind. The child reports xcb's error code, 0 when connected.
[[noreturn]] void connectAndReport(const QByteArray& displayName, int reportFd) {
    xcb_connection_t* connection = xcb_connect(displayName.constData(), nullptr);
    const unsigned char code = static_cast<unsigned char>(xcb_connection_has_error(connection));
    xcb_disconnect(connection);
    [[maybe_unused]] const ssize_t written = ::write(reportFd, &code, 1);
    ::_exit(0);
}

QString describe(int code) {
    switch (code) {
        case XCB_CONN_CLOSED_PARSE_ERR:
            return QStringLiteral("this is not a display name");
        case XCB_CONN_CLOSED_INVALID_SCREEN:
            return QStringLiteral("the display has no such screen");
        case XCB_CONN_CLOSED_MEM_INSUFFICIENT:
            return QStringLiteral("out of memory");
        case XCB_CONN_CLOSED_EXT_NOTSUPPORTED:
        case XCB_CONN_CLOSED_REQ_LEN_EXCEED:
        case XCB_CONN_CLOSED_FDPASSING_FAILED:
            return QStringLiteral("the X server closed the connection");
        default:
            return QStringLiteral("no X server accepts connections there, or it refused this one");
    }
}

// Waits for the child's one-byte report: -1 when the time limit passed, XCB_CONN_ERROR when the child
// ended without reporting.
int readReport(int fd, int timeoutMs) {
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        const int left = timeoutMs - static_cast<int>(clock.elapsed());
        if (left <= 0) {
            return -1;
        }
        pollfd waiting{fd, POLLIN, 0};
        const int ready = ::poll(&waiting, 1, left);
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        if (ready <= 0) {
            return -1;
        }
        unsigned char code = 0;
        return ::read(fd, &code, 1) == 1 ? code : XCB_CONN_ERROR;
    }
}

}  // namespace

namespace X11DisplayProbe {

std::optional<QString> problem(const QByteArray& displayName, int timeoutMs) {
    if (displayName.isEmpty()) {
        return QStringLiteral("DISPLAY is not set");
    }
    int report[2];
    if (::pipe(report) != 0) {
        return std::nullopt;  // cannot check: let the toolkit try
    }
    const pid_t child = ::fork();
    if (child < 0) {
        ::close(report[0]);
        ::close(report[1]);
        return std::nullopt;
    }
    if (child == 0) {
        ::close(report[0]);
        connectAndReport(displayName, report[1]);
    }
    ::close(report[1]);
    const int code = readReport(report[0], timeoutMs);
    ::close(report[0]);
    if (code < 0) {
        ::kill(child, SIGKILL);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (code == 0) {
        return std::nullopt;
    }
    if (code < 0) {
        return QStringLiteral("the X server did not answer within %1 seconds").arg(timeoutMs / 1000);
    }
    return describe(code);
}

}  // namespace X11DisplayProbe
