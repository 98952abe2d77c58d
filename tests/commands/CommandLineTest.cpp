// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "app/commands/CommandLine.h"

namespace {

using Kind = CommandLine::Request::Kind;

CommandLine::Request parsed(std::initializer_list<const char*> words) {
    QStringList arguments{QStringLiteral("lattica")};
    for (const char* word : words) {
        arguments.append(QString::fromUtf8(word));
    }
    return CommandLine::parse(arguments);
}

TEST(CommandLine, NoArgumentsStartsTheProgram) {
    EXPECT_EQ(parsed({}).kind, Kind::StartProgram);
}

TEST(CommandLine, HelpAndVersionNeedNoProgram) {
    EXPECT_EQ(parsed({"--help"}).kind, Kind::Help);
    EXPECT_EQ(parsed({"-h"}).kind, Kind::Help);
    const CommandLine::Request version = parsed({"--version"});
    EXPECT_EQ(version.kind, Kind::Version);
    EXPECT_TRUE(version.output.startsWith(QStringLiteral("Lattica "))) << version.output.toStdString();
    EXPECT_TRUE(CommandLine::helpText().contains(QStringLiteral("move-focused --to TARGET")));
}

TEST(CommandLine, MovesTakeTheirTargetsAndSizeMode) {
    const CommandLine::Request focused = parsed({"move-focused", "--to", "next", "--adjust-size", "--json"});
    ASSERT_EQ(focused.kind, Kind::Command);
    EXPECT_EQ(focused.command, QStringLiteral("move-focused"));
    EXPECT_EQ(focused.to, QStringLiteral("next"));
    EXPECT_EQ(focused.size, SizeMode::Adjust);
    EXPECT_TRUE(focused.json);
    EXPECT_EQ(CommandLine::busCall(focused),
              (std::pair<QString, QVariantList>{QStringLiteral("MoveFocused"),
                                                {QStringLiteral("next"), QStringLiteral("adjust")}}));

    const CommandLine::Request all = parsed({"move-all", "--from", "1", "--to", "HDMI-1", "--keep-size"});
    ASSERT_EQ(all.kind, Kind::Command);
    EXPECT_EQ(CommandLine::busCall(all),
              (std::pair<QString, QVariantList>{
                  QStringLiteral("MoveAll"), {QStringLiteral("1"), QStringLiteral("HDMI-1"), QStringLiteral("keep")}}));

    const CommandLine::Request app = parsed({"move-app", "Firefox", "--to", "2"});
    ASSERT_EQ(app.kind, Kind::Command);
    EXPECT_EQ(CommandLine::busCall(app),
              (std::pair<QString, QVariantList>{QStringLiteral("MoveApplication"),
                                                {QStringLiteral("Firefox"), QStringLiteral("2"), QString()}}));
}

TEST(CommandLine, SwapTakesTwoMonitorsAsWords) {
    const CommandLine::Request swap = parsed({"swap", "1", "HDMI-1", "--adjust-size"});
    ASSERT_EQ(swap.kind, Kind::Command) << swap.output.toStdString();
    EXPECT_EQ(CommandLine::busCall(swap),
              (std::pair<QString, QVariantList>{
                  QStringLiteral("Swap"), {QStringLiteral("1"), QStringLiteral("HDMI-1"), QStringLiteral("adjust")}}));
    EXPECT_TRUE(parsed({"swap", "1"}).output.contains(QStringLiteral("swap needs two monitors")));
    EXPECT_TRUE(parsed({"swap", "1", "2", "3"}).output.contains(QStringLiteral("swap needs two monitors")));
    EXPECT_TRUE(parsed({"swap", "1", "2", "--to", "3"}).output.contains(QStringLiteral("'swap' takes no --to")));
    EXPECT_TRUE(CommandLine::helpText().contains(QStringLiteral("swap TARGET TARGET")));
}

TEST(CommandLine, BadArgumentsSayWhatIsWrong) {
    const auto message = [](std::initializer_list<const char*> words) {
        const CommandLine::Request request = parsed(words);
        EXPECT_EQ(request.kind, Kind::BadArguments);
        return request.output;
    };
    EXPECT_TRUE(message({"fly"}).contains(QStringLiteral("'fly' is not a command")));
    EXPECT_TRUE(message({"move-focused"}).contains(QStringLiteral("move-focused needs --to TARGET")));
    EXPECT_TRUE(message({"move-all", "--to", "1"}).contains(QStringLiteral("move-all needs --from TARGET")));
    EXPECT_TRUE(message({"move-app", "--to", "1"}).contains(QStringLiteral("move-app needs the application")));
    EXPECT_TRUE(
        message({"move-focused", "--to", "1", "--adjust-size", "--keep-size"}).contains(QStringLiteral("cannot both")));
    EXPECT_TRUE(message({"displays", "--to", "1"}).contains(QStringLiteral("'displays' does not move windows")));
    EXPECT_TRUE(message({"--json"}).contains(QStringLiteral("options need a command")));
    EXPECT_TRUE(message({"--bogus"}).contains(QStringLiteral("Unknown option")));
}

TEST(CommandLine, ExitStatusFollowsTheOutcome) {
    const CommandLine::Request move = parsed({"move-focused", "--to", "1"});
    const auto status = [&](const CommandResult& result) { return CommandLine::print(move, result).exitStatus; };
    EXPECT_EQ(status(CommandResult::moves(1, 1, QStringLiteral("Moved focused window to A."))), 0);
    EXPECT_EQ(status(CommandResult::moves(0, 0, QStringLiteral("No focused window was found to move."))), 1);
    EXPECT_EQ(status(CommandResult::moves(2, 3, QStringLiteral("Moved 2 of 3 windows."))), 1);
    EXPECT_EQ(status(CommandResult::error(CommandResult::Kind::BadArguments, CommandErrors::noSuchMonitor,
                                          QStringLiteral("x"))),
              2);
    EXPECT_EQ(status(CommandResult::error(CommandResult::Kind::Unavailable, CommandErrors::notAvailable,
                                          QStringLiteral("x"))),
              3);
}

TEST(CommandLine, StatusGoesToOutputWhenDoneAndToErrorOtherwise) {
    const CommandLine::Request move = parsed({"move-all", "--from", "1", "--to", "2"});
    const CommandLine::Printed done =
        CommandLine::print(move, CommandResult::moves(3, 3, QStringLiteral("Moved 3 of 3 windows.")));
    EXPECT_EQ(done.standardOutput, QStringLiteral("Moved 3 of 3 windows.\n"));
    EXPECT_TRUE(done.standardError.isEmpty());
    const CommandLine::Printed partly =
        CommandLine::print(move, CommandResult::moves(2, 3, QStringLiteral("Moved 2 of 3 windows.")));
    EXPECT_TRUE(partly.standardOutput.isEmpty());
    EXPECT_EQ(partly.standardError, QStringLiteral("Moved 2 of 3 windows.\n"));
    const CommandLine::Printed refused =
        CommandLine::print(move, CommandResult::error(CommandResult::Kind::BadArguments, CommandErrors::noSuchMonitor,
                                                      QStringLiteral("There is no monitor 9.")));
    EXPECT_EQ(refused.standardError, QStringLiteral("lattica: There is no monitor 9.\n"));
}

TEST(CommandLine, JsonPrintsTheListsAndTheMoveCounts) {
    CommandResult listing;
    listing.data = QJsonArray{QJsonObject{{QStringLiteral("index"), 1}, {QStringLiteral("name"), QStringLiteral("A")}}};
    const CommandLine::Printed displays = CommandLine::print(parsed({"displays", "--json"}), listing);
    const QJsonDocument list = QJsonDocument::fromJson(displays.standardOutput.toUtf8());
    ASSERT_TRUE(list.isArray());
    EXPECT_EQ(list.array().first().toObject()[QStringLiteral("name")].toString(), QStringLiteral("A"));

    const CommandLine::Printed moved = CommandLine::print(parsed({"move-focused", "--to", "1", "--json"}),
                                                          CommandResult::moves(1, 1, QStringLiteral("Moved.")));
    const QJsonObject object = QJsonDocument::fromJson(moved.standardOutput.toUtf8()).object();
    EXPECT_EQ(object[QStringLiteral("moved")].toInt(), 1);
    EXPECT_EQ(object[QStringLiteral("attempted")].toInt(), 1);
    EXPECT_EQ(object[QStringLiteral("status")].toString(), QStringLiteral("Moved."));
}

TEST(CommandLine, PlainListsHaveOneLinePerItem) {
    CommandResult listing;
    listing.data = QJsonArray{QJsonObject{{QStringLiteral("index"), 1},
                                          {QStringLiteral("id"), QStringLiteral("v1-m2-s3")},
                                          {QStringLiteral("name"), QStringLiteral("Left 100%")},
                                          {QStringLiteral("bounds"), QJsonObject{{QStringLiteral("x"), 0},
                                                                                 {QStringLiteral("y"), 0},
                                                                                 {QStringLiteral("width"), 1920},
                                                                                 {QStringLiteral("height"), 1080}}},
                                          {QStringLiteral("primary"), true}}};
    EXPECT_EQ(CommandLine::print(parsed({"displays"}), listing).standardOutput,
              QStringLiteral("1  Left 100%  1920x1080+0+0  primary  v1-m2-s3\n"));
}

}  // namespace
