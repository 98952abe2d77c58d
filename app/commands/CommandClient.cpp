#include "app/commands/CommandClient.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QJsonArray>
#include <QJsonDocument>

#include "app/commands/LatticaBusService.h"

namespace {

CommandResult::Kind kindOfError(const QString& name) {
    if (name == CommandErrors::notAvailable) {
        return CommandResult::Kind::Unavailable;
    }
    if (name == CommandErrors::noSuchMonitor || name == CommandErrors::noSuchApplication ||
        name == CommandErrors::invalidArgument) {
        return CommandResult::Kind::BadArguments;
    }
    return CommandResult::Kind::PartlyDone;
}

}  // namespace

bool CommandClient::instanceIsRunning() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    return bus.isConnected() && bus.interface()->isServiceRegistered(LatticaBusService::serviceName).value();
}

std::optional<CommandResult> CommandClient::call(const QString& method, const QVariantList& arguments) {
    if (!instanceIsRunning()) {
        return std::nullopt;
    }
    QDBusMessage message = QDBusMessage::createMethodCall(LatticaBusService::serviceName, LatticaBusService::objectPath,
                                                          LatticaBusService::interfaceName, method);
    message.setArguments(arguments);
    const QDBusMessage reply = QDBusConnection::sessionBus().call(message, QDBus::Block, 60000);
    if (reply.type() == QDBusMessage::ErrorMessage) {
        const QString name = reply.errorName();
        if (name.startsWith(QLatin1String("app.lattica.Error."))) {
            return CommandResult::error(kindOfError(name), name, reply.errorMessage());
        }
        // The instance went away or does not answer: the command runs here instead.
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
