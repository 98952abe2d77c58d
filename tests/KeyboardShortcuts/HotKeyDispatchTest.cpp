// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "KeyboardShortcuts/ShortcutStore.h"
#include "KeyboardShortcuts/widgets/MenuWatcher.h"
#include "tests/KeyboardShortcuts/ShortcutTestFixture.h"
#include "tests/support/VirtualDesktop.h"

using namespace KeyboardShortcuts;

namespace {

using HotKeyDispatchTest = ShortcutTest;

// The messages of one logging category while it lives.
class CategoryMessages {
public:
    explicit CategoryMessages(const char* category) {
        s_category = category;
        s_messages = &messages;
        m_previous = qInstallMessageHandler(&CategoryMessages::handle);
    }
    ~CategoryMessages() {
        qInstallMessageHandler(m_previous);
        s_messages = nullptr;
    }
    QStringList messages;

private:
    static void handle(QtMsgType, const QMessageLogContext& context, const QString& message) {
        if (s_messages != nullptr && context.category != nullptr && qstrcmp(context.category, s_category) == 0) {
            s_messages->append(message);
        }
    }
    static inline const char* s_category = nullptr;
    static inline QStringList* s_messages = nullptr;
    QtMessageHandler m_previous = nullptr;
};

const Shortcut kControlCommandK(Key::k, ModifierFlag::control | ModifierFlag::command);
const Shortcut kOptionF5(Key::f5, ModifierFlag::option);

void press(FakeHotKeys& hotKeys, const Shortcut& shortcut) {
    hotKeys.press(static_cast<quint32>(shortcut.carbonKeyCode()), static_cast<quint32>(shortcut.carbonModifiers()));
}

void release(FakeHotKeys& hotKeys, const Shortcut& shortcut) {
    hotKeys.release(static_cast<quint32>(shortcut.carbonKeyCode()), static_cast<quint32>(shortcut.carbonModifiers()));
}

TEST_F(HotKeyDispatchTest, KeyDownAndKeyUpHandlersRunOnPressAndRelease) {
    const Name name(QStringLiteral("display"));
    shortcuts.setShortcut(kControlCommandK, name);
    QStringList events;
    shortcuts.onKeyDown(name, [&] { events.append(QStringLiteral("down")); });
    shortcuts.onKeyUp(name, [&] { events.append(QStringLiteral("up")); });
    press(platform.hotKeys, kControlCommandK);
    release(platform.hotKeys, kControlCommandK);
    EXPECT_EQ(events, QStringList({QStringLiteral("down"), QStringLiteral("up")}));
}

TEST_F(HotKeyDispatchTest, ActionsRunInTheOrderAdded) {
    const Name name(QStringLiteral("ordered"));
    shortcuts.setShortcut(kOptionF5, name);
    QStringList order;
    shortcuts.onKeyUp(name, [&] { order.append(QStringLiteral("first")); });
    shortcuts.onKeyUp(name, [&] { order.append(QStringLiteral("second")); });
    press(platform.hotKeys, kOptionF5);
    release(platform.hotKeys, kOptionF5);
    EXPECT_EQ(order, QStringList({QStringLiteral("first"), QStringLiteral("second")}));
}

TEST_F(HotKeyDispatchTest, TwoNamesWithSameShortcutShareOneHotKeyAndBothRun) {
    const Name first(QStringLiteral("first"));
    const Name second(QStringLiteral("second"));
    shortcuts.setShortcut(kControlCommandK, first);
    shortcuts.setShortcut(kControlCommandK, second);
    int firstRuns = 0;
    int secondRuns = 0;
    shortcuts.onKeyUp(first, [&] { ++firstRuns; });
    shortcuts.onKeyUp(second, [&] { ++secondRuns; });
    EXPECT_EQ(platform.hotKeys.registrations().size(), 1);
    EXPECT_EQ(shortcuts.hotKeys().hotKeyIds().size(), 1);
    release(platform.hotKeys, kControlCommandK);
    EXPECT_EQ(firstRuns, 1);
    EXPECT_EQ(secondRuns, 1);
}

TEST_F(HotKeyDispatchTest, ChangedShortcutNoLongerTriggersNameEvenBeforeUnregistering) {
    const Name changed(QStringLiteral("changed"));
    const Name unchanged(QStringLiteral("unchanged"));
    shortcuts.setShortcut(kControlCommandK, changed);
    shortcuts.setShortcut(kControlCommandK, unchanged);
    int changedRuns = 0;
    int unchangedRuns = 0;
    shortcuts.onKeyDown(changed, [&] { ++changedRuns; });
    shortcuts.onKeyDown(unchanged, [&] { ++unchangedRuns; });
    // The store changes behind the hot-key table's back: the old hot key stays registered.
    platform.settings.setString(ShortcutStore::key(changed), QString::fromUtf8(kOptionF5.toJson()));
    ASSERT_EQ(platform.hotKeys.registrations().size(), 1);
    press(platform.hotKeys, kControlCommandK);
    EXPECT_EQ(changedRuns, 0);
    EXPECT_EQ(unchangedRuns, 1);
}

TEST_F(HotKeyDispatchTest, SettingIsEnabledToSameValueDoesNothing) {
    const Name name(QStringLiteral("n"));
    shortcuts.setShortcut(kOptionF5, name);
    const auto before = platform.hotKeys.registrations();
    shortcuts.setEnabled(true);
    ASSERT_EQ(platform.hotKeys.registrations().size(), before.size());
    EXPECT_EQ(shortcuts.hotKeys().lastHotKeyId(), 1);
    EXPECT_TRUE(shortcuts.hotKeys().isActive(1));
}

TEST_F(HotKeyDispatchTest, DisablingAndEnablingReRegistersEveryHotKeyWithItsOldId) {
    const Name a(QStringLiteral("a"));
    const Name b(QStringLiteral("b"));
    shortcuts.setShortcut(kOptionF5, a);
    shortcuts.setShortcut(kControlCommandK, b);
    const QList<int> ids = shortcuts.hotKeys().hotKeyIds();
    ASSERT_EQ(ids, QList<int>({1, 2}));
    int runs = 0;
    shortcuts.onKeyDown(a, [&] { ++runs; });

    shortcuts.setEnabled(false);
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());
    EXPECT_EQ(shortcuts.hotKeys().hotKeyIds(), ids) << "suspended entries stay in the table";
    EXPECT_FALSE(shortcuts.isEnabled(a));
    press(platform.hotKeys, kOptionF5);
    EXPECT_EQ(runs, 0);

