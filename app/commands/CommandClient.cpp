// SPDX-License-Identifier: MIT
#include "app/commands/CommandClient.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QJsonArray>
#include <QJsonDocument>

#include "app/commands/LatticaBusService.h"

// A call to a name nobody owns fails at once with ServiceUnknown, so no separate question about the
// name's owner is asked first: that would cost a second round trip on every command.
std::optional<CommandResult> CommandClient::call(const QString& method, const QVariantList& arguments) {
    if (!QDBusConnection::sessionBus().isConnected()) {
        return std::nullopt;
    }
    QDBusMessage message = QDBusMessage::createMethodCall(LatticaBusService::serviceName, LatticaBusService::objectPath,
                                                          LatticaBusService::interfaceName, method);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    const QDBusMessage reply = QDBusConnection::sessionBus().call(message, QDBus::Block, 60000);
    if (reply.type() == QDBusMessage::ErrorMessage) {
        const QString name = reply.errorName();
        if (name.toStdString().starts_with(CommandCatalog::kErrorPrefix)) {
            return CommandResult::error(CommandCatalog::outcomeOfError(name.toStdString()), name, reply.errorMessage());
        }
        // No instance owns the name (ServiceUnknown), or it went away or does not answer: the command runs
        // here instead.
        return std::nullopt;
    }
    const QVariantList values = reply.arguments();
    if (values.size() == 3) {
        return CommandResult::moves(values[0].toInt(), values[1].toInt(), values[2].toString());
    }
    CommandResult result;
    if (values.size() == 1) {
        result.data = QJsonDocument::fromJson(values[0].toString().toUtf8()).array();
    }
    return result;
}
