// SPDX-License-Identifier: MIT
#include "app/mover/WindowMoveLog.h"
#include "tests/mover/MoverFixture.h"

namespace {

using WindowControlLayer = MoverTest;
using Change = FakeWindowControl::Change;

constexpr pid_t kApp = 100;

TEST(ErrorNames, EveryResultHasTheNameTheLogsUse) {
    EXPECT_EQ(WindowMoveLog::errorName(Result::Ok), QStringLiteral("success"));
    EXPECT_EQ(WindowMoveLog::errorName(Result::Gone), QStringLiteral("invalidUIElement"));
    EXPECT_EQ(WindowMoveLog::errorName(Result::Unsupported), QStringLiteral("attributeUnsupported"));
    EXPECT_EQ(WindowMoveLog::errorName(Result::NoValue), QStringLiteral("noValue"));
    EXPECT_EQ(WindowMoveLog::errorName(Result::CannotComplete), QStringLiteral("cannotComplete"));
    EXPECT_EQ(WindowMoveLog::errorName(Result::NotPermitted), QStringLiteral("apiDisabled"));
    EXPECT_EQ(WindowMoveLog::errorName(Result::Failure), QStringLiteral("failure"));
}

TEST_F(WindowControlLayer, WindowListReturnsWindowsWithOk) {
    platform.windowControl.setWindows(kApp, WindowScope::Visible, {1, 2});
    const WindowAttributeResult result = WindowMover::windows(kApp, WindowScope::Visible);
    EXPECT_EQ(result.result, Result::Ok);
    EXPECT_EQ(result.windows, (QList<WindowId>{1, 2}));
}

TEST_F(WindowControlLayer, FailedWindowListGivesEmptyListWithTheResult) {
    platform.windowControl.setWindowsError(kApp, WindowScope::Visible, Result::CannotComplete);
    const WindowAttributeResult result = WindowMover::windows(kApp, WindowScope::Visible);
    EXPECT_EQ(result.result, Result::CannotComplete);
    EXPECT_TRUE(result.windows.isEmpty());
}

TEST_F(WindowControlLayer, SameWindowsInBothListsAreReturnedOnceInPrimaryOrder) {
    platform.windowControl.setWindows(kApp, WindowScope::Visible, {1, 2, 3});
    platform.windowControl.setWindows(kApp, WindowScope::IncludingMinimised, {3, 1, 2});
    EXPECT_EQ(WindowMover::movableWindows(kApp, QStringLiteral("App")).windows, (QList<WindowId>{1, 2, 3}));
}

TEST_F(WindowControlLayer, WindowsOnlyInFullListFollowThePrimaryOnes) {
    platform.windowControl.setWindows(kApp, WindowScope::Visible, {2});
    platform.windowControl.setWindows(kApp, WindowScope::IncludingMinimised, {5, 2, 4});
    EXPECT_EQ(WindowMover::movableWindows(kApp, QStringLiteral("App")).windows, (QList<WindowId>{2, 5, 4}));
}

TEST_F(WindowControlLayer, AppendUniqueKeepsFirstAppearance) {
    QList<WindowId> list{1, 2};
    WindowMover::appendUnique(1, list);
    WindowMover::appendUnique(3, list);
    EXPECT_EQ(list, (QList<WindowId>{1, 2, 3}));
}

TEST_F(WindowControlLayer, RoleFilterKeepsMovableRolesAndUnreadableRoles) {
    platform.windowControl.addWindow(kApp, {.id = 1, .role = WindowRole::Window});
    platform.windowControl.addWindow(kApp, {.id = 2, .role = WindowRole::Dialog});
    platform.windowControl.addWindow(kApp, {.id = 3, .role = WindowRole::Other});
    platform.windowControl.addWindow(kApp, {.id = 5});
    platform.windowControl.setRoleError(5, Result::CannotComplete);
    EXPECT_EQ(WindowMover::movableWindows(kApp, QStringLiteral("App")).windows, (QList<WindowId>{1, 2, 5}));
}

TEST_F(WindowControlLayer, RolesOfAllWindowsAreReadInOneBatch) {
    for (WindowId window : {1, 2, 3}) {
        platform.windowControl.addWindow(kApp, {.id = window});
    }
    const int batches = platform.windowControl.batchCount();
    const int reads = platform.windowControl.readCount();
    WindowMover::movableWindows(kApp, QStringLiteral("App"));
    EXPECT_EQ(platform.windowControl.batchCount(), batches + 1);
    EXPECT_EQ(platform.windowControl.readCount(), reads + 2);  // the two lists
}

TEST_F(WindowControlLayer, OnlyWindowWithUnmovableRoleIsStillReturnedByFallback) {
    platform.windowControl.addWindow(kApp, {.id = 9, .role = WindowRole::Other});
    EXPECT_EQ(WindowMover::movableWindows(kApp, QStringLiteral("Odd [pid:100]")).windows, (QList<WindowId>{9}));
    EXPECT_TRUE(trace.contains(
        QStringLiteral("Odd [pid:100]: no movable windows by role filter, (primary=1, all=1, merged=1)")));
}

TEST_F(WindowControlLayer, BothListReadsFailingGiveNothingNotAnEmptyList) {
    platform.windowControl.setWindowsError(kApp, WindowScope::Visible, Result::NotPermitted);
    platform.windowControl.setWindowsError(kApp, WindowScope::IncludingMinimised, Result::CannotComplete);
    const MovableWindows movable = WindowMover::movableWindows(kApp, QStringLiteral("App"));
    EXPECT_FALSE(movable.windows.has_value());
    EXPECT_EQ(movable.visibleList, Result::NotPermitted);
    EXPECT_EQ(movable.includingMinimisedList, Result::CannotComplete);
}

TEST_F(WindowControlLayer, OneFailedListReadStillGivesTheOtherListsWindows) {
    platform.windowControl.addWindow(kApp, {.id = 1});
    platform.windowControl.setWindowsError(kApp, WindowScope::Visible, Result::Gone);
    const MovableWindows movable = WindowMover::movableWindows(kApp, QStringLiteral("App"));
    EXPECT_EQ(movable.windows, (QList<WindowId>{1}));
    EXPECT_EQ(movable.visibleList, Result::Gone);
    EXPECT_EQ(movable.includingMinimisedList, Result::Ok);
}

TEST_F(WindowControlLayer, FrameReadsOnlyWhenTheWindowAnswers) {
    platform.windowControl.setFrame(1, QRectF(10, 20, 300, 200));
    EXPECT_EQ(WindowMover::frame(1), QRectF(10, 20, 300, 200));
    platform.windowControl.setFrameError(1, Result::Gone);
    EXPECT_FALSE(WindowMover::frame(1).has_value());
    EXPECT_FALSE(WindowMover::frame(2).has_value());
}

TEST_F(WindowControlLayer, UsableFrameNeedsBothSidesLongerThanOnePoint) {
    EXPECT_EQ(WindowMover::usableFrame(QRectF(0, 0, 1.5, 2)), QRectF(0, 0, 1.5, 2));
    EXPECT_FALSE(WindowMover::usableFrame(QRectF(0, 0, 1, 400)).has_value());
    EXPECT_FALSE(WindowMover::usableFrame(QRectF(0, 0, 400, 1)).has_value());
    EXPECT_FALSE(WindowMover::usableFrame(std::nullopt).has_value());
}

TEST_F(WindowControlLayer, FocusedElementTracesWhyThereIsNone) {
    EXPECT_FALSE(WindowMover::focusedElement({Result::NoValue, std::nullopt}, QStringLiteral("AXFocusedWindow"),
                                             QStringLiteral("systemWide")));
    EXPECT_TRUE(
        trace.contains(QStringLiteral("moveFocusedWindow: systemWide attribute AXFocusedWindow error=noValue")));
    EXPECT_FALSE(WindowMover::focusedElement({Result::NotPermitted, std::nullopt}, QStringLiteral("AXMainWindow"),
                                             QStringLiteral("app")));
    EXPECT_TRUE(trace.contains(QStringLiteral("moveFocusedWindow: app attribute AXMainWindow error=apiDisabled")));
    EXPECT_EQ(
        WindowMover::focusedElement({Result::Ok, 5}, QStringLiteral("AXFocusedWindow"), QStringLiteral("systemWide")),
        5);
}

TEST_F(WindowControlLayer, ValuesThatAreNotFiniteAreNotSent) {
    EXPECT_EQ(WindowMover::setOrigin(1, QPointF(qQNaN(), 0)), Result::Failure);
    EXPECT_EQ(WindowMover::setSize(1, QSizeF(100, qInf())), Result::Failure);
    EXPECT_TRUE(platform.windowControl.requests().isEmpty());
    EXPECT_EQ(WindowMover::setOrigin(1, QPointF(5, 6)), Result::Ok);
    EXPECT_EQ(platform.windowControl.requests(1, Change::Move).value(0).point, QPointF(5, 6));
}

TEST_F(WindowControlLayer, UnhidingAnApplicationThatCannotHideIsNotTraced) {
    platform.windowControl.setChangeResult(kApp, Change::Unhide, Result::Unsupported);
    platform.windowControl.setChangeResult(1, Change::Unminimise, Result::Unsupported);
    WindowMover::revealMovedWindowsForApplication({1}, kApp, QStringLiteral("App"));
    EXPECT_TRUE(trace.lines().isEmpty()) << trace.lines().join(QLatin1Char('\n')).toStdString();
    ASSERT_EQ(platform.windowControl.requests().size(), 2);
    EXPECT_EQ(platform.windowControl.requests()[0].change, Change::Unhide);
    EXPECT_EQ(platform.windowControl.requests()[0].target, kApp);
}

TEST_F(WindowControlLayer, RevealTracesOtherFailuresAndKeepsGoing) {
    platform.windowControl.setChangeResult(kApp, Change::Unhide, Result::CannotComplete);
    platform.windowControl.setChangeResult(1, Change::Unminimise, Result::Failure);
    platform.windowControl.addWindow(kApp, {.id = 2, .minimised = true});
    WindowMover::revealMovedWindowsForApplication({1, 2}, kApp, QStringLiteral("App"));
    EXPECT_TRUE(trace.contains(QStringLiteral("App: unhide app failed with cannotComplete")));
    EXPECT_TRUE(trace.contains(QStringLiteral("App: unminimize window failed with failure")));
    EXPECT_EQ(platform.windowControl.requests(2, Change::Unminimise).size(), 1);
    EXPECT_FALSE(platform.windowControl.isMinimised(2));
}

TEST_F(WindowControlLayer, FirstWindowContextSkipsWindowsWithoutUsableFrame) {
    platform.windowControl.addWindow(kApp, {.id = 1, .frame = QRectF(0, 0, 1, 400)});
    platform.windowControl.addWindow(kApp, {.id = 2, .frame = QRectF(0, 0, 300, 200)});
    platform.windowControl.setFrameError(2, Result::NoValue);
    platform.windowControl.addWindow(kApp, {.id = 3, .frame = QRectF(10, 20, 300, 200)});
    const auto context = WindowMover::firstWindowContextWithFrame({1, 2, 3}, QStringLiteral("l"));
    ASSERT_TRUE(context.has_value());
    EXPECT_EQ(context->window, 3);
    EXPECT_EQ(context->frame, QRectF(10, 20, 300, 200));
}

TEST_F(WindowControlLayer, FirstWindowContextOfListWithoutFramesIsTraced) {
    EXPECT_FALSE(WindowMover::firstWindowContextWithFrame({}, QStringLiteral("l")).has_value());
    EXPECT_TRUE(trace.lines().isEmpty());
    EXPECT_FALSE(WindowMover::firstWindowContextWithFrame({1, 2}, QStringLiteral("l")).has_value());
    EXPECT_TRUE(trace.contains(QStringLiteral("moveFocusedWindow: l had 2 windows but no readable frame")));
}

TEST_F(WindowControlLayer, ApplicationContextPrefersFocusedThenMainThenListedWindows) {
    platform.windowControl.addWindow(kApp, {.id = 1, .frame = QRectF(0, 0, 300, 200)});
    platform.windowControl.addWindow(kApp, {.id = 2, .frame = QRectF(50, 50, 300, 200), .inVisible = false});
    EXPECT_EQ(WindowMover::focusedWindowContext(kApp, QStringLiteral("app"))->window, 1);

    platform.windowControl.setMainWindow(kApp, {Result::Ok, 2});
    EXPECT_EQ(WindowMover::focusedWindowContext(kApp, QStringLiteral("app"))->window, 2);

    platform.windowControl.setFocusedWindow(kApp, {Result::Ok, 1});
    EXPECT_EQ(WindowMover::focusedWindowContext(kApp, QStringLiteral("app"))->window, 1);
}

TEST_F(WindowControlLayer, ApplicationContextFallsBackToFullList) {
    platform.windowControl.addWindow(kApp, {.id = 2, .frame = QRectF(50, 50, 300, 200), .inVisible = false});
    platform.windowControl.setWindowsError(kApp, WindowScope::Visible, Result::CannotComplete);
    const auto context = WindowMover::focusedWindowContext(kApp, QStringLiteral("app"));
    ASSERT_TRUE(context.has_value());
    EXPECT_EQ(context->window, 2);
    EXPECT_TRUE(trace.contains(QStringLiteral("moveFocusedWindow: app AXWindows error=cannotComplete")));
}

TEST_F(WindowControlLayer, ApplicationWithoutWindowsHasNoContext) {
    EXPECT_FALSE(WindowMover::focusedWindowContext(kApp, QStringLiteral("app")).has_value());
    EXPECT_TRUE(trace.contains(QStringLiteral("moveFocusedWindow: app has no resolvable window context")));
}

}  // namespace