    shortcuts.setEnabled(true);
    EXPECT_EQ(platform.hotKeys.registrations().size(), 2);
    EXPECT_EQ(shortcuts.hotKeys().hotKeyIds(), ids);
    EXPECT_TRUE(shortcuts.hotKeys().isActive(1));
    EXPECT_TRUE(shortcuts.hotKeys().isActive(2));
    EXPECT_EQ(shortcuts.hotKeys().shortcutForHotKey(1), kOptionF5);
    EXPECT_EQ(shortcuts.hotKeys().shortcutForHotKey(2), kControlCommandK);
    EXPECT_EQ(shortcuts.hotKeys().lastHotKeyId(), 2) << "no new ids were handed out";
    press(platform.hotKeys, kOptionF5);
    EXPECT_EQ(runs, 1);
}

TEST_F(HotKeyDispatchTest, FailedRegistrationConsumesIdAndPrintsErrorLine) {
    platform.hotKeys.markTaken(40, 4352);
    const Name taken(QStringLiteral("taken"));
    const Name free(QStringLiteral("free"));
    testing::internal::CaptureStdout();
    shortcuts.setShortcut(kControlCommandK, taken);
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_EQ(output, "Error registering hotkey Super+Ctrl+K: -9878\n");
    EXPECT_EQ(shortcuts.hotKeys().lastHotKeyId(), 1);
    EXPECT_TRUE(shortcuts.hotKeys().hotKeyIds().isEmpty()) << "a failed registration keeps nothing";
    EXPECT_TRUE(shortcuts.isEnabled(taken)) << "it still counts as registered, without a hot key";
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());
    EXPECT_EQ(shortcuts.shortcut(taken), kControlCommandK) << "the value is stored anyway";

    shortcuts.setShortcut(kOptionF5, free);
    EXPECT_EQ(shortcuts.hotKeys().hotKeyIds(), QList<int>({2}));
}

TEST_F(HotKeyDispatchTest, RefusalIsAlsoLoggedInTheShortcutsCategory) {
    platform.hotKeys.markTaken(40, 4352);
    CategoryMessages log("lattica.shortcuts");
    testing::internal::CaptureStdout();
    shortcuts.setShortcut(kControlCommandK, Name(QStringLiteral("taken")));
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(log.messages, QStringList({QStringLiteral("Error registering hotkey Super+Ctrl+K: -9878")}));
}

