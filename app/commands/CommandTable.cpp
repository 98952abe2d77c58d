// SPDX-License-Identifier: MIT
#include "app/commands/CommandTable.h"

#include <QCoreApplication>

namespace {

using CommandTable::Command;
using CommandTable::Field;
using CommandTable::Reply;

const CommandTable::Parameter kApplication{Field::Application, QStringLiteral("application")};
const CommandTable::Parameter kFrom{Field::From, QStringLiteral("from")};
const CommandTable::Parameter kTo{Field::To, QStringLiteral("to")};
const CommandTable::Parameter kSize{Field::Size, QStringLiteral("size")};
// swap takes its two monitors in the From and To fields.
const CommandTable::Parameter kFirst{Field::From, QStringLiteral("first")};
const CommandTable::Parameter kSecond{Field::To, QStringLiteral("second")};

QList<Command> describeCommands() {
    return {
        {.word = QStringLiteral("displays"),
         .method = QStringLiteral("Displays"),
         .reply = Reply::Listing,
         .usage = QStringLiteral("displays"),
         .summary = QStringLiteral(QT_TRANSLATE_NOOP("CommandTable", "List the monitors.")),
         .run = [](const CommandService& service, const CommandArguments&) { return service.displays(); }},
        {.word = QStringLiteral("windows"),
         .method = QStringLiteral("Windows"),
         .reply = Reply::Listing,
         .usage = QStringLiteral("windows"),
         .summary = QStringLiteral(QT_TRANSLATE_NOOP("CommandTable", "List the windows, front to back.")),
         .run = [](const CommandService& service, const CommandArguments&) { return service.windows(); }},
        {.word = QStringLiteral("move-focused"),
         .method = QStringLiteral("MoveFocused"),
         .parameters = {kTo, kSize},
         .reply = Reply::Moves,
         .usage = QStringLiteral("move-focused --to TARGET"),
         .summary = QStringLiteral(QT_TRANSLATE_NOOP("CommandTable", "Move the focused window.")),
         .run = [](const CommandService& service,
                   const CommandArguments& arguments) { return service.moveFocused(arguments.to, arguments.size); }},
        {.word = QStringLiteral("move-all"),
         .method = QStringLiteral("MoveAll"),
         .parameters = {kFrom, kTo, kSize},
         .reply = Reply::Moves,
         .usage = QStringLiteral("move-all --from TARGET --to TARGET"),
         .summary = QStringLiteral(QT_TRANSLATE_NOOP("CommandTable", "Move every window of one monitor.")),
         .run =
             [](const CommandService& service, const CommandArguments& arguments) {
                 return service.moveAll(arguments.from, arguments.to, arguments.size);
             }},
        {.word = QStringLiteral("move-app"),
         .method = QStringLiteral("MoveApplication"),
         .parameters = {kApplication, kTo, kSize},
         .reply = Reply::Moves,
         .positional = {Field::Application},
         .positionalNeed = QStringLiteral(QT_TRANSLATE_NOOP("CommandTable", "the application's name or process id")),
         .usage = QStringLiteral("move-app APP --to TARGET"),
         .summary = QStringLiteral(
             QT_TRANSLATE_NOOP("CommandTable", "Move every window of an application (name or process id).")),
         .run =
             [](const CommandService& service, const CommandArguments& arguments) {
                 return service.moveApplication(arguments.application, arguments.to, arguments.size);
             }},
        {.word = QStringLiteral("swap"),
         .method = QStringLiteral("Swap"),
         .parameters = {kFirst, kSecond, kSize},
         .reply = Reply::Moves,
         .positional = {Field::From, Field::To},
         .positionalNeed = QStringLiteral(QT_TRANSLATE_NOOP("CommandTable", "two monitors: swap TARGET TARGET")),
         .usage = QStringLiteral("swap TARGET TARGET"),
         .summary = QStringLiteral(QT_TRANSLATE_NOOP("CommandTable", "Exchange the windows of two monitors.")),
         .run =
             [](const CommandService& service, const CommandArguments& arguments) {
                 return service.swap(arguments.from, arguments.to, arguments.size);
             }},
        {.word = QStringLiteral("panel"),
         .method = QStringLiteral("OpenPanel"),
         .usage = QStringLiteral("panel"),
         .summary = QStringLiteral(QT_TRANSLATE_NOOP("CommandTable", "Open the panel of the running Lattica.")),
         .action = &InstanceActions::openPanel},
        {.word = QStringLiteral("settings"),
         .method = QStringLiteral("OpenSettings"),
         .usage = QStringLiteral("settings"),
         .summary = QStringLiteral(QT_TRANSLATE_NOOP("CommandTable", "Open the settings of the running Lattica.")),
         .action = &InstanceActions::openSettings},
        {.word = QStringLiteral("quit"),
         .method = QStringLiteral("Quit"),
         .usage = QStringLiteral("quit"),
         .summary = QStringLiteral(QT_TRANSLATE_NOOP("CommandTable", "End the running Lattica.")),
         .action = &InstanceActions::quit},
    };
}

QString fieldValue(Field field, const CommandArguments& arguments) {
    switch (field) {
        case Field::Application:
            return arguments.application;
        case Field::From:
            return arguments.from;
        case Field::To:
            return arguments.to;
        case Field::Size:
            return CommandTable::sizeWord(arguments.size);
    }
    return {};
}

QString argXml(const QString& name, const QString& type, const QString& direction) {
    return QStringLiteral("<arg name=\"%1\" type=\"%2\" direction=\"%3\"/>").arg(name, type, direction);
}

}  // namespace

