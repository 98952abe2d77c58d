// SPDX-License-Identifier: MIT
#include "app/commands/CommandLine.h"

#include <algorithm>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "BuildConfig.h"

namespace {

// The command list of --help, from the command table.
QString commandHelp() {
    // Summaries line up two spaces after the longest usage.
    qsizetype usageWidth = 0;
    for (const CommandTable::Command& command : CommandTable::commands()) {
        usageWidth = std::max(usageWidth, command.usage.size());
    }
    QString text = QCoreApplication::translate("CommandLine", "\nCommands:\n");
    for (const CommandTable::Command& command : CommandTable::commands()) {
        text += QStringLiteral("  ") + command.usage.leftJustified(usageWidth + 2) +
                CommandTable::translated(command.summary) + QLatin1Char('\n');
    }
    return text +
           QCoreApplication::translate(
               "CommandLine",
               "\nTARGET is a monitor's number as the panel shows it, its name, or next, previous, left, right,\n"
               "up or down from the focused window's monitor.\n"
               "Exit status: 0 done, 1 nothing to do or partly done, 2 bad arguments, 3 the session does not "
               "allow it.\n");
}

CommandLine::Request badArguments(const QString& message) {
    CommandLine::Request request;
    request.kind = CommandLine::Request::Kind::BadArguments;
    request.output =
        QStringLiteral("lattica: ") + message + QCoreApplication::translate("CommandLine", "\nTry 'lattica --help'.\n");
    return request;
}

QString rectText(const QJsonObject& rect) {
    return QStringLiteral("%1x%2+%3+%4")
        .arg(rect[QStringLiteral("width")].toDouble())
        .arg(rect[QStringLiteral("height")].toDouble())
        .arg(rect[QStringLiteral("x")].toDouble())
        .arg(rect[QStringLiteral("y")].toDouble());
}

QString displayLines(const QJsonArray& displays) {
    QString text;
    for (const QJsonValue& value : displays) {
        const QJsonObject display = value.toObject();
        text +=
            QStringLiteral("%1  %2  %3%4  %5\n")
                .arg(display[QStringLiteral("index")].toInt())
                .arg(display[QStringLiteral("name")].toString(), rectText(display[QStringLiteral("bounds")].toObject()),
                     display[QStringLiteral("primary")].toBool() ? QStringLiteral("  primary") : QString(),
                     display[QStringLiteral("id")].toString());
    }
    return text;
}

QString windowLines(const QJsonArray& windows) {
    QString text;
    for (const QJsonValue& value : windows) {
        const QJsonObject window = value.toObject();
        const QJsonValue monitor = window[QStringLiteral("monitor")];
        text += QStringLiteral("%1  %2  %3  %4  %5  %6\n")
                    .arg(QString::number(window[QStringLiteral("id")].toInteger()),
                         monitor.isNull() ? QStringLiteral("-") : QString::number(monitor.toInt()),
                         rectText(window[QStringLiteral("frame")].toObject()),
                         QString::number(window[QStringLiteral("pid")].toInteger()),
                         window[QStringLiteral("app")].toString(), window[QStringLiteral("title")].toString());
    }
    return text;
}

}  // namespace

namespace {

// The parser and its options, the same for parsing and for the help text.
struct Parser {
    QCommandLineParser parser;
    const QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")},
                                  QCoreApplication::translate("CommandLine", "Show this help.")};
    const QCommandLineOption version{QStringLiteral("version"),
                                     QCoreApplication::translate("CommandLine", "Show the version.")};
    const QCommandLineOption to{QStringLiteral("to"),
                                QCoreApplication::translate("CommandLine", "The monitor to move to."),
                                QStringLiteral("TARGET")};
    const QCommandLineOption from{QStringLiteral("from"),
                                  QCoreApplication::translate("CommandLine", "The monitor to move from."),
                                  QStringLiteral("TARGET")};
    const QCommandLineOption adjust{
        QStringLiteral("adjust-size"),
        QCoreApplication::translate("CommandLine", "Scale windows to the target monitor this time.")};
    const QCommandLineOption keep{QStringLiteral("keep-size"),
                                  QCoreApplication::translate("CommandLine", "Keep windows' sizes this time.")};
    const QCommandLineOption json{QStringLiteral("json"),
                                  QCoreApplication::translate("CommandLine", "Print machine-readable JSON.")};

    Parser() {
        parser.setApplicationDescription(
            QCoreApplication::translate("CommandLine", "Lattica moves windows between monitors."));
        parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
        parser.addOptions({help, version, to, from, adjust, keep, json});
        parser.addPositionalArgument(QStringLiteral("command"),
                                     QCoreApplication::translate("CommandLine", "What to do (see below)."),
                                     QStringLiteral("[command]"));
    }
};

}  // namespace

QString CommandLine::helpText() {
    Parser options;
    return options.parser.helpText() + commandHelp();
}