TEST_F(HotKeyDispatchTest, KeyOrModifierWithoutEquivalentPrintsInvalidHotKeyStatus) {
    const Name name(QStringLiteral("n"));
    platform.hotKeys.refuse(static_cast<quint32>(kOptionF5.carbonKeyCode()),
                            static_cast<quint32>(kOptionF5.carbonModifiers()), {HotKeys::Error::unsupportedModifier});
    platform.hotKeys.refuse(static_cast<quint32>(kControlCommandK.carbonKeyCode()),
                            static_cast<quint32>(kControlCommandK.carbonModifiers()), {HotKeys::Error::unsupportedKey});
    testing::internal::CaptureStdout();
    shortcuts.setShortcut(kOptionF5, name);
    shortcuts.setShortcut(kControlCommandK, name);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Error registering hotkey Alt+F5: -9879\nError registering hotkey Super+Ctrl+K: -9879\n");
    EXPECT_TRUE(shortcuts.hotKeys().hotKeyIds().isEmpty());
}

TEST_F(HotKeyDispatchTest, OtherRefusalPrintsTheSystemsOwnCode) {
    const Name name(QStringLiteral("n"));
    platform.hotKeys.refuse(static_cast<quint32>(kOptionF5.carbonKeyCode()),
                            static_cast<quint32>(kOptionF5.carbonModifiers()), {HotKeys::Error::other, 11});
    testing::internal::CaptureStdout();
    shortcuts.setShortcut(kOptionF5, name);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error registering hotkey Alt+F5: 11\n");
    EXPECT_EQ(shortcuts.hotKeys().lastHotKeyId(), 1);
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());
}

TEST_F(HotKeyDispatchTest, IdsAreNeverReused) {
    const Name name(QStringLiteral("n"));
    shortcuts.setShortcut(kOptionF5, name);
    shortcuts.setShortcut(std::nullopt, name);
    shortcuts.setShortcut(kOptionF5, name);
    EXPECT_EQ(shortcuts.hotKeys().hotKeyIds(), QList<int>({2}));
    shortcuts.setShortcut(kControlCommandK, name);
    EXPECT_EQ(shortcuts.hotKeys().hotKeyIds(), QList<int>({3}));
}

TEST_F(HotKeyDispatchTest, SoftRegisterRetriesSuspendedKeysAndReportsFailures) {
    const Name name(QStringLiteral("n"));
    shortcuts.setShortcut(kOptionF5, name);
    shortcuts.setEnabled(false);
    platform.hotKeys.markTaken(static_cast<quint32>(kOptionF5.carbonKeyCode()),
                               static_cast<quint32>(kOptionF5.carbonModifiers()));
    testing::internal::CaptureStdout();
    shortcuts.setEnabled(true);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error registering hotkey Alt+F5: -9878\n");
    EXPECT_FALSE(shortcuts.hotKeys().isActive(1));
    platform.hotKeys.markFree(static_cast<quint32>(kOptionF5.carbonKeyCode()),
                              static_cast<quint32>(kOptionF5.carbonModifiers()));
    shortcuts.setEnabled(false);
    shortcuts.setEnabled(true);
    EXPECT_TRUE(shortcuts.hotKeys().isActive(1));
}

TEST_F(HotKeyDispatchTest, RefusalAtResumeIsReportedOnceUntilItsRegistrationChanges) {
    const Name name(QStringLiteral("n"));
    shortcuts.setShortcut(kOptionF5, name);
    shortcuts.onKeyUp(name, [] {});
    ASSERT_TRUE(shortcuts.hotKeys().isActive(1));
    const auto keyCode = static_cast<quint32>(kOptionF5.carbonKeyCode());
    const auto modifiers = static_cast<quint32>(kOptionF5.carbonModifiers());
    platform.hotKeys.markTaken(keyCode, modifiers);
    // Each recording, each menu and the master switch end with a resume that asks for the key again.
    const auto resumeTwiceEachWay = [this] {
        for (int i = 0; i < 2; ++i) {
            shortcuts.setPaused(true);
            shortcuts.setPaused(false);
            shortcuts.setEnabled(false);
            shortcuts.setEnabled(true);
        }
    };
    testing::internal::CaptureStdout();
    resumeTwiceEachWay();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error registering hotkey Alt+F5: -9878\n");
    EXPECT_FALSE(shortcuts.hotKeys().isActive(1));

    // Freed, the key is taken back at the next resume; refused again later, that is news again.
    platform.hotKeys.markFree(keyCode, modifiers);
    testing::internal::CaptureStdout();
    resumeTwiceEachWay();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_TRUE(shortcuts.hotKeys().isActive(1));
    platform.hotKeys.markTaken(keyCode, modifiers);
    testing::internal::CaptureStdout();
    resumeTwiceEachWay();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error registering hotkey Alt+F5: -9878\n");
}

