// SPDX-License-Identifier: MIT
#include "tests/platform/gnome/InputBarrier.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include "tests/support/VirtualDesktop.h"

namespace {

const QString kService = QStringLiteral("org.gnome.Mutter.IdleMonitor");
const QString kPath = QStringLiteral("/org/gnome/Mutter/IdleMonitor/Core");
const QString kInterface = QStringLiteral("org.gnome.Mutter.IdleMonitor");

}  // namespace

InputBarrier::InputBarrier() {
    QDBusConnection::sessionBus().connect(kService, kPath, kInterface, QStringLiteral("WatchFired"), this,
                                          SLOT(watchFired(uint)));
}

InputBarrier::~InputBarrier() {
    QDBusConnection::sessionBus().disconnect(kService, kPath, kInterface, QStringLiteral("WatchFired"), this,
                                             SLOT(watchFired(uint)));
}

void InputBarrier::watchFired(uint id) {
    m_fired.insert(id);
}

uint InputBarrier::addWatch(const QString& method, const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(kService, kPath, kInterface, method);
    message.setArguments(arguments);
    const QDBusMessage reply = QDBusConnection::sessionBus().call(message, QDBus::Block, 5000);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        return 0;
    }
    return reply.arguments().constFirst().toUInt();
}

void InputBarrier::removeWatch(uint id) {
    QDBusMessage message = QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("RemoveWatch"));
    message.setArguments({id});
    QDBusConnection::sessionBus().call(message, QDBus::Block, 5000);
    m_fired.remove(id);
}

bool InputBarrier::waitFor(uint id, int timeoutMs) {
    const bool fired = VirtualDesktop::waitUntil([&] { return m_fired.contains(id); }, timeoutMs);
    removeWatch(id);
    return fired;
}

bool InputBarrier::afterHandled(const std::function<bool()>& send, int timeoutMs) {
    // A user-active watch fires once, on the first input Mutter handles after it was added.
    const uint id = addWatch(QStringLiteral("AddUserActiveWatch"), {});
    if (id == 0) {
        return false;
    }
    if (!send()) {
        removeWatch(id);
        return false;
    }
    return waitFor(id, timeoutMs);
}

bool InputBarrier::afterIdle(int milliseconds, int timeoutMs) {
    // An idle watch fires each time the time since the last handled input reaches its interval, and at
    // once when it already has: called after afterHandled, that input is the last one.
    const uint id = addWatch(QStringLiteral("AddIdleWatch"), {static_cast<qulonglong>(milliseconds)});
    return id != 0 && waitFor(id, timeoutMs);
}
