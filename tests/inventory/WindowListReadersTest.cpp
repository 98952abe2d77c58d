#include <gtest/gtest.h>

#include "app/ScreenSnapshotService.h"
#include "platform/fake/FakePlatform.h"

namespace {

WindowInfo with(const char* key, const QVariant& value) {
    return {{QLatin1String(key), value}};
}

std::optional<pid_t> pidOf(const QVariant& value) {
    return ScreenSnapshotService::ownerPID(with(kCGWindowOwnerPID, value));
}

TEST(WindowListReaders, OwnerPIDAcceptsThirtyTwoBitNativeAndNumberForms) {
    EXPECT_EQ(pidOf(QVariant(int(42))), 42);
    EXPECT_EQ(pidOf(QVariant(qint64(-7))), -7);
    EXPECT_EQ(pidOf(QVariant(qint64(2147483647))), 2147483647);
    EXPECT_EQ(pidOf(QVariant(42.9)), 42);
    EXPECT_EQ(pidOf(QVariant(uint(42))), 42);
    EXPECT_EQ(pidOf(QVariant(quint64(42))), 42);
}

TEST(WindowListReaders, OwnerPIDOfAnotherTypeOrMissingIsAbsent) {
    EXPECT_FALSE(pidOf(QVariant(QStringLiteral("42"))).has_value());
    EXPECT_FALSE(pidOf(QVariant(true)).has_value());
    EXPECT_FALSE(pidOf(QVariant()).has_value());
    EXPECT_FALSE(ScreenSnapshotService::ownerPID(WindowInfo{}).has_value());
}

TEST(WindowListReadersDeathTest, OwnerPIDOutsideThirtyTwoBitsIsFatal) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(pidOf(QVariant(qint64(2147483648LL))), "kCGWindowOwnerPID");
    EXPECT_DEATH(pidOf(QVariant(qint64(-2147483649LL))), "kCGWindowOwnerPID");
    EXPECT_DEATH(pidOf(QVariant(1e12)), "kCGWindowOwnerPID");
    EXPECT_DEATH(pidOf(QVariant(quint64(1) << 63)), "kCGWindowOwnerPID");
    EXPECT_DEATH(pidOf(QVariant(uint(4294967295u))), "kCGWindowOwnerPID");
}

TEST(WindowListReaders, WindowIDAcceptsIntegersAndNumbers) {
    EXPECT_EQ(ScreenSnapshotService::windowID(with(kCGWindowNumber, int(5))), 5);
    EXPECT_EQ(ScreenSnapshotService::windowID(with(kCGWindowNumber, qint64(8589934592LL))), 8589934592LL);
    EXPECT_EQ(ScreenSnapshotService::windowID(with(kCGWindowNumber, 7.9)), 7);
    EXPECT_EQ(ScreenSnapshotService::windowID(with(kCGWindowNumber, uint(9))), 9);
    EXPECT_FALSE(ScreenSnapshotService::windowID(with(kCGWindowNumber, QStringLiteral("5"))).has_value());
    EXPECT_FALSE(ScreenSnapshotService::windowID(with(kCGWindowNumber, true)).has_value());
    EXPECT_FALSE(ScreenSnapshotService::windowID(WindowInfo{}).has_value());
}

TEST(WindowListReaders, IsOnScreenAcceptsBooleanAndNonZeroNumber) {
    EXPECT_TRUE(ScreenSnapshotService::isOnScreen(with(kCGWindowIsOnscreen, true)));
    EXPECT_FALSE(ScreenSnapshotService::isOnScreen(with(kCGWindowIsOnscreen, false)));
    EXPECT_TRUE(ScreenSnapshotService::isOnScreen(with(kCGWindowIsOnscreen, 1)));
    EXPECT_TRUE(ScreenSnapshotService::isOnScreen(with(kCGWindowIsOnscreen, 2.0)));
    EXPECT_FALSE(ScreenSnapshotService::isOnScreen(with(kCGWindowIsOnscreen, 0)));
    EXPECT_FALSE(ScreenSnapshotService::isOnScreen(with(kCGWindowIsOnscreen, 0.5)));
    EXPECT_FALSE(ScreenSnapshotService::isOnScreen(with(kCGWindowIsOnscreen, QStringLiteral("true"))));
    EXPECT_FALSE(ScreenSnapshotService::isOnScreen(WindowInfo{}));
}

TEST(WindowListReaders, RoleIsTheReadRoleOnly) {
    FakePlatform platform;
    EXPECT_FALSE(ScreenSnapshotService::role(3).has_value());
    platform.windowControl.setRole(3, WindowRole::Dialog);
    EXPECT_EQ(ScreenSnapshotService::role(3), WindowRole::Dialog);
    platform.windowControl.setRoleError(3, Result::CannotComplete);
    EXPECT_FALSE(ScreenSnapshotService::role(3).has_value());
}

}  // namespace
