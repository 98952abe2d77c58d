// SPDX-License-Identifier: MIT
#include "app/commands/CommandTable.h"

#include <QCoreApplication>

namespace {

using CommandTable::Command;
using CommandTable::Field;

using Run = std::function<CommandResult(const CommandService&, const CommandArguments&)>;

// What runs a command in whichever process has the platform; nothing for instance-only commands.
Run runOf(std::string_view word) {
    if (word == "displays") {
        return [](const CommandService& service, const CommandArguments&) { return service.displays(); };
    }
    if (word == "windows") {
        return [](const CommandService& service, const CommandArguments&) { return service.windows(); };
    }
    if (word == "move-focused") {
        return [](const CommandService& service, const CommandArguments& arguments) {
            return service.moveFocused(arguments.to, arguments.size);
        };
    }
    if (word == "move-all") {
        return [](const CommandService& service, const CommandArguments& arguments) {
            return service.moveAll(arguments.from, arguments.to, arguments.size);
        };
    }
    if (word == "move-app") {
        return [](const CommandService& service, const CommandArguments& arguments) {
            return service.moveApplication(arguments.application, arguments.to, arguments.size);
        };
    }
    if (word == "swap") {
        return [](const CommandService& service, const CommandArguments& arguments) {
            return service.swap(arguments.from, arguments.to, arguments.size);
        };
    }
    return {};
}

// What the running instance does for an instance-only command.
std::function<void()> InstanceActions::*actionOf(std::string_view word) {
    if (word == "panel") {
        return &InstanceActions::openPanel;
    }
    if (word == "settings") {
        return &InstanceActions::openSettings;
    }
    if (word == "quit") {
        return &InstanceActions::quit;
    }
    return nullptr;
}

// The catalog is plain C++ (the launcher has no Qt), so its texts are marked here for lupdate;
// translated() looks them up in this context.
[[maybe_unused]] constexpr const char* kCatalogTexts[] = {
    QT_TRANSLATE_NOOP("CommandTable", "List the monitors."),
    QT_TRANSLATE_NOOP("CommandTable", "List the windows, front to back."),
    QT_TRANSLATE_NOOP("CommandTable", "Move the focused window."),
    QT_TRANSLATE_NOOP("CommandTable", "Move every window of one monitor."),
    QT_TRANSLATE_NOOP("CommandTable", "the application's name or process id"),
    QT_TRANSLATE_NOOP("CommandTable", "Move every window of an application (name or process id)."),
    QT_TRANSLATE_NOOP("CommandTable", "two monitors: swap TARGET TARGET"),
    QT_TRANSLATE_NOOP("CommandTable", "Exchange the windows of two monitors."),
    QT_TRANSLATE_NOOP("CommandTable", "Open the panel of the running Lattica."),
    QT_TRANSLATE_NOOP("CommandTable", "Open the settings of the running Lattica."),
    QT_TRANSLATE_NOOP("CommandTable", "End the running Lattica."),
};

QList<Command> describeCommands() {
    QList<Command> table;
    for (const CommandCatalog::Entry& entry : CommandCatalog::kCommands) {
        Command command;
        command.word = fromCatalog(entry.word);
        command.method = fromCatalog(entry.method);
        for (const CommandCatalog::Parameter& parameter : entry.parameters) {
            command.parameters.append({parameter.field, fromCatalog(parameter.busName)});
        }
        command.reply = entry.reply;
        command.positional = QList<Field>(entry.positional.begin(), entry.positional.end());
        command.positionalNeed = fromCatalog(entry.positionalNeed);
        command.usage = fromCatalog(entry.usage);
        command.summary = fromCatalog(entry.summary);
        command.run = runOf(entry.word);
        command.action = actionOf(entry.word);
        table.append(command);
    }
    return table;
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
            return fromCatalog(CommandCatalog::kAdjustSizeWord);
        case SizeMode::Keep:
            return fromCatalog(CommandCatalog::kKeepSizeWord);
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
