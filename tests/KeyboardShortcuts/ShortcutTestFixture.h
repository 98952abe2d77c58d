// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "platform/fake/FakePlatform.h"

// Every test starts with a fresh fake platform (US layout) and fresh global shortcuts on it.
class ShortcutTest : public ::testing::Test {
protected:
    ShortcutTest() { platform.keyboardLayout.useUSLayout(); }

    FakePlatform platform;
    KeyboardShortcuts::ActionShortcuts shortcuts;
};
