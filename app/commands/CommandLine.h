// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include "app/commands/CommandResult.h"
#include "app/commands/CommandService.h"
#include "app/commands/CommandTable.h"

// The program's command line: `lattica` starts the tray program, `lattica COMMAND` does one thing and
// exits. Commands go to the running instance over the session bus, or run in this process when none runs.
namespace CommandLine {

// What the arguments ask for.
struct Request : CommandArguments {
    enum class Kind {
        StartProgram,  // no command: the tray program
        Command,       // one of the commands below
        Help,          // --help: helpText() says what to print
        Version,       // --version: the text is in `output`
        BadArguments,  // the text is in `output`
    };
    Kind kind = Kind::StartProgram;
    // The command's word, as the command table lists it.
    QString command;
    bool json = false;
    QString output;
};

Request parse(const QStringList& arguments);
// The text of --help. Needs the application object, for the program's name in the usage line.
QString helpText();

// The bus method and its arguments for a command; the method is empty for none.
std::pair<QString, QVariantList> busCall(const Request& request);

// What a finished command prints: to standard output when it did what was asked, else to standard
// error, with the exit status of the result.
struct Printed {
    QString standardOutput;
    QString standardError;
    int exitStatus = 0;
};
Printed print(const Request& request, const CommandResult& result);

}  // namespace CommandLine
