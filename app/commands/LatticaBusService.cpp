#include "app/commands/LatticaBusService.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTimer>

#include "app/commands/CommandService.h"

LatticaBusService::LatticaBusService(const CommandService& commands, Actions actions, QObject* parent)
    : QObject(parent), m_commands(commands), m_actions(std::move(actions)) {}

int LatticaBusService::answer(const CommandResult& result, int& attempted, QString& status) {
    attempted = result.attempted;
    status = result.message;
    if (!result.errorName.isEmpty() && calledFromDBus()) {
        sendErrorReply(result.errorName, result.message);
    }
    return result.moved;
}

CommandResult LatticaBusService::invalidSize(const QString& size) {
    return CommandResult::error(CommandResult::Kind::BadArguments, CommandErrors::invalidArgument,
                                QStringLiteral("size is \"\", \"adjust\" or \"keep\", not \"%1\".").arg(size));
}

QString LatticaBusService::listing(const CommandResult& result) {
    if (!result.errorName.isEmpty()) {
        if (calledFromDBus()) {
            sendErrorReply(result.errorName, result.message);
        }
        return {};
    }
    return QString::fromUtf8(QJsonDocument(result.data.toArray()).toJson(QJsonDocument::Compact));
}

QString LatticaBusService::Displays() {
    return listing(m_commands.displays());
}

QString LatticaBusService::Windows() {
    return listing(m_commands.windows());
}

int LatticaBusService::MoveFocused(const QString& to, const QString& size, int& attempted, QString& status) {
    const std::optional<SizeMode> mode = CommandService::sizeModeNamed(size);
    if (!mode) {
        return answer(invalidSize(size), attempted, status);
    }
    return answer(m_commands.moveFocused(to, *mode), attempted, status);
}

int LatticaBusService::MoveAll(const QString& from, const QString& to, const QString& size, int& attempted,
                               QString& status) {
    const std::optional<SizeMode> mode = CommandService::sizeModeNamed(size);
    if (!mode) {
        return answer(invalidSize(size), attempted, status);
    }
    return answer(m_commands.moveAll(from, to, *mode), attempted, status);
}

int LatticaBusService::MoveApplication(const QString& application, const QString& to, const QString& size,
                                       int& attempted, QString& status) {
    const std::optional<SizeMode> mode = CommandService::sizeModeNamed(size);
    if (!mode) {
        return answer(invalidSize(size), attempted, status);
    }
    return answer(m_commands.moveApplication(application, to, *mode), attempted, status);
}

// The actions run after the reply has gone out, so a caller never waits on the user interface.
void LatticaBusService::OpenPanel() {
    QTimer::singleShot(0, this, [this] { m_actions.openPanel(); });
}

void LatticaBusService::OpenSettings() {
    QTimer::singleShot(0, this, [this] { m_actions.openSettings(); });
}

void LatticaBusService::Quit() {
    QTimer::singleShot(0, this, [this] { m_actions.quit(); });
}
