// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusVirtualObject>

#include "app/commands/CommandTable.h"

class CommandService;

// The running instance's interface on the session bus, app.lattica.Lattica1 (dbus/ keeps its
// introspection). Every method is a command of the command table: moves run the same commands as the
// command line; what needs the user interface (the panel, the settings, quitting) is done by the actions
// the program passes in.
class LatticaBusService : public QDBusVirtualObject {
    Q_OBJECT
public:
    static inline const QString serviceName = fromCatalog(CommandCatalog::kServiceName);
    static inline const QString objectPath = fromCatalog(CommandCatalog::kObjectPath);
    static inline const QString interfaceName = fromCatalog(CommandCatalog::kInterfaceName);

    LatticaBusService(const CommandService& commands, InstanceActions actions, QObject* parent = nullptr);

    // Registers the object on the connection; false when the path is taken.
    bool exportOn(QDBusConnection connection);

    // The reply to a call of the interface: a method return, or an error naming what was wrong.
    QDBusMessage answer(const QDBusMessage& call);

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    const CommandService& m_commands;
    InstanceActions m_actions;
};
