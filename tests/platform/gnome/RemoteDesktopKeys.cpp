// SPDX-License-Identifier: MIT
#include "tests/platform/gnome/RemoteDesktopKeys.h"

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

RemoteDesktopKeys::~RemoteDesktopKeys() {
    if (!m_session.isEmpty()) {
        call(m_session, kSessionInterface, QStringLiteral("Stop"));
    }
}

bool RemoteDesktopKeys::start() {
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

bool RemoteDesktopKeys::send(int evdevCode, bool pressed) {
    const QDBusMessage reply = call(m_session, kSessionInterface, QStringLiteral("NotifyKeyboardKeycode"),
                                    {static_cast<uint>(evdevCode), pressed});
    if (reply.type() != QDBusMessage::ReplyMessage) {
        m_error = reply.errorMessage();
        return false;
    }
    return true;
}
