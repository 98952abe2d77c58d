// SPDX-License-Identifier: MIT
#include "Command.h"

#include <cstdlib>

std::optional<Command> Command::parse(const std::string& line) {
    Command command;
    size_t i = 0;
    auto skipBlanks = [&] {
        while (i < line.size() && (line[i] == ' ' || line[i] == '\t' || line[i] == '\r')) {
            ++i;
        }
    };
    skipBlanks();
    while (i < line.size() && line[i] != ' ' && line[i] != '\t' && line[i] != '\r') {
        command.verb += line[i++];
    }
    if (command.verb.empty()) {
        return std::nullopt;
    }
    while (true) {
        skipBlanks();
        if (i >= line.size()) {
            break;
        }
        std::string key;
        while (i < line.size() && line[i] != '=' && line[i] != ' ') {
            key += line[i++];
        }
        if (i >= line.size() || line[i] != '=') {
            return std::nullopt;  // a word without a value
        }
        ++i;
        std::string value;
        if (i < line.size() && line[i] == '"') {
            const size_t end = line.find('"', i + 1);
            if (end == std::string::npos) {
                return std::nullopt;
            }
            value = line.substr(i + 1, end - i - 1);
            i = end + 1;
        } else {
            while (i < line.size() && line[i] != ' ' && line[i] != '\t' && line[i] != '\r') {
                value += line[i++];
            }
        }
        command.options[key] = value;
    }
    return command;
}

std::string Command::value(const std::string& key, const std::string& fallback) const {
    const auto found = options.find(key);
    return found == options.end() ? fallback : found->second;
}

int Command::number(const std::string& key, int fallback) const {
    const auto found = options.find(key);
    return found == options.end() ? fallback : std::atoi(found->second.c_str());
}

double Command::real(const std::string& key, double fallback) const {
    const auto found = options.find(key);
    return found == options.end() ? fallback : std::atof(found->second.c_str());
}
