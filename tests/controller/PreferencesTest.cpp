// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/model/Preferences.h"
#include "platform/fake/FakeSettingsStore.h"

namespace {

TEST(Preferences, MissingDefaultsAreStoredWithoutTouchingPresentValues) {
    FakeSettingsStore store;
    store.setString(QStringLiteral("dockIconVisible"), QStringLiteral("yes"));
    Preferences preferences(store);
    preferences.storeMissingDefaults();
    EXPECT_EQ(store.value(QStringLiteral("dockIconVisible")), SettingValue(QStringLiteral("yes")));
    EXPECT_EQ(store.value(QStringLiteral("autoCheckForUpdatesOnLaunch")), SettingValue(true));
    EXPECT_EQ(store.value(QStringLiteral("adjustWindowSizeToTargetScreen")), SettingValue(false));
    EXPECT_FALSE(store.contains(QStringLiteral("shortcutDisplayRecords.v1")));
}

TEST(Preferences, EachSetterWritesItsOwnKey) {
    FakeSettingsStore store;
    Preferences preferences(store);
    preferences.setTaskbarIconVisible(true);
    preferences.setAutoCheckForUpdates(false);
    preferences.setAdjustWindowSize(true);
    preferences.setShortcutDisplayRecords(QByteArray("[]"));
    EXPECT_EQ(store.value(QStringLiteral("dockIconVisible")), SettingValue(true));
    EXPECT_EQ(store.value(QStringLiteral("autoCheckForUpdatesOnLaunch")), SettingValue(false));
    EXPECT_EQ(store.value(QStringLiteral("adjustWindowSizeToTargetScreen")), SettingValue(true));
    EXPECT_EQ(store.value(QStringLiteral("shortcutDisplayRecords.v1")), SettingValue(QByteArray("[]")));
    EXPECT_TRUE(preferences.taskbarIconVisible());
    EXPECT_FALSE(preferences.autoCheckForUpdates());
    EXPECT_TRUE(preferences.adjustWindowSize());
    EXPECT_EQ(preferences.shortcutDisplayRecords(), QByteArray("[]"));
}

TEST(Preferences, RecordsStoredAsAnotherTypeReadAsNothing) {
    FakeSettingsStore store;
    store.setString(QStringLiteral("shortcutDisplayRecords.v1"), QStringLiteral("[]"));
    EXPECT_EQ(Preferences(store).shortcutDisplayRecords(), std::nullopt);
}

}  // namespace
