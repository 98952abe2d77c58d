// SPDX-License-Identifier: MIT
// The launcher reads the command line without the toolkit. Whatever it takes on itself must be read exactly
// as the program's own parser reads it; everything else is the program's to judge.
#include <gtest/gtest.h>

#include <tuple>

#include "app/commands/CommandLine.h"
#include "app/commands/LauncherCall.h"

namespace {

using Words = std::vector<std::string>;

// The program's reading: the bus method and its arguments, or nothing when it is not a command.
// The bus method, its arguments and whether the answer is printed as JSON.
using Call = std::tuple<std::string, std::vector<std::string>, bool>;

std::optional<Call> programCall(const Words& words) {
    QStringList arguments{QStringLiteral("lattica")};
    for (const std::string& word : words) {
        arguments.append(QString::fromStdString(word));
    }
    const CommandLine::Request request = CommandLine::parse(arguments);
    if (request.kind != CommandLine::Request::Kind::Command) {
        return std::nullopt;
    }
    const auto [method, values] = CommandLine::busCall(request);
    std::vector<std::string> strings;
    for (const QVariant& value : values) {
        strings.push_back(value.toString().toStdString());
    }
    return Call{method.toStdString(), strings, request.json};
}

std::optional<Call> launcherCall(const Words& words) {
    const std::optional<LauncherCall> call = LauncherCall::fromArguments(words);
    if (!call) {
        return std::nullopt;
    }
    return Call{std::string(call->command->method), call->arguments, call->json};
}

std::string shown(const Words& words) {
    std::string text;
    for (const std::string& word : words) {
        text += "[" + word + "] ";
    }
    return text;
}

// Command lines the launcher passes to the running instance itself.
const std::vector<Words> kServed = {
    {"move-focused", "--to", "next"},
    {"move-focused", "--to=2"},
    {"move-focused", "--to", "HDMI-1", "--keep-size"},
    {"move-focused", "--adjust-size", "--to", "left"},
    {"--to", "previous", "move-focused"},
    {"move-all", "--from", "1", "--to", "3"},
    {"move-all", "--to", "right", "--from=left", "--adjust-size"},
    {"move-app", "Firefox", "--to", "2"},
    {"move-app", "--to", "2", "4242"},
    {"swap", "1", "2"},
    {"swap", "left", "right", "--keep-size"},
    {"move-focused", "--to", "next", "--json"},
    {"--json", "quit"},
    {"panel"},
    {"settings"},
    {"quit"},
};

// Command lines the program reads: no command, help, version, listings, mistakes, unusual spellings.
const std::vector<Words> kLeftToTheProgram = {
    {},
    {"--help"},
    {"-h"},
    {"--version"},
    {"displays"},
    {"windows", "--json"},
    {"move-focused", "--to", "next", "--json=yes"},
    {"move-focused"},
    {"move-focused", "--to"},
    {"move-focused", "--to="},
    {"move-focused", "-to", "next"},
    {"move-focused", "--to", "next", "--to", "previous"},
    {"move-focused", "--to", "next", "--from", "1"},
    {"move-focused", "--to", "next", "extra"},
    {"move-focused", "--to", "next", "--adjust-size", "--keep-size"},
    {"move-focused", "--to", "next", "--adjust-size=yes"},
    {"move-focused", "--to", "-1"},
    {"move-focused", "--", "--to", "next"},
    {"move-all", "--to", "2"},
    {"move-app", "--to", "2"},
    {"swap", "1"},
    {"swap", "1", "2", "--to", "3"},
    {"panel", "--to", "2"},
    {"panel", "--keep-size"},
    {"quit", "now"},
    {"nonsense"},
    {""},
    {"--unknown"},
};

TEST(LauncherCall, WhatTheLauncherServesIsReadExactlyAsTheProgramReadsIt) {
    for (const Words& words : kServed) {
        const auto launcher = launcherCall(words);
        ASSERT_TRUE(launcher.has_value()) << shown(words);
        const auto program = programCall(words);
        ASSERT_TRUE(program.has_value()) << shown(words);
        EXPECT_EQ(*launcher, *program) << shown(words);
    }
}

TEST(LauncherCall, EverythingElseIsLeftToTheProgram) {
    for (const Words& words : kLeftToTheProgram) {
        EXPECT_FALSE(launcherCall(words).has_value()) << shown(words);
    }
}

// Every combination of a command word, its options and a few words in any of these positions: what the
// launcher takes, the program takes the same way.
TEST(LauncherCall, NoCombinationIsReadDifferently) {
    const Words pieces = {"move-focused", "move-all", "move-app",    "swap",   "panel",
                          "--to",         "--from",   "next",        "2",      "--adjust-size",
                          "--keep-size",  "--to=1",   "--from=left", "Editor", "--json"};
    int served = 0;
    int compared = 0;
    std::vector<Words> lines = {{}};
    for (int length = 1; length <= 4; ++length) {
        std::vector<Words> longer;
        for (const Words& line : lines) {
            for (const std::string& piece : pieces) {
                Words next = line;
                next.push_back(piece);
                longer.push_back(next);
            }
        }
        lines = longer;
        for (const Words& words : lines) {
            const auto launcher = launcherCall(words);
            ++compared;
            if (!launcher) {
                continue;
            }
            ++served;
            const auto program = programCall(words);
            ASSERT_TRUE(program.has_value()) << shown(words);
            EXPECT_EQ(*launcher, *program) << shown(words);
        }
    }
    EXPECT_EQ(compared, 15 + 15 * 15 + 15 * 15 * 15 + 15 * 15 * 15 * 15);
    // The launcher does take a fair share of them itself.
    EXPECT_GT(served, 100);
}

}  // namespace