bool CommandTable::Command::takes(Field field) const {
    return std::any_of(parameters.cbegin(), parameters.cend(),
                       [field](const Parameter& parameter) { return parameter.field == field; });
}

const QList<Command>& CommandTable::commands() {
    static const QList<Command> table = describeCommands();
    return table;
}

QString CommandTable::translated(const QString& sentence) {
    return QCoreApplication::translate("CommandTable", sentence.toUtf8().constData());
}

const Command* CommandTable::withWord(const QString& word) {
    for (const Command& command : commands()) {
        if (command.word == word) {
            return &command;
        }
    }
    return nullptr;
}

const Command* CommandTable::withMethod(const QString& method) {
    for (const Command& command : commands()) {
        if (command.method == method) {
            return &command;
        }
    }
    return nullptr;
}

QString CommandTable::sizeWord(SizeMode size) {
    switch (size) {
        case SizeMode::Adjust:
            return QStringLiteral("adjust");
        case SizeMode::Keep:
            return QStringLiteral("keep");
        case SizeMode::Preference:
            break;
    }
    return {};
}

QVariantList CommandTable::busArguments(const Command& command, const CommandArguments& arguments) {
    QVariantList values;
    for (const Parameter& parameter : command.parameters) {
        values.append(fieldValue(parameter.field, arguments));
    }
    return values;
}

QString CommandTable::interfaceXml(const QString& interfaceName) {
    QString xml = QStringLiteral("<interface name=\"%1\">\n").arg(interfaceName);
    for (const Command& command : commands()) {
        QStringList args;
        for (const Parameter& parameter : command.parameters) {
            args.append(argXml(parameter.busName, QStringLiteral("s"), QStringLiteral("in")));
        }
        if (command.reply == Reply::Listing) {
            args.append(argXml(QStringLiteral("json"), QStringLiteral("s"), QStringLiteral("out")));
        } else if (command.reply == Reply::Moves) {
            args.append(argXml(QStringLiteral("moved"), QStringLiteral("i"), QStringLiteral("out")));
            args.append(argXml(QStringLiteral("attempted"), QStringLiteral("i"), QStringLiteral("out")));
            args.append(argXml(QStringLiteral("status"), QStringLiteral("s"), QStringLiteral("out")));
        }
        xml += QStringLiteral("  <method name=\"%1\">\n").arg(command.method);
        for (const QString& arg : args) {
            xml += QStringLiteral("    ") + arg + QLatin1Char('\n');
        }
        xml += QStringLiteral("  </method>\n");
    }
    return xml + QStringLiteral("</interface>\n");
}
