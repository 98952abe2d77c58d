// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonValue>
#include <QString>

// The outcome of one command, the same whether it ran in this process or in the running instance.
struct CommandResult {
    enum class Kind {
        Done,          // everything asked for happened
        NothingToDo,   // nothing matched, e.g. no window on the source monitor
        PartlyDone,    // some windows could not be moved
        BadArguments,  // a target or an application that does not exist
        Unavailable,   // the session does not let the program do this
    };

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
        result.kind = attempted == 0 ? Kind::NothingToDo : moved < attempted ? Kind::PartlyDone : Kind::Done;
        result.message = status;
        result.moved = moved;
        result.attempted = attempted;
        return result;
    }

    // The process exit status the command line gives for this outcome.
    int exitStatus() const {
        switch (kind) {
            case Kind::Done:
                return 0;
            case Kind::NothingToDo:
            case Kind::PartlyDone:
                return 1;
            case Kind::BadArguments:
                return 2;
            case Kind::Unavailable:
                return 3;
        }
        return 1;
    }
};

// The bus error names of the program's interface.
namespace CommandErrors {
inline const QString noSuchMonitor = QStringLiteral("app.lattica.Error.NoSuchMonitor");
inline const QString noSuchApplication = QStringLiteral("app.lattica.Error.NoSuchApplication");
inline const QString invalidArgument = QStringLiteral("app.lattica.Error.InvalidArgument");
inline const QString notAvailable = QStringLiteral("app.lattica.Error.NotAvailable");
}  // namespace CommandErrors
