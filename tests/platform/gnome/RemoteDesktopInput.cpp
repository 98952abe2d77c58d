// SPDX-License-Identifier: MIT
#include "tests/platform/gnome/RemoteDesktopInput.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>

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
    // Far past any corner of the desktop; the pointer stops at the edge.
    constexpr double kPastTheEdge = -100000.0;
    return notify(QStringLiteral("NotifyPointerMotionRelative"), {kPastTheEdge, kPastTheEdge}) &&
           notify(QStringLiteral("NotifyPointerMotionRelative"),
                  {static_cast<double>(point.x()), static_cast<double>(point.y())});
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
