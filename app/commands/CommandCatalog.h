// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <span>
#include <string_view>

// Every command of the program, described once in plain C++: its word on the command line, its method on
// the bus, the arguments both take and what the method answers. The toolkit-free `lattica` launcher reads
// it as it is; CommandTable turns it into the program's table, with what runs each command.
namespace CommandCatalog {

inline constexpr std::string_view kServiceName = "app.lattica.Lattica";
inline constexpr std::string_view kObjectPath = "/app/lattica/Lattica";
inline constexpr std::string_view kInterfaceName = "app.lattica.Lattica1";

// One argument of a command.
enum class Field {
    Application,  // a positional word on the command line
    From,         // --from TARGET
    To,           // --to TARGET
    Size,         // --adjust-size / --keep-size; "", "adjust" or "keep" on the bus
};

// How an argument is named on the bus, and in which field it lands.
struct Parameter {
    Field field;
    std::string_view busName;
};

// What the bus method answers.
enum class Reply {
    Listing,  // one JSON string
    Moves,    // moved, attempted, status
    Nothing,  // an empty reply; the action runs after it
};

struct Entry {
    std::string_view word;
    std::string_view method;
    // The bus method's input arguments, in order; the command line takes the same fields.
    std::span<const Parameter> parameters;
    Reply reply = Reply::Nothing;
    // The fields given as words after the command rather than as options, and what the user is told
    // when they are missing.
    std::span<const Field> positional;
    std::string_view positionalNeed;
    // The usage line and the sentence that --help shows.
    std::string_view usage;
    std::string_view summary;

    constexpr bool takes(Field field) const {
        for (const Parameter& parameter : parameters) {
            if (parameter.field == field) {
                return true;
            }
        }
        return false;
    }
    // Whether the field is given as --from / --to.
    constexpr bool takesOption(Field field) const {
        for (const Field given : positional) {
            if (given == field) {
                return false;
            }
        }
        return takes(field);
    }
    constexpr bool moves() const { return reply == Reply::Moves; }
};

namespace detail {
inline constexpr Parameter kApplication{Field::Application, "application"};
inline constexpr Parameter kFrom{Field::From, "from"};
inline constexpr Parameter kTo{Field::To, "to"};
inline constexpr Parameter kSize{Field::Size, "size"};
inline constexpr std::array<Parameter, 2> kMoveFocused{kTo, kSize};
inline constexpr std::array<Parameter, 3> kMoveAll{kFrom, kTo, kSize};
inline constexpr std::array<Parameter, 3> kMoveApplication{kApplication, kTo, kSize};
// swap takes its two monitors in the From and To fields.
inline constexpr std::array<Parameter, 3> kSwap{Parameter{Field::From, "first"}, Parameter{Field::To, "second"}, kSize};
inline constexpr std::array<Field, 1> kApplicationWord{Field::Application};
inline constexpr std::array<Field, 2> kTwoMonitorWords{Field::From, Field::To};
}  // namespace detail

inline constexpr std::array<Entry, 9> kCommands{{
    {.word = "displays",
     .method = "Displays",
     .reply = Reply::Listing,
     .usage = "displays",
     .summary = "List the monitors."},
    {.word = "windows",
     .method = "Windows",
     .reply = Reply::Listing,
     .usage = "windows",
     .summary = "List the windows, front to back."},
    {.word = "move-focused",
     .method = "MoveFocused",
     .parameters = detail::kMoveFocused,
     .reply = Reply::Moves,
     .usage = "move-focused --to TARGET",
     .summary = "Move the focused window."},
    {.word = "move-all",
     .method = "MoveAll",
     .parameters = detail::kMoveAll,
     .reply = Reply::Moves,
     .usage = "move-all --from TARGET --to TARGET",
     .summary = "Move every window of one monitor."},
    {.word = "move-app",
     .method = "MoveApplication",
     .parameters = detail::kMoveApplication,
     .reply = Reply::Moves,
     .positional = detail::kApplicationWord,
     .positionalNeed = "the application's name or process id",
     .usage = "move-app APP --to TARGET",
     .summary = "Move every window of an application (name or process id)."},
    {.word = "swap",
     .method = "Swap",
     .parameters = detail::kSwap,
     .reply = Reply::Moves,
     .positional = detail::kTwoMonitorWords,
     .positionalNeed = "two monitors: swap TARGET TARGET",
     .usage = "swap TARGET TARGET",
     .summary = "Exchange the windows of two monitors."},
    {.word = "panel", .method = "OpenPanel", .usage = "panel", .summary = "Open the panel of the running Lattica."},
    {.word = "settings",
     .method = "OpenSettings",
     .usage = "settings",
     .summary = "Open the settings of the running Lattica."},
    {.word = "quit", .method = "Quit", .usage = "quit", .summary = "End the running Lattica."},
}};

// The command for a command-line word; nothing for an unknown one.
constexpr const Entry* withWord(std::string_view word) {
    for (const Entry& entry : kCommands) {
        if (entry.word == word) {
            return &entry;
        }
    }
    return nullptr;
}

// The bus word for --adjust-size and --keep-size.
inline constexpr std::string_view kAdjustSizeWord = "adjust";
inline constexpr std::string_view kKeepSizeWord = "keep";

// The outcome of a command and the exit status the command line gives for it.
enum class Outcome {
    Done,          // everything asked for happened
    NothingToDo,   // nothing matched, e.g. no window on the source monitor
    PartlyDone,    // some windows could not be moved
    BadArguments,  // a target or an application that does not exist
    Unavailable,   // the session does not let the program do this
};

constexpr int exitStatus(Outcome outcome) {
    switch (outcome) {
        case Outcome::Done:
            return 0;
        case Outcome::NothingToDo:
        case Outcome::PartlyDone:
            return 1;
        case Outcome::BadArguments:
            return 2;
        case Outcome::Unavailable:
            return 3;
    }
    return 1;
}

// Done when every attempted window moved, nothing to do when none was attempted, else partly done.
constexpr Outcome outcomeOfMoves(int moved, int attempted) {
    return attempted == 0 ? Outcome::NothingToDo : moved < attempted ? Outcome::PartlyDone : Outcome::Done;
}

// The bus errors of the program's interface; every name starts with kErrorPrefix.
inline constexpr std::string_view kErrorPrefix = "app.lattica.Error.";
inline constexpr std::string_view kNoSuchMonitor = "app.lattica.Error.NoSuchMonitor";
inline constexpr std::string_view kNoSuchApplication = "app.lattica.Error.NoSuchApplication";
inline constexpr std::string_view kInvalidArgument = "app.lattica.Error.InvalidArgument";
inline constexpr std::string_view kNotAvailable = "app.lattica.Error.NotAvailable";

// What an error of the interface says about the command.
constexpr Outcome outcomeOfError(std::string_view name) {
    if (name == kNotAvailable) {
        return Outcome::Unavailable;
    }
    if (name == kNoSuchMonitor || name == kNoSuchApplication || name == kInvalidArgument) {
        return Outcome::BadArguments;
    }
    return Outcome::PartlyDone;
}

}  // namespace CommandCatalog
