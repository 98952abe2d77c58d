#include "app/commands/CommandLine.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "BuildConfig.h"

namespace {

const QStringList kCommands = {QStringLiteral("displays"), QStringLiteral("windows"),  QStringLiteral("move-focused"),
                               QStringLiteral("move-all"), QStringLiteral("move-app"), QStringLiteral("panel"),
                               QStringLiteral("settings"), QStringLiteral("quit")};

const char* kCommandHelp =
    "\nCommands:\n"
    "  displays                          List the monitors.\n"
    "  windows                           List the windows, front to back.\n"
    "  move-focused --to TARGET          Move the focused window.\n"
    "  move-all --from TARGET --to TARGET  Move every window of one monitor.\n"
    "  move-app APP --to TARGET          Move every window of an application (name or process id).\n"
    "  panel                             Open the panel of the running Lattica.\n"
    "  settings                          Open the settings of the running Lattica.\n"
    "  quit                              End the running Lattica.\n"
    "\nTARGET is a monitor's number as the panel shows it, its name, or next, previous, left, right,\n"
    "up or down from the focused window's monitor.\n"
    "Exit status: 0 done, 1 nothing to do or partly done, 2 bad arguments, 3 the session does not allow it.\n";

CommandLine::Request badArguments(const QString& message) {
    CommandLine::Request request;
    request.kind = CommandLine::Request::Kind::BadArguments;
    request.output = QStringLiteral("lattica: ") + message + QStringLiteral("\nTry 'lattica --help'.\n");
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
    const QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")};
    const QCommandLineOption version{QStringLiteral("version"), QStringLiteral("Show the version.")};
    const QCommandLineOption to{QStringLiteral("to"), QStringLiteral("The monitor to move to."),
                                QStringLiteral("TARGET")};
    const QCommandLineOption from{QStringLiteral("from"), QStringLiteral("The monitor to move from."),
                                  QStringLiteral("TARGET")};
    const QCommandLineOption adjust{QStringLiteral("adjust-size"),
                                    QStringLiteral("Scale windows to the target monitor this time.")};
    const QCommandLineOption keep{QStringLiteral("keep-size"), QStringLiteral("Keep windows' sizes this time.")};
    const QCommandLineOption json{QStringLiteral("json"), QStringLiteral("Print machine-readable JSON.")};

    Parser() {
        parser.setApplicationDescription(QStringLiteral("Lattica moves windows between monitors."));
        parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
        parser.addOptions({help, version, to, from, adjust, keep, json});
        parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("What to do (see below)."),
                                     QStringLiteral("[command]"));
    }
};

}  // namespace

QString CommandLine::helpText() {
    Parser options;
    return options.parser.helpText() + QString::fromLatin1(kCommandHelp);
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
            return badArguments(QStringLiteral("options need a command."));
        }
        return request;
    }
    request.kind = Request::Kind::Command;
    request.command = positional.first();
    if (!kCommands.contains(request.command)) {
        return badArguments(QStringLiteral("'%1' is not a command.").arg(request.command));
    }
    if (parser.isSet(adjust) && parser.isSet(keep)) {
        return badArguments(QStringLiteral("--adjust-size and --keep-size cannot both be given."));
    }
    request.size = parser.isSet(adjust) ? SizeMode::Adjust : parser.isSet(keep) ? SizeMode::Keep : SizeMode::Preference;
    request.json = parser.isSet(json);
    request.to = parser.value(to);
    request.from = parser.value(from);

    const bool moves = request.command.startsWith(QLatin1String("move-"));
    const qsizetype expectedPositional = request.command == QLatin1String("move-app") ? 2 : 1;
    if (positional.size() != expectedPositional) {
        return request.command == QLatin1String("move-app")
                   ? badArguments(QStringLiteral("move-app needs the application's name or process id."))
                   : badArguments(QStringLiteral("'%1' takes no further arguments.").arg(request.command));
    }
    if (expectedPositional == 2) {
        request.application = positional[1];
    }
    if (moves && request.to.isEmpty()) {
        return badArguments(QStringLiteral("%1 needs --to TARGET.").arg(request.command));
    }
    if (request.command == QLatin1String("move-all") && request.from.isEmpty()) {
        return badArguments(QStringLiteral("move-all needs --from TARGET."));
    }
    if (!moves && (parser.isSet(to) || parser.isSet(adjust) || parser.isSet(keep))) {
        return badArguments(QStringLiteral("'%1' does not move windows.").arg(request.command));
    }
    if (request.command != QLatin1String("move-all") && parser.isSet(from)) {
        return badArguments(QStringLiteral("only move-all takes --from."));
    }
    return request;
}

std::pair<QString, QVariantList> CommandLine::busCall(const Request& request) {
    const QString size = request.size == SizeMode::Adjust ? QStringLiteral("adjust")
                         : request.size == SizeMode::Keep ? QStringLiteral("keep")
                                                          : QString();
    if (request.command == QLatin1String("displays")) {
        return {QStringLiteral("Displays"), {}};
    }
    if (request.command == QLatin1String("windows")) {
        return {QStringLiteral("Windows"), {}};
    }
    if (request.command == QLatin1String("move-focused")) {
        return {QStringLiteral("MoveFocused"), {request.to, size}};
    }
    if (request.command == QLatin1String("move-all")) {
        return {QStringLiteral("MoveAll"), {request.from, request.to, size}};
    }
    if (request.command == QLatin1String("move-app")) {
        return {QStringLiteral("MoveApplication"), {request.application, request.to, size}};
    }
    if (request.command == QLatin1String("panel")) {
        return {QStringLiteral("OpenPanel"), {}};
    }
    if (request.command == QLatin1String("settings")) {
        return {QStringLiteral("OpenSettings"), {}};
    }
    if (request.command == QLatin1String("quit")) {
        return {QStringLiteral("Quit"), {}};
    }
    return {};
}

CommandLine::Printed CommandLine::print(const Request& request, const CommandResult& result) {
    Printed printed;
    printed.exitStatus = result.exitStatus();
    const bool listing = request.command == QLatin1String("displays") || request.command == QLatin1String("windows");
    if (request.json) {
        QJsonDocument document;
        if (listing && result.errorName.isEmpty()) {
            document = QJsonDocument(result.data.toArray());
        } else {
            QJsonObject object{{QStringLiteral("status"), result.message}};
            if (!result.errorName.isEmpty()) {
                object.insert(QStringLiteral("error"), result.errorName);
            } else if (request.command.startsWith(QLatin1String("move-"))) {
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
