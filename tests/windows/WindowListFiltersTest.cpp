// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/windows/WindowListFilters.h"
#include "platform/fake/FakePlatform.h"

namespace {

TEST(WindowListFilters, ExcludedOwnerNamesAreTheSystemSurfacesOnly) {
    for (const char* name : {"Window Server", "SystemUIServer", "ControlCenter", "NotificationCenter", "Dock"}) {
        EXPECT_TRUE(WindowListFilters::isExcludedOwnerName(QString::fromLatin1(name))) << name;
    }
    EXPECT_FALSE(WindowListFilters::isExcludedOwnerName(QStringLiteral("dock")));
    EXPECT_FALSE(WindowListFilters::isExcludedOwnerName(QStringLiteral("Docker")));
    EXPECT_FALSE(WindowListFilters::isExcludedOwnerName(QString()));
}

TEST(WindowListFilters, EntryWithoutOwnerNameIsNeverExcludedByName) {
    WindowEntry entry{.id = 1, .ownerName = QStringLiteral("Dock")};
    EXPECT_TRUE(WindowListFilters::hasExcludedOwnerName(entry));
    entry.ownerName.reset();
    EXPECT_FALSE(WindowListFilters::hasExcludedOwnerName(entry));
}

TEST(WindowListFilters, OnlyLayerZeroIsTheNormalLayer) {
    EXPECT_TRUE(WindowListFilters::isOnNormalLayer({.layer = 0}));
    EXPECT_FALSE(WindowListFilters::isOnNormalLayer({.layer = 3}));
    EXPECT_FALSE(WindowListFilters::isOnNormalLayer({.layer = -1}));
}

TEST(WindowListFilters, TransparentUpToOneHundredthAndNeverWithoutOpacity) {
    EXPECT_TRUE(WindowListFilters::isTransparent({.opacity = 0.0}));
    EXPECT_TRUE(WindowListFilters::isTransparent({.opacity = 0.01}));
    EXPECT_FALSE(WindowListFilters::isTransparent({.opacity = 0.011}));
    EXPECT_FALSE(WindowListFilters::isTransparent({.opacity = 1.0}));
    EXPECT_FALSE(WindowListFilters::isTransparent({.opacity = std::nullopt}));
}

TEST(WindowListFilters, UserWindowSizeIsAtLeast120By80) {
    EXPECT_TRUE(WindowListFilters::hasUserWindowSize(QRectF(0, 0, 120, 80)));
    EXPECT_FALSE(WindowListFilters::hasUserWindowSize(QRectF(0, 0, 119, 500)));
    EXPECT_FALSE(WindowListFilters::hasUserWindowSize(QRectF(0, 0, 500, 79.5)));
}

TEST(WindowListFilters, RegularApplicationsAreTheRegularOnesStillRunning) {
    FakePlatform platform;
    platform.runningApplications.addApplication(100, QStringLiteral("Editor"));
    platform.runningApplications.addApplication(200, QStringLiteral("Helper"), ApplicationPolicy::Accessory);
    platform.runningApplications.addApplication(300, QStringLiteral("Daemon"), ApplicationPolicy::Prohibited);
    platform.runningApplications.addApplication(400, QStringLiteral("Gone"));
    platform.runningApplications.applications.last().terminated = true;
    EXPECT_EQ(WindowListFilters::regularApplicationPIDs(), QSet<pid_t>{100});
}

TEST(WindowListFilters, UserWindowNeedsEveryTestToPass) {
    const QSet<pid_t> regular{100};
    const WindowEntry user{.id = 1,
                           .pid = 100,
                           .ownerName = QStringLiteral("Editor"),
                           .frame = QRectF(0, 0, 400, 300),
                           .layer = 0,
                           .opacity = 1.0};
    EXPECT_TRUE(WindowListFilters::isUserWindow(user, regular));

    WindowEntry other = user;
    other.layer = 3;
    EXPECT_FALSE(WindowListFilters::isUserWindow(other, regular)) << "layer";
    other = user;
    other.pid.reset();
    EXPECT_FALSE(WindowListFilters::isUserWindow(other, regular)) << "no owner";
    other = user;
    other.pid = 200;
    EXPECT_FALSE(WindowListFilters::isUserWindow(other, regular)) << "not a regular application";
    other = user;
    other.ownerName = QStringLiteral("Dock");
    EXPECT_FALSE(WindowListFilters::isUserWindow(other, regular)) << "excluded owner";
    other = user;
    other.opacity = 0.0;
    EXPECT_FALSE(WindowListFilters::isUserWindow(other, regular)) << "transparent";
    other = user;
    other.frame = QRectF(0, 0, 100, 300);
    EXPECT_FALSE(WindowListFilters::isUserWindow(other, regular)) << "too small";
}

TEST(WindowListFilters, MovableRolesAreWindowsAndDialogs) {
    EXPECT_TRUE(WindowListFilters::isMovableRole(WindowRole::Window));
    EXPECT_TRUE(WindowListFilters::isMovableRole(WindowRole::Dialog));
    EXPECT_FALSE(WindowListFilters::isMovableRole(WindowRole::Other));
}

}  // namespace
