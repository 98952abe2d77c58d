// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <functional>

#include "app/commands/CommandCatalog.h"
#include "app/commands/CommandResult.h"
#include "app/commands/CommandService.h"

// What a command works on, filled from the command line or from a bus call's arguments.
struct CommandArguments {
    QString application;
    QString from;
    QString to;
    SizeMode size = SizeMode::Preference;
};

// What only the running instance can do: it has the panel and the settings window.
struct InstanceActions {
    std::function<void()> openPanel;
    std::function<void()> openSettings;
    std::function<void()> quit;
};

// Every command of the program: CommandCatalog's description in the toolkit's types, with what runs it.
// The command line's parser and help, the bus client, the bus interface and its introspection are all
// read from this table.
namespace CommandTable {

using Field = CommandCatalog::Field;
using Reply = CommandCatalog::Reply;

// How an argument is named on the bus, and in which field it lands.
struct Parameter {
    Field field;
    QString busName;
};

struct Command {
    QString word;
    QString method;
    // The bus method's input arguments, in order; the command line takes the same fields.
    QList<Parameter> parameters;
    Reply reply = Reply::Nothing;
    // The fields given as words after the command rather than as options, and what the user is told
    // when they are missing (in English: CommandTable::translated gives the user's language).
    QList<Field> positional;
    QString positionalNeed;
    // The usage line and the sentence that --help shows (the sentence in English, like positionalNeed).
    QString usage;
    QString summary;
    // Runs the command in whichever process has the platform; empty for instance-only commands.
    std::function<CommandResult(const CommandService&, const CommandArguments&)> run;
    // What the running instance does for an instance-only command.
    std::function<void()> InstanceActions::*action = nullptr;

    bool takes(Field field) const;
    // Whether the field is given as --from / --to.
    bool takesOption(Field field) const { return takes(field) && !positional.contains(field); }
    bool moves() const { return reply == Reply::Moves; }
};

const QList<Command>& commands();
// A command's sentence (summary, positionalNeed) in the user's language.
QString translated(const QString& sentence);
// The command for a command-line word or a bus method; nothing for an unknown one.
const Command* withWord(const QString& word);
const Command* withMethod(const QString& method);

// The bus word for a size mode: "", "adjust" or "keep".
QString sizeWord(SizeMode size);
// The bus call's arguments for the command, in the method's order.
QVariantList busArguments(const Command& command, const CommandArguments& arguments);
// The introspection of the bus interface (the <interface> element), as dbus/ keeps it.
QString interfaceXml(const QString& interfaceName);

}  // namespace CommandTable
