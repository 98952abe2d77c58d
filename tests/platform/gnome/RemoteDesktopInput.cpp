// SPDX-License-Identifier: MIT
#include "tests/platform/gnome/RemoteDesktopInput.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <optional>

namespace {

const QString kService = QStringLiteral("org.gnome.Mutter.RemoteDesktop");
const QString kSessionInterface = QStringLiteral("org.gnome.Mutter.RemoteDesktop.Session");

QDBusMessage call(const QString& path, const QString& interface, const QString& method,
                  const QVariantList& arguments = {}) {
    QDBusMessage message = QDBusMessage::createMethodCall(kService, path, interface, method);
    message.setArguments(arguments);
    return QDBusConnection::sessionBus().call(message, QDBus::Block, 5000);
}

}  // namespace

RemoteDesktopInput::~RemoteDesktopInput() {
    if (!m_session.isEmpty()) {
        call(m_session, kSessionInterface, QStringLiteral("Stop"));
    }
}

bool RemoteDesktopInput::start() {
    const QDBusMessage created =
        call(QStringLiteral("/org/gnome/Mutter/RemoteDesktop"), kService, QStringLiteral("CreateSession"));
    if (created.type() != QDBusMessage::ReplyMessage || created.arguments().isEmpty()) {
        m_error = created.errorMessage();
        return false;
    }
    m_session = created.arguments().constFirst().value<QDBusObjectPath>().path();
    const QDBusMessage started = call(m_session, kSessionInterface, QStringLiteral("Start"));
    if (started.type() != QDBusMessage::ReplyMessage) {
        m_error = started.errorMessage();
        return false;
    }
    return true;
}

bool RemoteDesktopInput::send(int evdevCode, bool pressed) {
    return notify(QStringLiteral("NotifyKeyboardKeycode"), {static_cast<uint>(evdevCode), pressed});
}

bool RemoteDesktopInput::movePointerTo(QPoint point) {
    // Mutter keeps a relative motion that would end off the monitors on the monitor the pointer is on:
    // pushed past the top left corner from a monitor right of the first, the pointer would stop at that
    // monitor's corner. So the pointer is pushed there only while its place is not known (a new session
    // puts it on the first monitor), and moved by the difference from where it was put last after that.
    static std::optional<QPoint> lastPlaced;
    constexpr double kPastTheEdge = -100000.0;
    if (!lastPlaced && !notify(QStringLiteral("NotifyPointerMotionRelative"), {kPastTheEdge, kPastTheEdge})) {
        return false;
    }
    const QPoint from = lastPlaced.value_or(QPoint(0, 0));
    lastPlaced.reset();
    if (!notify(QStringLiteral("NotifyPointerMotionRelative"),
                {static_cast<double>(point.x() - from.x()), static_cast<double>(point.y() - from.y())})) {
        return false;
    }
    lastPlaced = point;
    return true;
}

bool RemoteDesktopInput::click() {
    constexpr int kEvdevLeftButton = 0x110;
    return notify(QStringLiteral("NotifyPointerButton"), {kEvdevLeftButton, true}) &&
           notify(QStringLiteral("NotifyPointerButton"), {kEvdevLeftButton, false});
}

bool RemoteDesktopInput::notify(const QString& method, const QVariantList& arguments) {
    const QDBusMessage reply = call(m_session, kSessionInterface, method, arguments);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        m_error = reply.errorMessage();
        return false;
    }
    return true;
}