TEST_F(HotKeyDispatchTest, StoredShortcutThatBreaksTheRecorderRulesIsIgnoredOnceAndKeptAsStored) {
    // The letter A with no modifier, as a hand-edited preferences file may hold it.
    const Name bare(QStringLiteral("bare"));
    const QString bareJson = QStringLiteral("{\"carbonKeyCode\":0,\"carbonModifiers\":0}");
    platform.settings.setString(ShortcutStore::key(bare), bareJson);
    // Alt+A where the hot-key service refuses Alt alone.
    platform.hotKeys.optionOnlyRestricted = true;
    const Name altOnly(QStringLiteral("altOnly"));
    const QString altJson = QString::fromUtf8(Shortcut(Key::a, ModifierFlag::option).toJson());
    platform.settings.setString(ShortcutStore::key(altOnly), altJson);
    // F5 alone and Ctrl+A stay allowed.
    const Name function(QStringLiteral("function"));
    platform.settings.setString(ShortcutStore::key(function), QString::fromUtf8(Shortcut(Key::f5).toJson()));

    CategoryMessages log("lattica.shortcuts");
    int runs = 0;
    for (const Name& name : {bare, altOnly, function}) {
        shortcuts.onKeyDown(name, [&] { ++runs; });
        shortcuts.onKeyUp(name, [&] { ++runs; });
    }
    ASSERT_EQ(platform.hotKeys.registrations().size(), 1) << "only F5 is grabbed";
    EXPECT_EQ(platform.hotKeys.registrations().first().keyCode, static_cast<quint32>(Key::f5.rawValue()));
    EXPECT_FALSE(shortcuts.shortcut(bare).has_value());
    EXPECT_FALSE(shortcuts.isEnabled(altOnly));
    press(platform.hotKeys, Shortcut(Key::a.rawValue(), 0));
    EXPECT_TRUE(shortcuts.hotKeys().handleRawKeyEvent(Key::f5.rawValue(), 0, RawKeyEvent::keyDown));
    EXPECT_FALSE(shortcuts.hotKeys().handleRawKeyEvent(Key::a.rawValue(), 0, RawKeyEvent::keyDown));
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(log.messages.size(), 2) << log.messages.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(platform.settings.stringValue(ShortcutStore::key(bare)), bareJson) << "left as stored";
    EXPECT_EQ(platform.settings.stringValue(ShortcutStore::key(altOnly)), altJson) << "left as stored";

    // Recording a valid one replaces it as usual.
    shortcuts.setShortcut(kControlCommandK, bare);
    EXPECT_EQ(shortcuts.shortcut(bare), kControlCommandK);
    EXPECT_EQ(platform.hotKeys.registrations().size(), 2);
}

TEST_F(HotKeyDispatchTest, NothingRunsWhilePaused) {
    const Name name(QStringLiteral("n"));
    shortcuts.setShortcut(kOptionF5, name);
    int runs = 0;
    shortcuts.onKeyDown(name, [&] { ++runs; });
    shortcuts.setPaused(true);
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty()) << "released so that a recorder gets the keys";
    press(platform.hotKeys, kOptionF5);
    EXPECT_EQ(runs, 0);
    shortcuts.setPaused(false);
    EXPECT_EQ(platform.hotKeys.registrations().size(), 1);
    press(platform.hotKeys, kOptionF5);
    EXPECT_EQ(runs, 1);
}

TEST_F(HotKeyDispatchTest, OnKeyDownRegistersStoredShortcutThatIsNotRegistered) {
    const Name name(QStringLiteral("n"));
    platform.settings.setString(ShortcutStore::key(name), QString::fromUtf8(kOptionF5.toJson()));
    EXPECT_FALSE(shortcuts.isEnabled(name));
    shortcuts.onKeyDown(name, [] {});
    EXPECT_TRUE(shortcuts.isEnabled(name));
    EXPECT_EQ(platform.hotKeys.registrations().size(), 1);
}

