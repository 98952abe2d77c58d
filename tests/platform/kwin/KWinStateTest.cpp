// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "platform/kwin/KWinKeyCodes.h"
#include "platform/kwin/KWinSessionCheck.h"
#include "platform/kwin/KWinSpace.h"
#include "platform/kwin/KWinState.h"
#include "platform/kwin/KWinWindowControl.h"

namespace {

const QByteArray kState = R"({
  "api": 5,
  "screens": [{"name": "", "x": 0, "y": 0, "width": 1920, "height": 1080},
              {"name": "", "x": 1920, "y": 0, "width": 2560, "height": 1440,
               "workArea": {"x": 1920, "y": 0, "width": 2560, "height": 1400}}],
  "active": "{b}",
  "windows": [
    {"id": "{a}", "pid": 10, "resourceClass": "kate", "caption": "notes", "x": 10, "y": 20, "width": 300,
     "height": 200, "normal": true, "stacking": 1, "screen": 0, "opacity": 0.5},
    {"id": "{b}", "pid": 11, "resourceClass": "dolphin", "x": 2000, "y": 40, "width": 500, "height": 400,
     "dialog": true, "minimized": true, "maximizedH": true, "maximizedV": true, "stacking": 2, "screen": 1,
     "onCurrentDesktop": false, "skipTaskbar": true, "skipSwitcher": true},
    {"id": "{c}", "pid": 12, "dock": true, "stacking": 3},
    {"pid": 13}
  ]})";

TEST(KWinStateTest, ReadsTheScriptsState) {
    const std::optional<KWinState> state = KWinState::parse(kState);
    ASSERT_TRUE(state);
    EXPECT_EQ(state->api, 5);
    ASSERT_EQ(state->screens.size(), 2);
    EXPECT_EQ(state->screens[1].geometry, QRectF(1920, 0, 2560, 1440));
    EXPECT_EQ(state->screens[1].workArea, QRectF(1920, 0, 2560, 1400));
    EXPECT_TRUE(state->screens[0].workArea.isNull());  // where the script does not say
    ASSERT_EQ(state->windows.size(), 3);               // the one without an id is left out
    EXPECT_EQ(state->activeUuid, QStringLiteral("{b}"));

    const KWinWindow* kate = state->window(QStringLiteral("{a}"));
    ASSERT_NE(kate, nullptr);
    EXPECT_EQ(kate->pid, 10);
    EXPECT_EQ(kate->caption, QStringLiteral("notes"));
    EXPECT_EQ(kate->frame, QRectF(10, 20, 300, 200));
    EXPECT_DOUBLE_EQ(kate->opacity, 0.5);
    EXPECT_TRUE(kate->onCurrentDesktop);  // the default when the script does not say

    const KWinWindow* dolphin = state->window(QStringLiteral("{b}"));
    ASSERT_NE(dolphin, nullptr);
    EXPECT_TRUE(dolphin->minimized);
    EXPECT_TRUE(dolphin->maximizedHorizontally && dolphin->maximizedVertically);
    EXPECT_FALSE(dolphin->onCurrentDesktop);
    EXPECT_TRUE(dolphin->skipTaskbar && dolphin->skipSwitcher);
    EXPECT_FALSE(kate->skipTaskbar || kate->skipSwitcher);
    EXPECT_EQ(state->window(QStringLiteral("{missing}")), nullptr);
}

TEST(KWinStateTest, RefusesTextThatIsNotAState) {
    EXPECT_FALSE(KWinState::parse("not json"));
    EXPECT_FALSE(KWinState::parse(R"({"windows": []})"));
    EXPECT_FALSE(KWinState::parse(R"([1, 2])"));
}

