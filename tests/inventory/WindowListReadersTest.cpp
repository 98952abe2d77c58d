#include <gtest/gtest.h>

#include "app/ScreenSnapshotService.h"
#include "platform/fake/FakePlatform.h"

namespace {

TEST(WindowListReaders, RoleIsTheStringValueOnly) {
    FakePlatform platform;
    const AXUIElement window = AXUIElement::window(3);
    EXPECT_FALSE(ScreenSnapshotService::role(window).has_value());
    platform.accessibility.setValue(window, QStringLiteral("AXRole"), QStringLiteral("AXDialog"));
    EXPECT_EQ(ScreenSnapshotService::role(window), QStringLiteral("AXDialog"));
    platform.accessibility.setValue(window, QStringLiteral("AXRole"), 3);
    EXPECT_FALSE(ScreenSnapshotService::role(window).has_value());
    platform.accessibility.setValue(window, QStringLiteral("AXRole"), QStringLiteral("AXWindow"));
    platform.accessibility.setReadError(window, QStringLiteral("AXRole"), kAXErrorCannotComplete);
    EXPECT_FALSE(ScreenSnapshotService::role(window).has_value());
}

}  // namespace
