// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonValue>
#include <QString>

#include "app/commands/CommandCatalog.h"

// A text of the command catalog as a QString.
inline QString fromCatalog(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// The outcome of one command, the same whether it ran in this process or in the running instance.
struct CommandResult {
    using Kind = CommandCatalog::Outcome;

    Kind kind = Kind::Done;
    // The bus error's name for BadArguments and Unavailable, e.g. "app.lattica.Error.NoSuchMonitor".
    QString errorName;
    // The status message of a move, or what went wrong, in words for the user.
    QString message;
    int moved = 0;
    int attempted = 0;
    // What "displays" and "windows" list.
    QJsonValue data;

    static CommandResult error(Kind kind, const QString& name, const QString& message) {
        CommandResult result;
        result.kind = kind;
        result.errorName = name;
        result.message = message;
        return result;
    }
    // Done when every attempted window moved, nothing to do when none was attempted, else partly done.
    static CommandResult moves(int moved, int attempted, const QString& status) {
        CommandResult result;
        result.kind = CommandCatalog::outcomeOfMoves(moved, attempted);
        result.message = status;
        result.moved = moved;
        result.attempted = attempted;
        return result;
    }

    // The process exit status the command line gives for this outcome.
    int exitStatus() const { return CommandCatalog::exitStatus(kind); }
};

// The bus error names of the program's interface.
namespace CommandErrors {
inline const QString noSuchMonitor = fromCatalog(CommandCatalog::kNoSuchMonitor);
inline const QString noSuchApplication = fromCatalog(CommandCatalog::kNoSuchApplication);
inline const QString invalidArgument = fromCatalog(CommandCatalog::kInvalidArgument);
inline const QString notAvailable = fromCatalog(CommandCatalog::kNotAvailable);
}  // namespace CommandErrors
