// SPDX-License-Identifier: MIT
#include "app/commands/LauncherCall.h"

namespace {

using CommandCatalog::Field;

// The arguments as the launcher understood them.
struct Reading {
    std::vector<std::string> words;
    std::optional<std::string> to;
    std::optional<std::string> from;
    bool adjust = false;
    bool keep = false;
    bool json = false;
};

// Reads `--to VALUE` or `--to=VALUE` into the slot; false for anything the program should judge itself:
// the option twice, an empty value, or one that looks like an option.
bool readValue(std::optional<std::string>& slot, const std::vector<std::string>& words, size_t& index,
               std::string::size_type equals) {
    if (slot) {
        return false;
    }
    std::string value;
    if (equals != std::string::npos) {
        value = words[index].substr(equals + 1);
    } else if (index + 1 < words.size()) {
        value = words[++index];
    } else {
        return false;
    }
    if (value.empty() || value.front() == '-') {
        return false;
    }
    slot = value;
    return true;
}

std::optional<Reading> read(const std::vector<std::string>& words) {
    Reading reading;
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word.empty()) {
            return std::nullopt;
        }
        if (word.front() != '-') {
            reading.words.push_back(word);
            continue;
        }
        // Only the long options of a plain command; --help, --version, single-dash spellings and
        // "--" go to the program.
        if (!word.starts_with("--")) {
            return std::nullopt;
        }
        const std::string::size_type equals = word.find('=');
        const std::string name = word.substr(2, equals == std::string::npos ? std::string::npos : equals - 2);
        if (name == "to" || name == "from") {
            if (!readValue(name == "to" ? reading.to : reading.from, words, i, equals)) {
                return std::nullopt;
            }
        } else if ((name == "adjust-size" || name == "keep-size") && equals == std::string::npos) {
            (name == "adjust-size" ? reading.adjust : reading.keep) = true;
        } else if (name == "json" && equals == std::string::npos) {
            reading.json = true;
        } else {
            return std::nullopt;
        }
    }
    return reading;
}

}  // namespace

std::optional<LauncherCall> LauncherCall::fromArguments(const std::vector<std::string>& words) {
    const std::optional<Reading> reading = read(words);
    if (!reading || reading->words.empty()) {
        return std::nullopt;
    }
    const CommandCatalog::Entry* command = CommandCatalog::withWord(reading->words.front());
    // Listings print what the program formats from their JSON: the program prints them.
    if (!command || command->reply == CommandCatalog::Reply::Listing) {
        return std::nullopt;
    }
    if (reading->words.size() != 1 + command->positional.size() || (reading->adjust && reading->keep)) {
        return std::nullopt;
    }
    const bool anyMoveOption = reading->to || reading->from || reading->adjust || reading->keep;
    if ((!command->moves() && anyMoveOption) || (reading->to && !command->takesOption(Field::To)) ||
        (reading->from && !command->takesOption(Field::From)) || (command->takesOption(Field::To) && !reading->to) ||
        (command->takesOption(Field::From) && !reading->from)) {
        return std::nullopt;
    }
    std::string application;
    std::string from = reading->from.value_or(std::string());
    std::string to = reading->to.value_or(std::string());
    for (size_t i = 0; i < command->positional.size(); ++i) {
        const std::string& word = reading->words[i + 1];
        switch (command->positional[i]) {
            case Field::Application:
                application = word;
                break;
            case Field::From:
                from = word;
                break;
            case Field::To:
                to = word;
                break;
            case Field::Size:
                break;
        }
    }
    LauncherCall call;
    call.command = command;
    call.json = reading->json;
    for (const CommandCatalog::Parameter& parameter : command->parameters) {
        switch (parameter.field) {
            case Field::Application:
                call.arguments.push_back(application);
                break;
            case Field::From:
                call.arguments.push_back(from);
                break;
            case Field::To:
                call.arguments.push_back(to);
                break;
            case Field::Size:
                call.arguments.emplace_back(reading->adjust ? CommandCatalog::kAdjustSizeWord
                                            : reading->keep ? CommandCatalog::kKeepSizeWord
                                                            : std::string_view());
                break;
        }
    }
    return call;
}
