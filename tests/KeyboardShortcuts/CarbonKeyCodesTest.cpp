// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "KeyboardShortcuts/Key.h"
#include "platform/x11/CarbonKeyCodes.h"

using KeyboardShortcuts::Key;

namespace {

TEST(CarbonKeyCodesTest, KeysMapToTheirPhysicalEvdevPositions) {
    EXPECT_EQ(CarbonKeyCodes::evdevScanCode(Key::a.rawValue()), 30);
    EXPECT_EQ(CarbonKeyCodes::evdevScanCode(Key::z.rawValue()), 44);
    EXPECT_EQ(CarbonKeyCodes::evdevScanCode(Key::y.rawValue()), 21);
    EXPECT_EQ(CarbonKeyCodes::evdevScanCode(Key::return_.rawValue()), 28);
    EXPECT_EQ(CarbonKeyCodes::evdevScanCode(Key::f12.rawValue()), 88);
    EXPECT_EQ(CarbonKeyCodes::evdevScanCode(Key::command.rawValue()), 125);
    EXPECT_EQ(CarbonKeyCodes::evdevScanCode(10), 86) << "the ISO key next to left shift";
    EXPECT_EQ(CarbonKeyCodes::xKeycode(Key::k.rawValue()), 45);
}

TEST(CarbonKeyCodesTest, EveryNamedKeyButFunctionHasAnXKeycodeAndRoundTrips) {
    for (const Key& key : Key::allNamed()) {
        const auto keycode = CarbonKeyCodes::xKeycode(key.rawValue());
        if (key == Key::function) {
            EXPECT_FALSE(keycode) << "fn never reaches the X server";
            continue;
        }
        ASSERT_TRUE(keycode) << key.rawValue();
        EXPECT_EQ(CarbonKeyCodes::carbonKeyCodeForXKeycode(*keycode), key.rawValue());
    }
}

TEST(CarbonKeyCodesTest, UnknownCodesHaveNoKeycode) {
    EXPECT_FALSE(CarbonKeyCodes::xKeycode(-1));
    EXPECT_FALSE(CarbonKeyCodes::xKeycode(500));
    EXPECT_FALSE(CarbonKeyCodes::carbonKeyCodeForXKeycode(3));
    EXPECT_FALSE(CarbonKeyCodes::carbonKeyCodeForXKeycode(255));
}

TEST(CarbonKeyCodesTest, ModifierBitsMapToXMasks) {
    EXPECT_EQ(CarbonKeyCodes::xModifierMask(0x1000), XCB_MOD_MASK_CONTROL);
    EXPECT_EQ(CarbonKeyCodes::xModifierMask(0x800), XCB_MOD_MASK_1);
    EXPECT_EQ(CarbonKeyCodes::xModifierMask(0x200), XCB_MOD_MASK_SHIFT);
    EXPECT_EQ(CarbonKeyCodes::xModifierMask(0x100), XCB_MOD_MASK_4);
    EXPECT_EQ(CarbonKeyCodes::xModifierMask(0x1b00),
              XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_4);
    EXPECT_FALSE(CarbonKeyCodes::xModifierMask(0x20000 | 0x100)) << "fn has no X modifier";
    EXPECT_EQ(CarbonKeyCodes::carbonModifiersForXState(XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2),
              0x1000u);
}

}  // namespace
