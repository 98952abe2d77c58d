// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/displays/ScreenSnapshotService.h"
#include "platform/fake/FakePlatform.h"

namespace {

TEST(WindowListReaders, RoleIsTheReadRoleOnly) {
    FakePlatform platform;
    EXPECT_FALSE(ScreenSnapshotService::role(3).has_value());
    platform.windowControl.setRole(3, WindowRole::Dialog);
    EXPECT_EQ(ScreenSnapshotService::role(3), WindowRole::Dialog);
    platform.windowControl.setRoleError(3, Result::CannotComplete);
    EXPECT_FALSE(ScreenSnapshotService::role(3).has_value());
}

}  // namespace
