// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <optional>
#include <string>

// One line of the test client's input: a verb followed by key=value words. Values may be quoted
// with double quotes to hold blanks.
struct Command {
    std::string verb;
    std::map<std::string, std::string> options;

    static std::optional<Command> parse(const std::string& line);

    std::string value(const std::string& key, const std::string& fallback = {}) const;
    int number(const std::string& key, int fallback) const;
    double real(const std::string& key, double fallback) const;
    bool has(const std::string& key) const { return options.count(key) != 0; }
};
