#pragma once

#include <gtest/gtest.h>

#include "KeyboardShortcuts/HandlerTables.h"
#include "platform/fake/FakePlatform.h"

// Every test starts with a fresh fake platform (US layout) and empty shortcut tables.
class ShortcutTest : public ::testing::Test {
protected:
    ShortcutTest() {
        KeyboardShortcuts::resetForTesting();
        platform.keyboardLayout.useUSLayout();
    }
    ~ShortcutTest() override { KeyboardShortcuts::resetForTesting(); }

    FakePlatform platform;
};