TEST_F(HotKeyDispatchTest, DisableKeepsHandlersAndEnableRestores) {
    const Name name(QStringLiteral("n"));
    shortcuts.setShortcut(kOptionF5, name);
    int runs = 0;
    shortcuts.onKeyDown(name, [&] { ++runs; });
    shortcuts.disable({name});
    EXPECT_FALSE(shortcuts.isEnabled(name));
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());
    shortcuts.enable({name});
    EXPECT_TRUE(shortcuts.isEnabled(name));
    press(platform.hotKeys, kOptionF5);
    EXPECT_EQ(runs, 1);
}

TEST_F(HotKeyDispatchTest, UnknownHotKeyIdIsNotHandled) {
    EXPECT_FALSE(shortcuts.hotKeys().handleHotKeyEvent(999, HotKeyEvent::pressed));
    EXPECT_FALSE(shortcuts.hotKeys().handleRawKeyEvent(40, 4352, RawKeyEvent::keyDown));
}

TEST_F(HotKeyDispatchTest, HotKeyAndRawKeyEventsRunTheMatchingHandlers) {
    const Name name(QStringLiteral("n"));
    shortcuts.setShortcut(kControlCommandK, name);
    QStringList events;
    shortcuts.onKeyDown(name, [&] { events.append(QStringLiteral("down")); });
    shortcuts.onKeyUp(name, [&] { events.append(QStringLiteral("up")); });
    ASSERT_EQ(shortcuts.hotKeys().hotKeyIds(), QList<int>({1}));
    EXPECT_TRUE(shortcuts.hotKeys().handleHotKeyEvent(1, HotKeyEvent::released));
    EXPECT_TRUE(shortcuts.hotKeys().handleHotKeyEvent(1, HotKeyEvent::pressed));
    EXPECT_TRUE(shortcuts.hotKeys().handleRawKeyEvent(40, 4352, RawKeyEvent::probe)) << "a probe matches";
    EXPECT_FALSE(shortcuts.hotKeys().handleRawKeyEvent(40, 256, RawKeyEvent::probe)) << "other modifiers do not";
    EXPECT_EQ(events, QStringList({QStringLiteral("up"), QStringLiteral("down")})) << "a probe runs nothing";
    EXPECT_TRUE(shortcuts.hotKeys().handleRawKeyEvent(40, 4352, RawKeyEvent::keyDown));
    EXPECT_TRUE(shortcuts.hotKeys().handleRawKeyEvent(40, 4352, RawKeyEvent::keyUp));
    EXPECT_EQ(events, QStringList({QStringLiteral("up"), QStringLiteral("down"), QStringLiteral("down"),
                                   QStringLiteral("up")}));
}

TEST_F(HotKeyDispatchTest, SystemListsCandidatesHeldByOthers) {
    platform.hotKeys.markTaken(40, 4352);
    EXPECT_EQ(shortcuts.hotKeys().heldByOthers({kControlCommandK, kOptionF5}), QList<Shortcut>({kControlCommandK}));
}

TEST_F(HotKeyDispatchTest, OpeningAnyMenuSuspendsHotKeysAndKeysReachHandlersNotTheMenu) {
    const Name name(QStringLiteral("menuKey"));
    shortcuts.setShortcut(kControlCommandK, name);
    int downs = 0;
    int ups = 0;
    shortcuts.onKeyDown(name, [&] { ++downs; });
    shortcuts.onKeyUp(name, [&] { ++ups; });
    const MenuWatcher menuWatcher(shortcuts);

    QMenu menu;
    QAction* item = menu.addAction(QStringLiteral("Keep"));
    item->setShortcut(QKeySequence(QKeyCombination(Qt::ControlModifier | Qt::MetaModifier, Qt::Key_K)));
    bool triggered = false;
    QObject::connect(item, &QAction::triggered, [&] { triggered = true; });
    menu.popup(QPoint(10, 10));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&menu));
    EXPECT_TRUE(shortcuts.isMenuOpen());
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty()) << "hot keys are suspended while a menu is open";
    EXPECT_TRUE(shortcuts.hotKeys().isRawKeyMonitorActive());

    QTest::keyPress(menu.windowHandle(), Qt::Key_K, Qt::ControlModifier | Qt::MetaModifier);
    QTest::keyRelease(menu.windowHandle(), Qt::Key_K, Qt::ControlModifier | Qt::MetaModifier);
    EXPECT_EQ(downs, 1);
    EXPECT_EQ(ups, 1);
    EXPECT_FALSE(triggered) << "the menu did not act on the key";
    EXPECT_TRUE(menu.isVisible());

    // A key that is not a hot key still reaches the menu.
    QTest::keyClick(menu.windowHandle(), Qt::Key_Escape);
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return !menu.isVisible(); }, 2000));
    EXPECT_FALSE(shortcuts.isMenuOpen());
    EXPECT_FALSE(shortcuts.hotKeys().isRawKeyMonitorActive());
    ASSERT_EQ(platform.hotKeys.registrations().size(), 1) << "closing the menu registers them again";
    EXPECT_EQ(shortcuts.hotKeys().hotKeyIds(), QList<int>({1}));
    EXPECT_TRUE(shortcuts.hotKeys().isActive(1)) << "under its old id";
}

