// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonObject>

#include "app/commands/CommandService.h"
#include "app/model/Preferences.h"
#include "platform/fake/FakePlatform.h"

namespace {

// Three monitors side by side (indexes in platform order), an editor with two windows on the first.
class CommandServiceTest : public ::testing::Test {
protected:
    void SetUp() override {
        platform.monitors.setMonitors({
            {.id = 1,
             .name = QStringLiteral("Left"),
             .bounds = QRectF(0, 0, 1920, 1080),
             .primary = true,
             .serial = 11},
            {.id = 2, .name = QStringLiteral("Middle"), .bounds = QRectF(1920, 0, 2560, 1440), .serial = 12},
            {.id = 3, .name = QStringLiteral("Right"), .bounds = QRectF(4480, 0, 1280, 1024), .serial = 13},
        });
        addWindow(100, QStringLiteral("Editor"), 11, QRectF(480, 270, 960, 540));
        addWindow(100, QStringLiteral("Editor"), 12, QRectF(100, 100, 400, 300));
    }
    void addWindow(pid_t pid, const QString& name, qint64 number, const QRectF& frame) {
        const QList<RunningApplication>& running = platform.runningApplications.applications;
        if (std::none_of(running.cbegin(), running.cend(), [pid](const auto& a) { return a.pid == pid; })) {
            platform.runningApplications.addApplication(pid, name);
        }
        std::optional<QList<WindowEntry>> list = platform.windowList.scriptedList();
        list->append(WindowEntry{.id = number, .pid = pid, .ownerName = name, .frame = frame, .title = name});
        platform.windowList.setWindowList(list);
        platform.windowControl.addWindow(pid, {.id = number, .frame = frame});
    }
    void focus(qint64 number) { platform.windowControl.setFocusedWindow(Reading<WindowId>{Result::Ok, number}); }

