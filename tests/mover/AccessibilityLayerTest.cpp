#include "tests/mover/MoverFixture.h"

namespace {

using AccessibilityLayer = MoverTest;

const AXUIElement kApp = AXUIElement::application(100);

AXUIElementList elements(std::initializer_list<qint64> numbers) {
    AXUIElementList list;
    for (qint64 number : numbers) {
        list.append(AXUIElement::window(number));
    }
    return list;
}

TEST(AXErrorNames, EveryCodeHasItsName) {
    const QStringList names = {QStringLiteral("failure"),
                               QStringLiteral("illegalArgument"),
                               QStringLiteral("invalidUIElement"),
                               QStringLiteral("invalidUIElementObserver"),
                               QStringLiteral("cannotComplete"),
                               QStringLiteral("attributeUnsupported"),
                               QStringLiteral("actionUnsupported"),
                               QStringLiteral("notificationUnsupported"),
                               QStringLiteral("notImplemented"),
                               QStringLiteral("notificationAlreadyRegistered"),
                               QStringLiteral("notificationNotRegistered"),
                               QStringLiteral("apiDisabled"),
                               QStringLiteral("noValue"),
                               QStringLiteral("parameterizedAttributeUnsupported"),
                               QStringLiteral("notEnoughPrecision")};
    for (int i = 0; i < names.size(); ++i) {
        EXPECT_EQ(WindowMover::axErrorName(-25200 - i), names[i]);
    }
    EXPECT_EQ(WindowMover::axErrorName(0), QStringLiteral("success"));
}

TEST(AXErrorNames, CannotCompleteAndUnknownCodes) {
    EXPECT_EQ(WindowMover::axErrorName(-25204), QStringLiteral("cannotComplete"));
    EXPECT_EQ(WindowMover::axErrorName(-1), QStringLiteral("unknown(-1)"));
    EXPECT_EQ(WindowMover::axErrorName(-25215), QStringLiteral("unknown(-25215)"));
    EXPECT_EQ(WindowMover::axErrorName(-25199), QStringLiteral("unknown(-25199)"));
}

TEST_F(AccessibilityLayer, WindowListAttributeReturnsElementsWithSuccess) {
    platform.accessibility.setValue(kApp, QStringLiteral("AXWindows"), QVariant::fromValue(elements({1, 2})));
    const WindowAttributeResult result = WindowMover::windows(kApp, QStringLiteral("AXWindows"));
    EXPECT_EQ(result.error, kAXErrorSuccess);
    EXPECT_EQ(result.windows, elements({1, 2}));
}

TEST_F(AccessibilityLayer, WindowListAttributeThatIsNotAListGivesEmptyListWithTheCode) {
    platform.accessibility.setValue(kApp, QStringLiteral("AXWindows"), QStringLiteral("not a list"));
    WindowAttributeResult result = WindowMover::windows(kApp, QStringLiteral("AXWindows"));
    EXPECT_EQ(result.error, kAXErrorSuccess);
    EXPECT_TRUE(result.windows.isEmpty());

    platform.accessibility.setReadError(kApp, QStringLiteral("AXWindows"), kAXErrorCannotComplete);
    result = WindowMover::windows(kApp, QStringLiteral("AXWindows"));
    EXPECT_EQ(result.error, kAXErrorCannotComplete);
    EXPECT_TRUE(result.windows.isEmpty());
}

TEST_F(AccessibilityLayer, SameWindowsInBothListsAreReturnedOnceInPrimaryOrder) {
    platform.accessibility.setValue(kApp, QStringLiteral("AXWindows"), QVariant::fromValue(elements({1, 2, 3})));
    platform.accessibility.setValue(kApp, QStringLiteral("AXAllWindows"), QVariant::fromValue(elements({3, 1, 2})));
    EXPECT_EQ(WindowMover::movableWindows(kApp, QStringLiteral("App")), elements({1, 2, 3}));
}

TEST_F(AccessibilityLayer, WindowsOnlyInFullListFollowThePrimaryOnes) {
    platform.accessibility.setValue(kApp, QStringLiteral("AXWindows"), QVariant::fromValue(elements({2})));
    platform.accessibility.setValue(kApp, QStringLiteral("AXAllWindows"), QVariant::fromValue(elements({5, 2, 4})));
    EXPECT_EQ(WindowMover::movableWindows(kApp, QStringLiteral("App")), elements({2, 5, 4}));
}

TEST_F(AccessibilityLayer, AppendUniqueKeepsFirstAppearance) {
    AXUIElementList list = elements({1, 2});
    WindowMover::appendUnique(AXUIElement::window(1), list);
    WindowMover::appendUnique(AXUIElement::window(3), list);
    WindowMover::appendUnique(AXUIElement::application(1), list);
    EXPECT_EQ(list, (AXUIElementList{AXUIElement::window(1), AXUIElement::window(2), AXUIElement::window(3),
                                     AXUIElement::application(1)}));
}

TEST_F(AccessibilityLayer, RoleFilterKeepsMovableRolesAndUnreadableRoles) {
    platform.accessibility.addWindow(100, {.number = 1, .role = QStringLiteral("AXWindow")});
    platform.accessibility.addWindow(100, {.number = 2, .role = QStringLiteral("AXDialog")});
    platform.accessibility.addWindow(100, {.number = 3, .role = QStringLiteral("AXSheet")});
    platform.accessibility.addWindow(100, {.number = 4, .role = QStringLiteral("AXPopover")});
    platform.accessibility.addWindow(100, {.number = 5});
    platform.accessibility.setReadError(AXUIElement::window(5), QStringLiteral("AXRole"), kAXErrorCannotComplete);
    platform.accessibility.addWindow(100, {.number = 6});
    platform.accessibility.setValue(AXUIElement::window(6), QStringLiteral("AXRole"), 42);
    EXPECT_EQ(WindowMover::movableWindows(kApp, QStringLiteral("App")), elements({1, 2, 3, 5, 6}));
}

TEST_F(AccessibilityLayer, OnlyWindowWithUnmovableRoleIsStillReturnedByFallback) {
    platform.accessibility.addWindow(100, {.number = 9, .role = QStringLiteral("AXFloatingPanel")});
    EXPECT_EQ(WindowMover::movableWindows(kApp, QStringLiteral("Odd [pid:100]")), elements({9}));
    EXPECT_TRUE(trace.contains(
        QStringLiteral("Odd [pid:100]: no movable windows by role filter, (primary=1, all=1, merged=1)")));
}

TEST_F(AccessibilityLayer, BothListReadsFailingGiveNothingNotAnEmptyList) {
    platform.accessibility.setReadError(kApp, QStringLiteral("AXWindows"), kAXErrorAPIDisabled);
    platform.accessibility.setReadError(kApp, QStringLiteral("AXAllWindows"), kAXErrorCannotComplete);
    EXPECT_FALSE(WindowMover::movableWindows(kApp, QStringLiteral("App")).has_value());
    EXPECT_TRUE(trace.contains(QStringLiteral("App: AXWindows error=apiDisabled")));
    EXPECT_TRUE(trace.contains(QStringLiteral("App: AXAllWindows error=cannotComplete")));
    EXPECT_TRUE(trace.contains(QStringLiteral("App: no movable windows after filtering (primary=0, all=0)")));
}

TEST_F(AccessibilityLayer, PositionAndSizeReadOnlyAsPointAndSize) {
    const AXUIElement window = AXUIElement::window(1);
    platform.accessibility.setValue(window, QStringLiteral("AXPosition"), QPointF(10, 20));
    platform.accessibility.setValue(window, QStringLiteral("AXSize"), QSizeF(300, 200));
    EXPECT_EQ(WindowMover::position(window), QPointF(10, 20));
    EXPECT_EQ(WindowMover::size(window), QSizeF(300, 200));

    platform.accessibility.setValue(window, QStringLiteral("AXPosition"), QSizeF(10, 20));
    platform.accessibility.setValue(window, QStringLiteral("AXSize"), QPointF(300, 200));
    EXPECT_FALSE(WindowMover::position(window).has_value());
    EXPECT_FALSE(WindowMover::size(window).has_value());

    platform.accessibility.setReadError(window, QStringLiteral("AXPosition"), kAXErrorInvalidUIElement);
    EXPECT_FALSE(WindowMover::position(window).has_value());
    EXPECT_FALSE(WindowMover::size(AXUIElement::window(2)).has_value());
}

TEST_F(AccessibilityLayer, WindowNumberReadsAnyNumberAndNothingElse) {
    const AXUIElement window = AXUIElement::window(1);
    platform.accessibility.setValue(window, QStringLiteral("AXWindowNumber"), 77);
    EXPECT_EQ(WindowMover::axWindowNumber(window), 77);
    platform.accessibility.setValue(window, QStringLiteral("AXWindowNumber"), qint64(5000000000));
    EXPECT_EQ(WindowMover::axWindowNumber(window), 5000000000);
    platform.accessibility.setValue(window, QStringLiteral("AXWindowNumber"), 12.0);
    EXPECT_EQ(WindowMover::axWindowNumber(window), 12);
    platform.accessibility.setValue(window, QStringLiteral("AXWindowNumber"), QStringLiteral("12"));
    EXPECT_FALSE(WindowMover::axWindowNumber(window).has_value());
    platform.accessibility.removeValue(window, QStringLiteral("AXWindowNumber"));
    EXPECT_FALSE(WindowMover::axWindowNumber(window).has_value());
}

TEST_F(AccessibilityLayer, ElementAttributeTracesErrorsAndNonElements) {
    const AXUIElement system = AXUIElement::systemWide();
    EXPECT_FALSE(
        WindowMover::axElementAttribute(system, QStringLiteral("AXFocusedWindow"), QStringLiteral("systemWide")));
    EXPECT_TRUE(
        trace.contains(QStringLiteral("moveFocusedWindow: systemWide attribute AXFocusedWindow error=noValue")));

    platform.accessibility.setValue(system, QStringLiteral("AXFocusedWindow"), 5);
    EXPECT_FALSE(
        WindowMover::axElementAttribute(system, QStringLiteral("AXFocusedWindow"), QStringLiteral("systemWide")));
    EXPECT_TRUE(
        trace.contains(QStringLiteral("moveFocusedWindow: systemWide attribute AXFocusedWindow is not AXUIElement")));

    platform.accessibility.setValue(system, QStringLiteral("AXFocusedWindow"),
                                    QVariant::fromValue(AXUIElement::window(5)));
    EXPECT_EQ(WindowMover::axElementAttribute(system, QStringLiteral("AXFocusedWindow"), QStringLiteral("systemWide")),
              AXUIElement::window(5));
}

TEST_F(AccessibilityLayer, UnhidingAnApplicationThatDoesNotSupportItIsNotTraced) {
    platform.accessibility.setWriteError(kApp, QStringLiteral("AXHidden"), kAXErrorAttributeUnsupported);
    platform.accessibility.setWriteError(AXUIElement::window(1), QStringLiteral("AXMinimized"),
                                         kAXErrorAttributeUnsupported);
    WindowMover::revealMovedWindowsForApplication(elements({1}), kApp, QStringLiteral("App"));
    EXPECT_TRUE(trace.lines().isEmpty()) << trace.lines().join(QLatin1Char('\n')).toStdString();
    ASSERT_EQ(platform.accessibility.writes().size(), 2);
    EXPECT_EQ(platform.accessibility.writes()[0].attribute, QStringLiteral("AXHidden"));
    EXPECT_EQ(platform.accessibility.writes()[0].value, QVariant(false));
}

TEST_F(AccessibilityLayer, RevealTracesOtherFailuresAndKeepsGoing) {
    platform.accessibility.setWriteError(kApp, QStringLiteral("AXHidden"), kAXErrorCannotComplete);
    platform.accessibility.setWriteError(AXUIElement::window(1), QStringLiteral("AXMinimized"), kAXErrorFailure);
    WindowMover::revealMovedWindowsForApplication(elements({1, 2}), kApp, QStringLiteral("App"));
    EXPECT_TRUE(trace.contains(QStringLiteral("App: unhide app failed with cannotComplete")));
    EXPECT_TRUE(trace.contains(QStringLiteral("App: unminimize window failed with failure")));
    const auto unminimised = platform.accessibility.writes(AXUIElement::window(2), QStringLiteral("AXMinimized"));
    ASSERT_EQ(unminimised.size(), 1);
    EXPECT_EQ(unminimised[0].value, QVariant(false));
}

TEST_F(AccessibilityLayer, FirstWindowContextSkipsWindowsWithoutUsableFrame) {
    platform.accessibility.addWindow(100, {.number = 1, .frame = QRectF(0, 0, 1, 400)});
    platform.accessibility.addWindow(100, {.number = 2, .frame = QRectF(0, 0, 300, 200)});
    platform.accessibility.removeValue(AXUIElement::window(2), QStringLiteral("AXSize"));
    platform.accessibility.addWindow(100, {.number = 3, .frame = QRectF(10, 20, 300, 200)});
    const auto context = WindowMover::firstWindowContextWithFrame(elements({1, 2, 3}), QStringLiteral("l"));
    ASSERT_TRUE(context.has_value());
    EXPECT_EQ(context->window, AXUIElement::window(3));
    EXPECT_EQ(context->frame, QRectF(10, 20, 300, 200));
}

TEST_F(AccessibilityLayer, FirstWindowContextOfListWithoutFramesIsTraced) {
    EXPECT_FALSE(WindowMover::firstWindowContextWithFrame({}, QStringLiteral("l")).has_value());
    EXPECT_TRUE(trace.lines().isEmpty());
    EXPECT_FALSE(WindowMover::firstWindowContextWithFrame(elements({1, 2}), QStringLiteral("l")).has_value());
    EXPECT_TRUE(trace.contains(QStringLiteral("moveFocusedWindow: l had 2 windows but no readable frame")));
}

TEST_F(AccessibilityLayer, ApplicationContextPrefersFocusedThenMainThenListedWindows) {
    platform.accessibility.addWindow(100, {.number = 1, .frame = QRectF(0, 0, 300, 200)});
    platform.accessibility.addWindow(100, {.number = 2, .frame = QRectF(50, 50, 300, 200), .inWindows = false});
    EXPECT_EQ(WindowMover::focusedWindowContext(kApp, QStringLiteral("app"))->window, AXUIElement::window(1));

    platform.accessibility.setValue(kApp, QStringLiteral("AXMainWindow"), QVariant::fromValue(AXUIElement::window(2)));
    EXPECT_EQ(WindowMover::focusedWindowContext(kApp, QStringLiteral("app"))->window, AXUIElement::window(2));

    platform.accessibility.setValue(kApp, QStringLiteral("AXFocusedWindow"),
                                    QVariant::fromValue(AXUIElement::window(1)));
    EXPECT_EQ(WindowMover::focusedWindowContext(kApp, QStringLiteral("app"))->window, AXUIElement::window(1));
}

TEST_F(AccessibilityLayer, ApplicationContextFallsBackToFullList) {
    platform.accessibility.addWindow(100, {.number = 2, .frame = QRectF(50, 50, 300, 200), .inWindows = false});
    platform.accessibility.setReadError(kApp, QStringLiteral("AXWindows"), kAXErrorCannotComplete);
    const auto context = WindowMover::focusedWindowContext(kApp, QStringLiteral("app"));
    ASSERT_TRUE(context.has_value());
    EXPECT_EQ(context->window, AXUIElement::window(2));
    EXPECT_TRUE(trace.contains(QStringLiteral("moveFocusedWindow: app AXWindows error=cannotComplete")));
}

TEST_F(AccessibilityLayer, ApplicationWithoutWindowsHasNoContext) {
    EXPECT_FALSE(WindowMover::focusedWindowContext(kApp, QStringLiteral("app")).has_value());
    EXPECT_TRUE(trace.contains(QStringLiteral("moveFocusedWindow: app has no resolvable window context")));
}

}  // namespace