CommandLine::Request CommandLine::parse(const QStringList& arguments) {
    Parser options;
    QCommandLineParser& parser = options.parser;
    const QCommandLineOption &help = options.help, &version = options.version, &to = options.to, &from = options.from,
                             &adjust = options.adjust, &keep = options.keep, &json = options.json;
    if (!parser.parse(arguments)) {
        return badArguments(parser.errorText());
    }
    Request request;
    if (parser.isSet(help)) {
        request.kind = Request::Kind::Help;
        return request;
    }
    if (parser.isSet(version)) {
        request.kind = Request::Kind::Version;
        request.output =
            QStringLiteral("Lattica %1 (%2)\n")
                .arg(QString::fromLatin1(BuildConfig::kVersion), QString::fromLatin1(BuildConfig::kBuildNumber));
        return request;
    }
    const QStringList positional = parser.positionalArguments();
    if (positional.isEmpty()) {
        if (parser.isSet(to) || parser.isSet(from) || parser.isSet(adjust) || parser.isSet(keep) ||
            parser.isSet(json)) {
            return badArguments(QCoreApplication::translate("CommandLine", "options need a command."));
        }
        return request;
    }
    request.kind = Request::Kind::Command;
    request.command = positional.first();
    const CommandTable::Command* command = CommandTable::withWord(request.command);
    if (!command) {
        return badArguments(QCoreApplication::translate("CommandLine", "'%1' is not a command.").arg(request.command));
    }
    if (parser.isSet(adjust) && parser.isSet(keep)) {
        return badArguments(
            QCoreApplication::translate("CommandLine", "--adjust-size and --keep-size cannot both be given."));
    }
    request.size = parser.isSet(adjust) ? SizeMode::Adjust : parser.isSet(keep) ? SizeMode::Keep : SizeMode::Preference;
    request.json = parser.isSet(json);
    request.to = parser.value(to);
    request.from = parser.value(from);

    if (positional.size() != 1 + command->positional.size()) {
        return command->positional.isEmpty()
                   ? badArguments(QCoreApplication::translate("CommandLine", "'%1' takes no further arguments.")
                                      .arg(request.command))
                   : badArguments(QCoreApplication::translate("CommandLine", "%1 needs %2.")
                                      .arg(request.command, CommandTable::translated(command->positionalNeed)));
    }
    for (qsizetype i = 0; i < command->positional.size(); ++i) {
        const QString& word = positional[i + 1];
        switch (command->positional[i]) {
            case CommandTable::Field::Application:
                request.application = word;
                break;
            case CommandTable::Field::From:
                request.from = word;
                break;
            case CommandTable::Field::To:
                request.to = word;
                break;
            case CommandTable::Field::Size:
                break;
        }
    }
    if (command->takesOption(CommandTable::Field::To) && request.to.isEmpty()) {
        return badArguments(QCoreApplication::translate("CommandLine", "%1 needs --to TARGET.").arg(request.command));
    }
    if (command->takesOption(CommandTable::Field::From) && request.from.isEmpty()) {
        return badArguments(QCoreApplication::translate("CommandLine", "%1 needs --from TARGET.").arg(request.command));
    }
    if (!command->moves() && (parser.isSet(to) || parser.isSet(from) || parser.isSet(adjust) || parser.isSet(keep))) {
        return badArguments(
            QCoreApplication::translate("CommandLine", "'%1' does not move windows.").arg(request.command));
    }
    if (parser.isSet(from) && !command->takesOption(CommandTable::Field::From)) {
        return badArguments(QCoreApplication::translate("CommandLine", "'%1' takes no --from.").arg(request.command));
    }
    if (parser.isSet(to) && !command->takesOption(CommandTable::Field::To)) {
        return badArguments(QCoreApplication::translate("CommandLine", "'%1' takes no --to.").arg(request.command));
    }
    return request;
}

std::pair<QString, QVariantList> CommandLine::busCall(const Request& request) {
    const CommandTable::Command* command = CommandTable::withWord(request.command);
    if (!command) {
        return {};
    }
    return {command->method, CommandTable::busArguments(*command, request)};
}

CommandLine::Printed CommandLine::print(const Request& request, const CommandResult& result) {
    Printed printed;
    printed.exitStatus = result.exitStatus();
    const CommandTable::Command* command = CommandTable::withWord(request.command);
    const bool listing = command && command->reply == CommandTable::Reply::Listing;
    if (request.json) {
        QJsonDocument document;
        if (listing && result.errorName.isEmpty()) {
            document = QJsonDocument(result.data.toArray());
        } else {
            QJsonObject object{{QStringLiteral("status"), result.message}};
            if (!result.errorName.isEmpty()) {
                object.insert(QStringLiteral("error"), result.errorName);
            } else if (command && command->moves()) {
                object.insert(QStringLiteral("moved"), result.moved);
                object.insert(QStringLiteral("attempted"), result.attempted);
            }
            document = QJsonDocument(object);
        }
        (printed.exitStatus == 0 ? printed.standardOutput : printed.standardError) =
            QString::fromUtf8(document.toJson(QJsonDocument::Indented));
        return printed;
    }
    if (!result.errorName.isEmpty()) {
        printed.standardError = QStringLiteral("lattica: ") + result.message + QLatin1Char('\n');
    } else if (listing) {
        const QJsonArray items = result.data.toArray();
        printed.standardOutput =
            request.command == QLatin1String("displays") ? displayLines(items) : windowLines(items);
    } else if (!result.message.isEmpty()) {
        (printed.exitStatus == 0 ? printed.standardOutput : printed.standardError) = result.message + QLatin1Char('\n');
    }
    return printed;
}