    FakePlatform platform;
    Preferences preferences{platform.settings};
    CommandService commands{preferences};
};

TEST_F(CommandServiceTest, DisplaysListIndexIdNameBoundsAndPrimary) {
    const CommandResult result = commands.displays();
    ASSERT_EQ(result.kind, CommandResult::Kind::Done);
    const QJsonArray displays = result.data.toArray();
    ASSERT_EQ(displays.size(), 3);
    const QJsonObject first = displays[0].toObject();
    EXPECT_EQ(first[QStringLiteral("index")].toInt(), 1);
    EXPECT_EQ(first[QStringLiteral("name")].toString(), QStringLiteral("Left"));
    EXPECT_TRUE(first[QStringLiteral("primary")].toBool());
    EXPECT_FALSE(first[QStringLiteral("id")].toString().isEmpty());
    EXPECT_EQ(displays[1].toObject()[QStringLiteral("bounds")].toObject()[QStringLiteral("width")].toDouble(), 2560);
}

TEST_F(CommandServiceTest, WindowsListTheUserWindowsWithTheirMonitor) {
    addWindow(200, QStringLiteral("Tiny"), 21, QRectF(2000, 10, 50, 50));  // below user-window size
    const QJsonArray windows = commands.windows().data.toArray();
    ASSERT_EQ(windows.size(), 2);
    const QJsonObject first = windows[0].toObject();
    EXPECT_EQ(first[QStringLiteral("id")].toInteger(), 11);
    EXPECT_EQ(first[QStringLiteral("pid")].toInteger(), 100);
    EXPECT_EQ(first[QStringLiteral("app")].toString(), QStringLiteral("Editor"));
    EXPECT_EQ(first[QStringLiteral("monitor")].toInt(), 1);
}

TEST_F(CommandServiceTest, MoveFocusedToNextWrapsFromTheLastMonitor) {
    addWindow(300, QStringLiteral("Viewer"), 31, QRectF(4600, 100, 400, 300));
    focus(31);
    const CommandResult result = commands.moveFocused(QStringLiteral("next"), SizeMode::Keep);
    EXPECT_EQ(result.kind, CommandResult::Kind::Done) << result.message.toStdString();
    EXPECT_EQ(result.message, QStringLiteral("Moved focused window to Left."));
    EXPECT_TRUE(QRectF(0, 0, 1920, 1080).contains(platform.windowControl.currentFrame(31)));
}

TEST_F(CommandServiceTest, MoveFocusedWithoutFocusNamesTheProblem) {
    const CommandResult relative = commands.moveFocused(QStringLiteral("next"), SizeMode::Keep);
    EXPECT_EQ(relative.kind, CommandResult::Kind::BadArguments);
    EXPECT_EQ(relative.errorName, CommandErrors::noSuchMonitor);
    const CommandResult absolute = commands.moveFocused(QStringLiteral("2"), SizeMode::Keep);
    EXPECT_EQ(absolute.kind, CommandResult::Kind::NothingToDo);
    EXPECT_EQ(absolute.message, QStringLiteral("No focused window was found to move."));
}

TEST_F(CommandServiceTest, MoveAllUsesThePanelsStatusMessage) {
    const CommandResult result = commands.moveAll(QStringLiteral("1"), QStringLiteral("Middle"), SizeMode::Keep);
    EXPECT_EQ(result.kind, CommandResult::Kind::Done);
    EXPECT_EQ(result.message, QStringLiteral("Moved 2 of 2 windows."));
    EXPECT_TRUE(QRectF(1920, 0, 2560, 1440).contains(platform.windowControl.currentFrame(11)));
    EXPECT_TRUE(QRectF(1920, 0, 2560, 1440).contains(platform.windowControl.currentFrame(12)));
}

TEST_F(CommandServiceTest, MoveAllFromAnEmptyMonitorHasNothingToDo) {
    const CommandResult result = commands.moveAll(QStringLiteral("3"), QStringLiteral("1"), SizeMode::Keep);
    EXPECT_EQ(result.kind, CommandResult::Kind::NothingToDo);
    EXPECT_EQ(result.message, QStringLiteral("Moved 0 of 0 windows."));
}

TEST_F(CommandServiceTest, SizeModeOverridesThePreferenceForOneCommand) {
    preferences.setAdjustWindowSize(false);
    commands.moveAll(QStringLiteral("1"), QStringLiteral("2"), SizeMode::Adjust);
    EXPECT_EQ(platform.windowControl.currentFrame(11).size(), QSizeF(1280, 720)) << "scaled to the larger monitor";
    EXPECT_FALSE(preferences.adjustWindowSize()) << "the preference itself is left as it was";
}

TEST_F(CommandServiceTest, MoveApplicationGathersItsWindowsFromEveryMonitor) {
    addWindow(100, QStringLiteral("Editor"), 13, QRectF(4600, 100, 400, 300));
    const CommandResult result =
        commands.moveApplication(QStringLiteral("editor"), QStringLiteral("2"), SizeMode::Keep);
    EXPECT_EQ(result.message, QStringLiteral("Moved 3 of 3 Editor windows."));
    for (qint64 window : {11, 12, 13}) {
        EXPECT_TRUE(QRectF(1920, 0, 2560, 1440).contains(platform.windowControl.currentFrame(window))) << window;
    }
}

TEST_F(CommandServiceTest, MoveApplicationReadsTheWindowListOnceForAllMonitors) {
    addWindow(100, QStringLiteral("Editor"), 13, QRectF(4600, 100, 400, 300));
    const int queries = platform.windowList.queryCount();
    commands.moveApplication(QStringLiteral("Editor"), QStringLiteral("2"), SizeMode::Keep);
    EXPECT_EQ(platform.windowList.queryCount(), queries + 1);
}

TEST_F(CommandServiceTest, SwapExchangesTheWindowsOfTwoMonitorsEachInItsRelativePlace) {
    addWindow(300, QStringLiteral("Viewer"), 31, QRectF(1920 + 640, 360, 1280, 720));  // centred on Middle
    const CommandResult result = commands.swap(QStringLiteral("1"), QStringLiteral("Middle"), SizeMode::Keep);
    EXPECT_EQ(result.kind, CommandResult::Kind::Done) << result.message.toStdString();
    EXPECT_EQ(result.message, QStringLiteral("Moved 3 of 3 windows."));
    EXPECT_EQ(platform.windowControl.currentFrame(31), QRectF(320, 180, 1280, 720));
    // Editor's two windows were on Left: each keeps its relative centre on Middle.
    EXPECT_EQ(platform.windowControl.currentFrame(11), QRectF(1920 + 800, 450, 960, 540));
    for (qint64 window : {11, 12, 31}) {
        EXPECT_EQ(platform.windowControl.requests(window, FakeWindowControl::Change::Move).size(), 1) << window;
    }
}

TEST_F(CommandServiceTest, SwapWithItselfIsABadArgument) {
    const CommandResult result = commands.swap(QStringLiteral("1"), QStringLiteral("left"), SizeMode::Keep);
    EXPECT_EQ(result.kind, CommandResult::Kind::BadArguments);
    const CommandResult same = commands.swap(QStringLiteral("2"), QStringLiteral("Middle"), SizeMode::Keep);
    EXPECT_EQ(same.errorName, CommandErrors::invalidArgument);
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
}

TEST_F(CommandServiceTest, UnknownApplicationAndMonitorAreBadArguments) {
    EXPECT_EQ(commands.moveApplication(QStringLiteral("Nothing"), QStringLiteral("2"), SizeMode::Keep).errorName,
              CommandErrors::noSuchApplication);
    EXPECT_EQ(commands.moveAll(QStringLiteral("1"), QStringLiteral("9"), SizeMode::Keep).errorName,
              CommandErrors::noSuchMonitor);
    EXPECT_TRUE(platform.windowControl.requests().isEmpty()) << "nothing was moved";
}

TEST_F(CommandServiceTest, WithoutWindowControlTheSessionsReasonIsGiven) {
    platform.sessionCheck.windowControlAvailable = false;
    const CommandResult result = commands.moveAll(QStringLiteral("1"), QStringLiteral("2"), SizeMode::Keep);
    EXPECT_EQ(result.kind, CommandResult::Kind::Unavailable);
    EXPECT_EQ(result.exitStatus(), 3);
    EXPECT_EQ(result.message, platform.sessionCheck.windowControlReason);
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
}

}  // namespace
