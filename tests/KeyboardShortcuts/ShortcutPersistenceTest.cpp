// SPDX-License-Identifier: MIT
// Shortcuts written through the file-backed user defaults read back the same after a restart.
#include <QTemporaryDir>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "platform/xdg/FileSettingsStore.h"
#include "tests/KeyboardShortcuts/ShortcutTestFixture.h"

using namespace KeyboardShortcuts;

namespace {

class ShortcutPersistenceTest : public ShortcutTest {
protected:
    ShortcutPersistenceTest() : path(directory.filePath(QStringLiteral("defaults.json"))) { useStore(); }

    // A store freshly loaded from the file and shortcuts on it, as a new process would have.
    void useStore() {
        run.reset();
        store = std::make_unique<FileSettingsStore>(path);
        run = std::make_unique<ActionShortcuts>(&platform.hotKeys, store.get());
    }

    QTemporaryDir directory;
    QString path;
    std::unique_ptr<FileSettingsStore> store;
    std::unique_ptr<ActionShortcuts> run;
};

TEST_F(ShortcutPersistenceTest, StoredShortcutSurvivesRestartAsJsonString) {
    const Name name(QStringLiteral("moveFocusedWindowToDisplay.v16-m32-s7"));
    run->setShortcut(Shortcut(Key::k, ModifierFlag::control | ModifierFlag::command), name);
    useStore();
    EXPECT_EQ(store->value(QStringLiteral("KeyboardShortcuts_moveFocusedWindowToDisplay.v16-m32-s7")),
              SettingValue(QStringLiteral("{\"carbonKeyCode\":40,\"carbonModifiers\":4352}")));
    EXPECT_EQ(run->shortcut(name), Shortcut(40, 4352));
}

TEST_F(ShortcutPersistenceTest, RemovedDefaultStaysRemovedAfterRestart) {
    {
        const Name name(QStringLiteral("withDefault"), Shortcut(Key::f5));
        run->setShortcut(std::nullopt, name);
    }
    useStore();
    EXPECT_EQ(store->value(QStringLiteral("KeyboardShortcuts_withDefault")), SettingValue(false));
    const Name again(QStringLiteral("withDefault"), Shortcut(Key::f5));
    EXPECT_FALSE(run->shortcut(again));
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());
}

}  // namespace