TEST(KWinStateTest, RolesAndListsFollowWhatKWinSaysOfTheWindow) {
    const KWinState state = *KWinState::parse(kState);
    const KWinWindow& kate = *state.window(QStringLiteral("{a}"));
    const KWinWindow& dolphin = *state.window(QStringLiteral("{b}"));
    const KWinWindow& dock = *state.window(QStringLiteral("{c}"));
    EXPECT_EQ(KWinWindowControl::roleOf(kate), WindowRole::Window);
    EXPECT_EQ(KWinWindowControl::roleOf(dolphin), WindowRole::Dialog);
    EXPECT_EQ(KWinWindowControl::roleOf(dock), WindowRole::Other);
    EXPECT_TRUE(KWinWindowControl::isListed(kate, WindowScope::Visible));
    EXPECT_FALSE(KWinWindowControl::isListed(dock, WindowScope::IncludingMinimised));
    // On another virtual desktop: never listed, like on X11.
    EXPECT_FALSE(KWinWindowControl::isListed(dolphin, WindowScope::IncludingMinimised));
    KWinWindow minimisedHere = dolphin;
    minimisedHere.onCurrentDesktop = true;
    EXPECT_FALSE(KWinWindowControl::isListed(minimisedHere, WindowScope::Visible));
    EXPECT_TRUE(KWinWindowControl::isListed(minimisedHere, WindowScope::IncludingMinimised));
}

TEST(KWinStateTest, TheDisplaySpaceStartsAtTheFirstScreen) {
    KWinState state = *KWinState::parse(kState);
    state.screens[0].geometry.moveTopLeft(QPointF(-1920, 100));
    EXPECT_EQ(KWinSpace::toDisplaySpace(state, QRectF(-1900, 120, 10, 10)), QRectF(20, 20, 10, 10));
    EXPECT_EQ(KWinSpace::toKWin(state, QPointF(20, 20)), QPointF(-1900, 120));
    EXPECT_EQ(KWinSpace::layer(*state.window(QStringLiteral("{c}"))), 20);
    EXPECT_EQ(KWinSpace::layer(*state.window(QStringLiteral("{a}"))), 0);
}

TEST(KWinStateTest, KeysBecomeQtKeysThroughTheLayout) {
    auto layout = [](int code) -> std::optional<QString> {
        if (code == 0x13) {
            return QStringLiteral("2");  // the key of "2" on a US layout
        }
        if (code == 0x00) {
            return QStringLiteral("q");  // "a" on a French layout
        }
        return std::nullopt;
    };
    EXPECT_EQ(KWinKeyCodes::qtKey(0x13, layout), Qt::Key_2);
    EXPECT_EQ(KWinKeyCodes::qtKey(0x00, layout), Qt::Key_Q);
    EXPECT_EQ(KWinKeyCodes::qtKey(0x7B, layout), Qt::Key_Left);
    EXPECT_EQ(KWinKeyCodes::qtKey(0x7A, layout), Qt::Key_F1);
    EXPECT_EQ(KWinKeyCodes::qtKey(0x53, layout), Qt::Key_1 | Qt::KeypadModifier);
    EXPECT_EQ(KWinKeyCodes::qtKey(0x01, layout), Qt::Key_S);  // the layout says nothing: a US layout's key
    EXPECT_FALSE(KWinKeyCodes::qtKey(0x0A, layout));          // the ISO key beside left shift has no US key
    EXPECT_EQ(KWinKeyCodes::qtModifiers(0x1000 | 0x800), int(Qt::CTRL | Qt::ALT));
    EXPECT_EQ(KWinKeyCodes::qtModifiers(0x100 | 0x200), int(Qt::META | Qt::SHIFT));
    EXPECT_FALSE(KWinKeyCodes::qtModifiers(0x20000));
}

TEST(KWinStateTest, TheSessionCheckSaysWhatKWinRefuses) {
    EXPECT_EQ(KWinSessionCheck::windowControlFor({true, false, {}}).availability, Availability::Available);
    const CapabilityCheck lost = KWinSessionCheck::windowControlFor({false, false, {}});
    EXPECT_EQ(lost.availability, Availability::Unavailable);
    EXPECT_TRUE(lost.explanation.contains(QStringLiteral("KWin")));
    EXPECT_EQ(KWinSessionCheck::screenCaptureFor({true, true, {}}).availability, Availability::Available);
    const CapabilityCheck refused = KWinSessionCheck::screenCaptureFor({true, false, QStringLiteral("not authorized")});
    EXPECT_EQ(refused.availability, Availability::Unavailable);
    EXPECT_TRUE(refused.explanation.contains(QStringLiteral("not authorized")));
    EXPECT_TRUE(refused.explanation.contains(QStringLiteral("X-KDE-DBUS-Restricted-Interfaces")));
}

}  // namespace