TEST_F(HotKeyDispatchTest, RemoveHandlerUnregistersAndKeepsTheStoredShortcut) {
    const Name name(QStringLiteral("n"));
    shortcuts.setShortcut(kOptionF5, name);
    int runs = 0;
    shortcuts.onKeyDown(name, [&] { ++runs; });
    shortcuts.removeHandler(name);
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());
    EXPECT_FALSE(shortcuts.isEnabled(name));
    EXPECT_EQ(shortcuts.shortcut(name), kOptionF5) << "the stored shortcut stays";
    shortcuts.onKeyDown(name, [&] { ++runs; });
    press(platform.hotKeys, kOptionF5);
    EXPECT_EQ(runs, 1) << "only the handler added after the removal runs";
}

TEST_F(HotKeyDispatchTest, RemoveAllHandlersUnregistersEveryHandledShortcut) {
    const Name first(QStringLiteral("first"));
    const Name second(QStringLiteral("second"));
    const Name unhandled(QStringLiteral("unhandled"));
    shortcuts.setShortcut(kOptionF5, first);
    shortcuts.setShortcut(kControlCommandK, second);
    shortcuts.setShortcut(Shortcut(Key::j, ModifierFlag::control), unhandled);
    shortcuts.onKeyUp(first, [] {});
    shortcuts.onKeyDown(second, [] {});
    ASSERT_EQ(platform.hotKeys.registrations().size(), 3);
    shortcuts.removeAllHandlers();
    ASSERT_EQ(platform.hotKeys.registrations().size(), 1) << "a stored shortcut without handlers stays";
    EXPECT_EQ(platform.hotKeys.registrations().first().keyCode,
              static_cast<quint32>(Shortcut(Key::j, ModifierFlag::control).carbonKeyCode()));
}

TEST_F(HotKeyDispatchTest, EachInstanceHasItsOwnTableAndReleasesItsHotKeysWhenDestroyed) {
    const Name name(QStringLiteral("n"));
    shortcuts.setShortcut(kOptionF5, name);
    int ownRuns = 0;
    shortcuts.onKeyDown(name, [&] { ++ownRuns; });
    {
        ActionShortcuts other;
        const Name otherName(QStringLiteral("other"));
        int otherRuns = 0;
        other.setShortcut(kControlCommandK, otherName);
        other.onKeyDown(otherName, [&] { ++otherRuns; });
        EXPECT_EQ(other.hotKeys().lastHotKeyId(), 1) << "ids count per instance";
        press(platform.hotKeys, kControlCommandK);
        EXPECT_EQ(otherRuns, 1);
        EXPECT_EQ(ownRuns, 0);
        EXPECT_EQ(platform.hotKeys.registrations().size(), 2);
    }
    ASSERT_EQ(platform.hotKeys.registrations().size(), 1) << "the destroyed instance released its hot key";
    press(platform.hotKeys, kOptionF5);
    EXPECT_EQ(ownRuns, 1);
}

TEST_F(HotKeyDispatchTest, NameIsAValueThatStoresNothing) {
    const Name name(QStringLiteral("withDefault"), kOptionF5);
    EXPECT_FALSE(platform.settings.contains(ShortcutStore::key(name))) << "constructing a name writes nothing";
    EXPECT_FALSE(shortcuts.isStored(name));
    EXPECT_EQ(shortcuts.shortcut(name), kOptionF5) << "the default is read while nothing is stored";
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());
}

}  // namespace
