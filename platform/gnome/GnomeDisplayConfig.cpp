// SPDX-License-Identifier: MIT
#include "platform/gnome/GnomeDisplayConfig.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>

namespace {

constexpr int kCallTimeoutMs = 3000;

// Skips a property list (a{sv}).
void skipProperties(const QDBusArgument& argument) {
    QVariantMap ignored;
    argument >> ignored;
}

// (ssss): connector, vendor, product, serial of one physical monitor of a logical one.
struct PhysicalMonitor {
    QString connector, vendor, product, serial;
};

PhysicalMonitor readPhysicalMonitor(const QDBusArgument& argument) {
    PhysicalMonitor physical;
    argument.beginStructure();
    argument >> physical.connector >> physical.vendor >> physical.product >> physical.serial;
    argument.endStructure();
    return physical;
}

// a(iiduba(ssss)a{sv}): x, y, scale, transform, primary, monitors, properties.
QList<GnomeConnectedMonitor> readLogicalMonitors(const QDBusArgument& argument) {
    QList<GnomeConnectedMonitor> monitors;
    argument.beginArray();
    while (!argument.atEnd()) {
        int x = 0;
        int y = 0;
        double scale = 1.0;
        uint transform = 0;
        bool primary = false;
        argument.beginStructure();
        argument >> x >> y >> scale >> transform >> primary;
        argument.beginArray();
        while (!argument.atEnd()) {
            const PhysicalMonitor physical = readPhysicalMonitor(argument);
            monitors.append(
                {physical.connector, physical.vendor, physical.product, physical.serial, QPoint(x, y), primary});
        }
        argument.endArray();
        skipProperties(argument);
        argument.endStructure();
    }
    argument.endArray();
    return monitors;
}

}  // namespace

std::optional<QList<GnomeConnectedMonitor>> GnomeDisplayConfig::currentMonitors(const QDBusConnection& bus) {
    const QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.gnome.Mutter.DisplayConfig"), QStringLiteral("/org/gnome/Mutter/DisplayConfig"),
        QStringLiteral("org.gnome.Mutter.DisplayConfig"), QStringLiteral("GetCurrentState"));
    const QDBusMessage reply = bus.call(message, QDBus::Block, kCallTimeoutMs);
    // serial, monitors, logical monitors, properties
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() != 4) {
        return std::nullopt;
    }
    const QVariant logical = reply.arguments().at(2);
    if (!logical.canConvert<QDBusArgument>()) {
        return std::nullopt;
    }
    return readLogicalMonitors(logical.value<QDBusArgument>());
}
