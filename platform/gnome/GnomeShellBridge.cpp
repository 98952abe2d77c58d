// SPDX-License-Identifier: MIT
#include "platform/gnome/GnomeShellBridge.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QRect>

namespace {

const QString kService = QStringLiteral("org.gnome.Shell");
const QString kPath = QStringLiteral("/app/lattica/Shell");
const QString kInterface = QStringLiteral("app.lattica.Shell");
// A change waits inside the Shell for the window to show it (up to a second); reads answer at once.
constexpr int kCallTimeoutMs = 3000;

}  // namespace

std::unique_ptr<GnomeShellBridge> GnomeShellBridge::connect(QString* problem) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        if (problem) {
            *problem = QStringLiteral("there is no session bus");
        }
        return nullptr;
    }
    auto bridge = std::make_unique<GnomeShellBridge>(bus);
    if (!bridge->ping()) {
        if (problem) {
            *problem = QStringLiteral("Lattica's GNOME Shell extension (%1) does not answer on the session bus")
                           .arg(QLatin1String(kExtensionUuid));
        }
        return nullptr;
    }
    return bridge;
}

GnomeShellBridge::GnomeShellBridge(const QDBusConnection& bus) : m_bus(bus) {
    m_bus.connect(kService, kPath, kInterface, QStringLiteral("MonitorsChanged"), this, SIGNAL(monitorsChanged()));
    m_bus.connect(kService, kPath, kInterface, QStringLiteral("WindowsChanged"), this, SIGNAL(windowsChanged()));
    // Sent to Lattica's connection alone.
    m_bus.connect(kService, kPath, kInterface, QStringLiteral("AcceleratorPressed"), this,
                  SIGNAL(acceleratorPressed(uint)));
    m_bus.connect(kService, kPath, kInterface, QStringLiteral("AcceleratorReleased"), this,
                  SIGNAL(acceleratorReleased(uint)));
}

std::optional<QVariantList> GnomeShellBridge::call(const QString& method, const QVariantList& arguments,
                                                   QString* error) const {
    QDBusMessage message = QDBusMessage::createMethodCall(kService, kPath, kInterface, method);
    message.setArguments(arguments);
    const QDBusMessage reply = m_bus.call(message, QDBus::Block, kCallTimeoutMs);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        if (error) {
            *error = reply.errorMessage().isEmpty() ? reply.errorName() : reply.errorMessage();
        }
        return std::nullopt;
    }
    return reply.arguments();
}

bool GnomeShellBridge::ping() const {
    return call(QStringLiteral("Ping")).has_value();
}

std::optional<QList<GnomeShellMonitor>> GnomeShellBridge::monitors() const {
    const std::optional<QVariantList> reply = call(QStringLiteral("Monitors"));
    if (!reply || reply->isEmpty()) {
        return std::nullopt;
    }
    return GnomeShellState::parseMonitors(reply->constFirst().toString().toUtf8());
}

std::optional<QList<GnomeShellWindow>> GnomeShellBridge::windows() const {
    const std::optional<QVariantList> reply = call(QStringLiteral("Windows"));
    if (!reply || reply->isEmpty()) {
        return std::nullopt;
    }
    return GnomeShellState::parseWindows(reply->constFirst().toString().toUtf8());
}

std::optional<quint64> GnomeShellBridge::focusedWindow() const {
    const std::optional<QVariantList> reply = call(QStringLiteral("FocusedWindow"));
    if (!reply || reply->isEmpty()) {
        return std::nullopt;
    }
    return reply->constFirst().toULongLong();
}

GnomeChangeAnswer GnomeShellBridge::change(const QString& method, const QVariantList& arguments) const {
    const std::optional<QVariantList> reply = call(method, arguments);
    if (!reply || reply->isEmpty()) {
        GnomeChangeAnswer answer;
        answer.error = QStringLiteral("the extension did not answer");
        return answer;
    }
    return GnomeShellState::parseChange(reply->constFirst().toString().toUtf8());
}

GnomeChangeAnswer GnomeShellBridge::moveResize(quint64 window, const QRect& frame) const {
    return change(QStringLiteral("MoveResize"),
                  {QVariant::fromValue(window), frame.x(), frame.y(), frame.width(), frame.height()});
}

GnomeChangeAnswer GnomeShellBridge::moveToMonitor(quint64 window, int monitor) const {
    return change(QStringLiteral("MoveToMonitor"), {QVariant::fromValue(window), monitor});
}

GnomeChangeAnswer GnomeShellBridge::setMaximized(quint64 window, bool maximized) const {
    return change(QStringLiteral("SetMaximized"), {QVariant::fromValue(window), maximized});
}

GnomeChangeAnswer GnomeShellBridge::unminimize(quint64 window) const {
    return change(QStringLiteral("Unminimize"), {QVariant::fromValue(window)});
}

GnomeChangeAnswer GnomeShellBridge::activate(quint64 window) const {
    return change(QStringLiteral("Activate"), {QVariant::fromValue(window)});
}

void GnomeShellBridge::activateWhenShown(quint32 pid, const QString& title) const {
    QDBusMessage message =
        QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("ActivateWhenShown"));
    message.setArguments({pid, title});
    m_bus.asyncCall(message);
}

std::optional<QByteArray> GnomeShellBridge::captureMonitor(int monitor, QString* problem) const {
    const std::optional<QVariantList> reply = call(QStringLiteral("CaptureMonitor"), {monitor}, problem);
    if (!reply || reply->isEmpty()) {
        return std::nullopt;
    }
    return reply->constFirst().toByteArray();
}

uint GnomeShellBridge::grabAccelerator(const QString& accelerator) const {
    const std::optional<QVariantList> reply = call(QStringLiteral("GrabAccelerator"), {accelerator});
    return reply && !reply->isEmpty() ? reply->constFirst().toUInt() : 0;
}

void GnomeShellBridge::ungrabAccelerator(uint action) const {
    call(QStringLiteral("UngrabAccelerator"), {action});
}

std::optional<bool> GnomeShellBridge::acceleratorFree(const QString& accelerator) const {
    const std::optional<QVariantList> reply = call(QStringLiteral("AcceleratorFree"), {accelerator});
    if (!reply || reply->isEmpty()) {
        return std::nullopt;
    }
    return reply->constFirst().toBool();
}
