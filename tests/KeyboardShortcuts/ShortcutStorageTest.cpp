// SPDX-License-Identifier: MIT
#include <QSignalSpy>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "tests/KeyboardShortcuts/ShortcutTestFixture.h"

using namespace KeyboardShortcuts;

namespace {

using ShortcutStorageTest = ShortcutTest;

const Shortcut kControlCommandK(Key::k, ModifierFlag::control | ModifierFlag::command);
const Shortcut kOptionF5(Key::f5, ModifierFlag::option);

// Records the names announced through the change signal.
class ChangeRecorder {
public:
    explicit ChangeRecorder(ActionShortcuts& shortcuts) {
        m_connection = QObject::connect(&shortcuts, &ActionShortcuts::shortcutChanged,
                                        [this](const Name& name) { names.append(name.rawValue()); });
    }
    ~ChangeRecorder() { QObject::disconnect(m_connection); }
    QStringList names;

private:
    QMetaObject::Connection m_connection;
};

TEST_F(ShortcutStorageTest, SetShortcutStoresJsonStringUnderPrefixedKey) {
    const Name name(QStringLiteral("moveFocusedWindowToDisplay.v16-m32-s7"));
    shortcuts.setShortcut(kControlCommandK, name);
    EXPECT_EQ(platform.settings.value(QStringLiteral("KeyboardShortcuts_moveFocusedWindowToDisplay.v16-m32-s7")),
              SettingValue(QStringLiteral("{\"carbonKeyCode\":40,\"carbonModifiers\":4352}")));
    EXPECT_EQ(shortcuts.shortcut(name), kControlCommandK);
}

TEST_F(ShortcutStorageTest, NamesCompareByRawValueOnly) {
    const Name plain(QStringLiteral("same"));
    const Name withDefault(QStringLiteral("same"), kOptionF5);
    EXPECT_EQ(plain, withDefault);
    EXPECT_EQ(qHash(plain), qHash(withDefault));
    EXPECT_FALSE(plain == Name(QStringLiteral("other")));
}

TEST_F(ShortcutStorageTest, NameWithDefaultOnFreshSystemReadsAndRegistersDefaultWithoutStoringIt) {
    const Name name(QStringLiteral("withDefault"), kControlCommandK);
    EXPECT_FALSE(platform.settings.contains(QStringLiteral("KeyboardShortcuts_withDefault")));
    EXPECT_EQ(shortcuts.shortcut(name), kControlCommandK);
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty()) << "nothing is registered before a handler is added";
    shortcuts.onKeyDown(name, [] {});
    ASSERT_EQ(platform.hotKeys.registrations().size(), 1);
    EXPECT_EQ(platform.hotKeys.registrations().first().keyCode, 40u);
    EXPECT_EQ(platform.hotKeys.registrations().first().modifiers, 4352u);
}

TEST_F(ShortcutStorageTest, NameWithDefaultAfterUserRemovedItKeepsFalseAndRegistersNothing) {
    {
        const Name name(QStringLiteral("withDefault"), kControlCommandK);
        shortcuts.setShortcut(std::nullopt, name);
    }
    EXPECT_EQ(platform.settings.value(QStringLiteral("KeyboardShortcuts_withDefault")), SettingValue(false));
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());

    const Name again(QStringLiteral("withDefault"), kControlCommandK);
    EXPECT_EQ(platform.settings.value(QStringLiteral("KeyboardShortcuts_withDefault")), SettingValue(false));
    EXPECT_FALSE(shortcuts.shortcut(again));
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());
    EXPECT_TRUE(shortcuts.isStored(again)) << "a stored false counts as contained";
}

TEST_F(ShortcutStorageTest, RemovingShortcutWithoutDefaultRemovesKey) {
    const Name name(QStringLiteral("plain"));
    shortcuts.setShortcut(kControlCommandK, name);
    shortcuts.setShortcut(std::nullopt, name);
    EXPECT_FALSE(platform.settings.value(QStringLiteral("KeyboardShortcuts_plain")).has_value());
    EXPECT_FALSE(shortcuts.isStored(name));
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());
}

TEST_F(ShortcutStorageTest, SetNilOnEmptyNamePostsNoNotification) {
    const Name name(QStringLiteral("empty"));
    ChangeRecorder changes(shortcuts);
    shortcuts.setShortcut(std::nullopt, name);
    EXPECT_TRUE(changes.names.isEmpty());
    shortcuts.setShortcut(kOptionF5, name);
    shortcuts.setShortcut(std::nullopt, name);
    EXPECT_EQ(changes.names, QStringList({QStringLiteral("empty"), QStringLiteral("empty")}));
}

TEST_F(ShortcutStorageTest, NotificationCarriesTheName) {
    const Name name(QStringLiteral("announced"));
    ChangeRecorder changes(shortcuts);
    shortcuts.setShortcut(kOptionF5, name);
    EXPECT_EQ(changes.names, QStringList({QStringLiteral("announced")}));
}

TEST_F(ShortcutStorageTest, SettingShortcutAnotherNameUsesKeepsOneRegistration) {
    const Name first(QStringLiteral("first"));
    const Name second(QStringLiteral("second"));
    shortcuts.setShortcut(kControlCommandK, first);
    shortcuts.setShortcut(kControlCommandK, second);
    EXPECT_EQ(platform.hotKeys.registrations().size(), 1);
    int firstRuns = 0;
    int secondRuns = 0;
    shortcuts.onKeyDown(first, [&] { ++firstRuns; });
    shortcuts.onKeyDown(second, [&] { ++secondRuns; });
    platform.hotKeys.press(40, 4352);
    EXPECT_EQ(firstRuns, 1);
    EXPECT_EQ(secondRuns, 1);
}

