// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinScreenCapture.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusUnixFileDescriptor>
#include <QDeadlineTimer>
#include <QLoggingCategory>
#include <QMutexLocker>
#include <QVariantMap>
#include <cerrno>

Q_DECLARE_LOGGING_CATEGORY(lcKWinBridge)

namespace {

constexpr int kCaptureTimeoutMs = 5000;

// Reads the pipe while KWin answers: until the reply says how many bytes make the picture and they are
// all there, until the pipe ends, or until the time limit. The pending call may keep a copy of the write
// end open, so the end of the pipe alone does not say that KWin is done.
QByteArray readPicture(int fd, QDBusPendingCall& pending, qsizetype* expected) {
    QByteArray data;
    QDeadlineTimer deadline(kCaptureTimeoutMs);
    *expected = -1;
    char buffer[65536];
    while (!deadline.hasExpired()) {
        if (*expected < 0 && pending.isFinished()) {
            const QDBusMessage reply = pending.reply();
            if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
                return data;
            }
            const QVariantMap results = qdbus_cast<QVariantMap>(reply.arguments().constFirst());
            *expected = qsizetype(results.value(QStringLiteral("stride")).toInt()) *
                        results.value(QStringLiteral("height")).toInt();
        }
        if (*expected >= 0 && data.size() >= *expected) {
            return data;
        }
        pollfd readable{fd, POLLIN, 0};
        if (::poll(&readable, 1, 10) <= 0) {
            continue;
        }
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got > 0) {
            data.append(buffer, got);
        } else if (got == 0) {
            return data;  // KWin closed its end: everything it wrote is here
        } else if (errno != EINTR && errno != EAGAIN) {
            return data;
        }
    }
    return data;
}

}  // namespace

QImage KWinScreenCapture::captureScreen(const QString& outputName) {
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC) != 0) {
        return {};
    }
    QDBusMessage message =
        QDBusMessage::createMethodCall(QStringLiteral("org.kde.KWin"), QStringLiteral("/org/kde/KWin/ScreenShot2"),
                                       QStringLiteral("org.kde.KWin.ScreenShot2"), QStringLiteral("CaptureScreen"));
    QVariantMap options;
    options.insert(QStringLiteral("native-resolution"), true);
    options.insert(QStringLiteral("include-cursor"), false);
    message.setArguments({outputName, options, QVariant::fromValue(QDBusUnixFileDescriptor(fds[1]))});
    QDBusPendingCall pending = m_bus.asyncCall(message, kCaptureTimeoutMs);
    ::close(fds[1]);
    qsizetype expected = -1;
    const QByteArray pixels = readPicture(fds[0], pending, &expected);
    ::close(fds[0]);
    pending.waitForFinished();
    const QDBusMessage reply = pending.reply();
    auto refuse = [this](const QString& why) {
        qCWarning(lcKWinBridge) << "screen capture failed:" << why;
        const QMutexLocker lock(&m_mutex);
        m_lastRefusal = why;
        return QImage();
    };
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        return refuse(reply.errorMessage().isEmpty() ? reply.errorName() : reply.errorMessage());
    }
    const QVariantMap results = qdbus_cast<QVariantMap>(reply.arguments().constFirst());
    const int width = results.value(QStringLiteral("width")).toInt();
    const int height = results.value(QStringLiteral("height")).toInt();
    const int stride = results.value(QStringLiteral("stride")).toInt();
    const auto format = static_cast<QImage::Format>(results.value(QStringLiteral("format")).toInt());
    if (results.value(QStringLiteral("type")).toString() != QLatin1String("raw") || width <= 0 || height <= 0 ||
        stride < width || pixels.size() < qsizetype(stride) * height) {
        return refuse(QStringLiteral("KWin sent a picture that cannot be read"));
    }
    {
        const QMutexLocker lock(&m_mutex);
        m_lastRefusal.clear();
    }
    return QImage(reinterpret_cast<const uchar*>(pixels.constData()), width, height, stride, format).copy();
}

QString KWinScreenCapture::lastRefusal() const {
    const QMutexLocker lock(&m_mutex);
    return m_lastRefusal;
}
