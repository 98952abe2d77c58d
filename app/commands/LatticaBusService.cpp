// SPDX-License-Identifier: MIT
#include "app/commands/LatticaBusService.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTimer>

#include "app/commands/CommandService.h"

namespace {

QDBusMessage invalidArgument(const QDBusMessage& call, const QString& text) {
    return call.createErrorReply(CommandErrors::invalidArgument, text);
}

// The call's arguments in the command's fields; a message saying what is wrong when they do not fit.
std::variant<CommandArguments, QString> argumentsOf(const CommandTable::Command& command, const QDBusMessage& call) {
    const QVariantList values = call.arguments();
    if (values.size() != command.parameters.size()) {
        return QStringLiteral("%1 takes %2 arguments, not %3.")
            .arg(command.method)
            .arg(command.parameters.size())
            .arg(values.size());
    }
    CommandArguments arguments;
    for (qsizetype i = 0; i < values.size(); ++i) {
        if (values[i].metaType() != QMetaType::fromType<QString>()) {
            return QStringLiteral("%1 takes only strings.").arg(command.method);
        }
        const QString value = values[i].toString();
        switch (command.parameters[i].field) {
            case CommandTable::Field::Application:
                arguments.application = value;
                break;
            case CommandTable::Field::From:
                arguments.from = value;
                break;
            case CommandTable::Field::To:
                arguments.to = value;
                break;
            case CommandTable::Field::Size: {
                const std::optional<SizeMode> mode = CommandService::sizeModeNamed(value);
                if (!mode) {
                    return QStringLiteral("size is \"\", \"adjust\" or \"keep\", not \"%1\".").arg(value);
                }
                arguments.size = *mode;
                break;
            }
        }
    }
    return arguments;
}

}  // namespace

LatticaBusService::LatticaBusService(const CommandService& commands, InstanceActions actions, QObject* parent)
    : QDBusVirtualObject(parent), m_commands(commands), m_actions(std::move(actions)) {}

bool LatticaBusService::exportOn(QDBusConnection connection) {
    return connection.registerVirtualObject(objectPath, this, QDBusConnection::SingleNode);
}

QString LatticaBusService::introspect(const QString&) const {
    return CommandTable::interfaceXml(interfaceName);
}

bool LatticaBusService::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (message.interface() != interfaceName && !message.interface().isEmpty()) {
        return false;
    }
    QDBusConnection(connection).send(answer(message));
    return true;
}

QDBusMessage LatticaBusService::answer(const QDBusMessage& call) {
    const CommandTable::Command* command = CommandTable::withMethod(call.member());
    if (!command) {
        return call.createErrorReply(QDBusError::UnknownMethod,
                                     QStringLiteral("%1 has no method %2.").arg(interfaceName, call.member()));
    }
    const auto arguments = argumentsOf(*command, call);
    if (const auto* problem = std::get_if<QString>(&arguments)) {
        return invalidArgument(call, *problem);
    }
    if (command->action) {
        // The action runs after the reply has gone out, so a caller never waits on the user interface.
        QTimer::singleShot(0, this, [this, action = command->action] {
            if (const std::function<void()>& run = m_actions.*action) {
                run();
            }
        });
        return call.createReply();
    }
    const CommandResult result = command->run(m_commands, std::get<CommandArguments>(arguments));
    if (!result.errorName.isEmpty()) {
        return call.createErrorReply(result.errorName, result.message);
    }
    if (command->reply == CommandTable::Reply::Listing) {
        return call.createReply(QString::fromUtf8(QJsonDocument(result.data.toArray()).toJson(QJsonDocument::Compact)));
    }
    return call.createReply(QVariantList{result.moved, result.attempted, result.message});
}