TEST_F(ShortcutStorageTest, StoredValuesThatAreNotStringsReadAsNoShortcut) {
    const Name name(QStringLiteral("odd"));
    for (const SettingValue& value :
         {SettingValue(false), SettingValue(true), SettingValue(qint64(40)),
          SettingValue(QByteArrayLiteral("{\"carbonKeyCode\":40,\"carbonModifiers\":4352}"))}) {
        platform.settings.setValue(QStringLiteral("KeyboardShortcuts_odd"), value);
        EXPECT_FALSE(shortcuts.shortcut(name)) << value.index();
    }
}

TEST_F(ShortcutStorageTest, InvalidJsonReadsAsNoShortcut) {
    const Name name(QStringLiteral("broken"));
    platform.settings.setString(QStringLiteral("KeyboardShortcuts_broken"), QStringLiteral("{\"carbonKeyCode\":40,"));
    EXPECT_FALSE(shortcuts.shortcut(name));
}

TEST_F(ShortcutStorageTest, JsonMissingAKeyReadsAsNoShortcut) {
    const Name name(QStringLiteral("half"));
    platform.settings.setString(QStringLiteral("KeyboardShortcuts_half"), QStringLiteral("{\"carbonKeyCode\":40}"));
    EXPECT_FALSE(shortcuts.shortcut(name));
}

TEST_F(ShortcutStorageTest, NumbersOutside32BitsReadAsNoShortcut) {
    const Name name(QStringLiteral("huge"));
    platform.settings.setString(QStringLiteral("KeyboardShortcuts_huge"),
                                QStringLiteral("{\"carbonKeyCode\":40,\"carbonModifiers\":99999999999}"));
    EXPECT_FALSE(shortcuts.shortcut(name));
}

TEST_F(ShortcutStorageTest, NextSetOverwritesCorruptValue) {
    const Name name(QStringLiteral("corrupt"));
    for (const SettingValue& corrupt :
         {SettingValue(qint64(7)), SettingValue(QStringLiteral("nonsense")),
          SettingValue(QStringLiteral("{\"carbonModifiers\":1}")),
          SettingValue(QStringLiteral("{\"carbonKeyCode\":-4294967296,\"carbonModifiers\":0}"))}) {
        platform.settings.setValue(QStringLiteral("KeyboardShortcuts_corrupt"), corrupt);
        shortcuts.setShortcut(kOptionF5, name);
        EXPECT_EQ(platform.settings.value(QStringLiteral("KeyboardShortcuts_corrupt")),
                  SettingValue(QString::fromUtf8(kOptionF5.toJson())));
        EXPECT_EQ(shortcuts.shortcut(name), kOptionF5);
        shortcuts.setShortcut(std::nullopt, name);
    }
}

TEST_F(ShortcutStorageTest, ResetRestoresDefaultOrRemoves) {
    const Name withDefault(QStringLiteral("withDefault"), kControlCommandK);
    const Name plain(QStringLiteral("plain"));
    shortcuts.setShortcut(kOptionF5, withDefault);
    shortcuts.setShortcut(kOptionF5, plain);
    shortcuts.reset({withDefault, plain});
    EXPECT_EQ(shortcuts.shortcut(withDefault), kControlCommandK);
    EXPECT_FALSE(shortcuts.isStored(plain));
}

TEST_F(ShortcutStorageTest, ResetAllLeavesNoPrefixedKey) {
    const Name withDefault(QStringLiteral("withDefault"), kControlCommandK);
    const Name plain(QStringLiteral("plain"));
    const Name removed(QStringLiteral("removed"), kOptionF5);
    shortcuts.setShortcut(Shortcut(Key::a, ModifierFlag::command), plain);
    shortcuts.setShortcut(std::nullopt, removed);
    platform.settings.setInteger(QStringLiteral("KeyboardShortcuts_garbage"), 3);
    platform.settings.setBool(QStringLiteral("unrelated"), true);
    shortcuts.resetAll();
    for (const QString& key : platform.settings.keys()) {
        EXPECT_FALSE(key.startsWith(QStringLiteral("KeyboardShortcuts_"))) << key.toStdString();
    }
    EXPECT_TRUE(platform.settings.contains(QStringLiteral("unrelated")));
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());
    EXPECT_EQ(shortcuts.shortcut(withDefault), kControlCommandK) << "with nothing stored a name reads as its default";
    EXPECT_EQ(shortcuts.shortcut(removed), kOptionF5) << "a removed default comes back once its stored false is gone";
}

TEST_F(ShortcutStorageTest, ChangingShortcutUnregistersTheOldHotKey) {
    const Name name(QStringLiteral("changing"));
    shortcuts.setShortcut(kControlCommandK, name);
    shortcuts.setShortcut(kOptionF5, name);
    ASSERT_EQ(platform.hotKeys.registrations().size(), 1);
    EXPECT_EQ(platform.hotKeys.registrations().first().keyCode, static_cast<quint32>(Key::f5.rawValue()));
}

}  // namespace
