#include <QApplication>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"
#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "KeyboardShortcuts/ViewModifiers.h"
#include "tests/shortcuts/ShortcutTestFixture.h"
#include "tests/support/VirtualDesktop.h"

using namespace KeyboardShortcuts;
namespace Carbon = KeyboardShortcuts::CarbonKeyboardShortcuts;

namespace {

using HotKeyDispatchTest = ShortcutTest;

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
    setShortcut(kControlCommandK, name);
    QStringList events;
    onKeyDown(name, [&] { events.append(QStringLiteral("down")); });
    onKeyUp(name, [&] { events.append(QStringLiteral("up")); });
    press(platform.hotKeys, kControlCommandK);
    release(platform.hotKeys, kControlCommandK);
    EXPECT_EQ(events, QStringList({QStringLiteral("down"), QStringLiteral("up")}));
}

TEST_F(HotKeyDispatchTest, ActionsRunInTheOrderAdded) {
    const Name name(QStringLiteral("ordered"));
    setShortcut(kOptionF5, name);
    QStringList order;
    onKeyUp(name, [&] { order.append(QStringLiteral("first")); });
    onKeyUp(name, [&] { order.append(QStringLiteral("second")); });
    press(platform.hotKeys, kOptionF5);
    release(platform.hotKeys, kOptionF5);
    EXPECT_EQ(order, QStringList({QStringLiteral("first"), QStringLiteral("second")}));
}

TEST_F(HotKeyDispatchTest, TwoNamesWithSameShortcutShareOneHotKeyAndBothRun) {
    const Name first(QStringLiteral("first"));
    const Name second(QStringLiteral("second"));
    setShortcut(kControlCommandK, first);
    setShortcut(kControlCommandK, second);
    int firstRuns = 0;
    int secondRuns = 0;
    onKeyUp(first, [&] { ++firstRuns; });
    onKeyUp(second, [&] { ++secondRuns; });
    EXPECT_EQ(platform.hotKeys.registrations().size(), 1);
    EXPECT_EQ(Carbon::hotKeyIds().size(), 1);
    release(platform.hotKeys, kControlCommandK);
    EXPECT_EQ(firstRuns, 1);
    EXPECT_EQ(secondRuns, 1);
}

TEST_F(HotKeyDispatchTest, ChangedShortcutNoLongerTriggersNameEvenBeforeUnregistering) {
    const Name changed(QStringLiteral("changed"));
    const Name unchanged(QStringLiteral("unchanged"));
    setShortcut(kControlCommandK, changed);
    setShortcut(kControlCommandK, unchanged);
    int changedRuns = 0;
    int unchangedRuns = 0;
    onKeyDown(changed, [&] { ++changedRuns; });
    onKeyDown(unchanged, [&] { ++unchangedRuns; });
    // The store changes behind the hot-key table's back: the old hot key stays registered.
    platform.settings.setString(userDefaultsKey(changed), QString::fromUtf8(kOptionF5.toJson()));
    ASSERT_EQ(platform.hotKeys.registrations().size(), 1);
    press(platform.hotKeys, kControlCommandK);
    EXPECT_EQ(changedRuns, 0);
    EXPECT_EQ(unchangedRuns, 1);
}

TEST_F(HotKeyDispatchTest, SettingIsEnabledToSameValueDoesNothing) {
    const Name name(QStringLiteral("n"));
    setShortcut(kOptionF5, name);
    const auto before = platform.hotKeys.registrations();
    setEnabled(true);
    ASSERT_EQ(platform.hotKeys.registrations().size(), before.size());
    EXPECT_EQ(Carbon::lastHotKeyId(), 1);
    EXPECT_TRUE(Carbon::isActive(1));
}

TEST_F(HotKeyDispatchTest, DisablingAndEnablingReRegistersEveryHotKeyWithItsOldId) {
    const Name a(QStringLiteral("a"));
    const Name b(QStringLiteral("b"));
    setShortcut(kOptionF5, a);
    setShortcut(kControlCommandK, b);
    const QList<int> ids = Carbon::hotKeyIds();
    ASSERT_EQ(ids, QList<int>({1, 2}));
    int runs = 0;
    onKeyDown(a, [&] { ++runs; });

    setEnabled(false);
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());
    EXPECT_EQ(Carbon::hotKeyIds(), ids) << "suspended entries stay in the table";
    EXPECT_FALSE(isEnabled(a));
    press(platform.hotKeys, kOptionF5);
    EXPECT_EQ(runs, 0);

    setEnabled(true);
    EXPECT_EQ(platform.hotKeys.registrations().size(), 2);
    EXPECT_EQ(Carbon::hotKeyIds(), ids);
    EXPECT_TRUE(Carbon::isActive(1));
    EXPECT_TRUE(Carbon::isActive(2));
    EXPECT_EQ(Carbon::shortcutForHotKey(1), kOptionF5);
    EXPECT_EQ(Carbon::shortcutForHotKey(2), kControlCommandK);
    EXPECT_EQ(Carbon::lastHotKeyId(), 2) << "no new ids were handed out";
    press(platform.hotKeys, kOptionF5);
    EXPECT_EQ(runs, 1);
}

TEST_F(HotKeyDispatchTest, FailedRegistrationConsumesIdAndPrintsErrorLine) {
    platform.hotKeys.markTaken(40, 4352);
    const Name taken(QStringLiteral("taken"));
    const Name free(QStringLiteral("free"));
    testing::internal::CaptureStdout();
    setShortcut(kControlCommandK, taken);
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_EQ(output, "Error registering hotkey Super+Ctrl+K: -9878\n");
    EXPECT_EQ(Carbon::lastHotKeyId(), 1);
    EXPECT_TRUE(Carbon::hotKeyIds().isEmpty()) << "a failed registration keeps nothing";
    EXPECT_TRUE(isEnabled(taken)) << "it still counts as registered, without a hot key";
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());
    EXPECT_EQ(getShortcut(taken), kControlCommandK) << "the value is stored anyway";

    setShortcut(kOptionF5, free);
    EXPECT_EQ(Carbon::hotKeyIds(), QList<int>({2}));
}

TEST_F(HotKeyDispatchTest, KeyOrModifierWithoutEquivalentPrintsInvalidHotKeyStatus) {
    const Name name(QStringLiteral("n"));
    platform.hotKeys.refuse(static_cast<quint32>(kOptionF5.carbonKeyCode()),
                            static_cast<quint32>(kOptionF5.carbonModifiers()), {HotKeys::Error::unsupportedModifier});
    platform.hotKeys.refuse(static_cast<quint32>(kControlCommandK.carbonKeyCode()),
                            static_cast<quint32>(kControlCommandK.carbonModifiers()), {HotKeys::Error::unsupportedKey});
    testing::internal::CaptureStdout();
    setShortcut(kOptionF5, name);
    setShortcut(kControlCommandK, name);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Error registering hotkey Alt+F5: -9879\nError registering hotkey Super+Ctrl+K: -9879\n");
    EXPECT_TRUE(Carbon::hotKeyIds().isEmpty());
}

TEST_F(HotKeyDispatchTest, OtherRefusalPrintsTheSystemsOwnCode) {
    const Name name(QStringLiteral("n"));
    platform.hotKeys.refuse(static_cast<quint32>(kOptionF5.carbonKeyCode()),
                            static_cast<quint32>(kOptionF5.carbonModifiers()), {HotKeys::Error::other, 11});
    testing::internal::CaptureStdout();
    setShortcut(kOptionF5, name);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error registering hotkey Alt+F5: 11\n");
    EXPECT_EQ(Carbon::lastHotKeyId(), 1);
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());
}

TEST_F(HotKeyDispatchTest, IdsAreNeverReused) {
    const Name name(QStringLiteral("n"));
    setShortcut(kOptionF5, name);
    setShortcut(std::nullopt, name);
    setShortcut(kOptionF5, name);
    EXPECT_EQ(Carbon::hotKeyIds(), QList<int>({2}));
    setShortcut(kControlCommandK, name);
    EXPECT_EQ(Carbon::hotKeyIds(), QList<int>({3}));
}

TEST_F(HotKeyDispatchTest, SoftRegisterRetriesSuspendedKeysAndReportsFailures) {
    const Name name(QStringLiteral("n"));
    setShortcut(kOptionF5, name);
    setEnabled(false);
    platform.hotKeys.markTaken(static_cast<quint32>(kOptionF5.carbonKeyCode()),
                               static_cast<quint32>(kOptionF5.carbonModifiers()));
    testing::internal::CaptureStdout();
    setEnabled(true);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error registering hotkey Alt+F5: -9878\n");
    EXPECT_FALSE(Carbon::isActive(1));
    platform.hotKeys.markFree(static_cast<quint32>(kOptionF5.carbonKeyCode()),
                              static_cast<quint32>(kOptionF5.carbonModifiers()));
    Carbon::softRegisterAll();
    EXPECT_TRUE(Carbon::isActive(1));
}

TEST_F(HotKeyDispatchTest, NothingRunsWhilePaused) {
    const Name name(QStringLiteral("n"));
    setShortcut(kOptionF5, name);
    int runs = 0;
    onKeyDown(name, [&] { ++runs; });
    setPaused(true);
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty()) << "released so that a recorder gets the keys";
    press(platform.hotKeys, kOptionF5);
    EXPECT_EQ(runs, 0);
    setPaused(false);
    EXPECT_EQ(platform.hotKeys.registrations().size(), 1);
    press(platform.hotKeys, kOptionF5);
    EXPECT_EQ(runs, 1);
}

TEST_F(HotKeyDispatchTest, RemoveHandlerUnregistersUnlessAStreamUsesIt) {
    const Name name(QStringLiteral("n"));
    setShortcut(kOptionF5, name);
    int runs = 0;
    onKeyDown(name, [&] { ++runs; });
    {
        EventStream stream(name);
        removeHandler(name);
        EXPECT_EQ(platform.hotKeys.registrations().size(), 1) << "the stream still uses it";
        press(platform.hotKeys, kOptionF5);
        EXPECT_EQ(runs, 0) << "the handler itself is gone";
    }
    QCoreApplication::processEvents();  // the ended stream leaves the tables on the main loop
    onKeyDown(name, [&] { ++runs; });
    removeHandler(name);
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());
    EXPECT_FALSE(isEnabled(name));
    EXPECT_EQ(getShortcut(name), kOptionF5) << "the stored shortcut stays";
}

TEST_F(HotKeyDispatchTest, OnKeyDownRegistersStoredShortcutThatIsNotRegistered) {
    const Name name(QStringLiteral("n"));
    platform.settings.setString(userDefaultsKey(name), QString::fromUtf8(kOptionF5.toJson()));
    EXPECT_FALSE(isEnabled(name));
    onKeyDown(name, [] {});
    EXPECT_TRUE(isEnabled(name));
    EXPECT_EQ(platform.hotKeys.registrations().size(), 1);
}

TEST_F(HotKeyDispatchTest, RemoveAllHandlersKeepsShortcutsOfStreams) {
    const Name legacy(QStringLiteral("legacy"));
    const Name streamed(QStringLiteral("streamed"));
    setShortcut(kOptionF5, legacy);
    setShortcut(kControlCommandK, streamed);
    onKeyUp(legacy, [] {});
    onKeyUp(streamed, [] {});
    EventStream stream(streamed);
    removeAllHandlers();
    ASSERT_EQ(platform.hotKeys.registrations().size(), 1);
    EXPECT_EQ(platform.hotKeys.registrations().first().keyCode, 40u);
}

TEST_F(HotKeyDispatchTest, DisableKeepsHandlersAndEnableRestores) {
    const Name name(QStringLiteral("n"));
    setShortcut(kOptionF5, name);
    int runs = 0;
    onKeyDown(name, [&] { ++runs; });
    disable({name});
    EXPECT_FALSE(isEnabled(name));
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());
    enable({name});
    EXPECT_TRUE(isEnabled(name));
    press(platform.hotKeys, kOptionF5);
    EXPECT_EQ(runs, 1);
}

TEST_F(HotKeyDispatchTest, EventStreamDeliversBothTypesAndFilteredStreamOne) {
    const Name name(QStringLiteral("n"));
    setShortcut(kOptionF5, name);
    EventStream all(name);
    std::unique_ptr<EventStream> upsOnly(events(EventType::keyUp, name));
    QList<EventType> allEvents;
    QList<EventType> upEvents;
    QObject::connect(&all, &EventStream::event, [&](EventType type) { allEvents.append(type); });
    QObject::connect(upsOnly.get(), &EventStream::event, [&](EventType type) { upEvents.append(type); });
    press(platform.hotKeys, kOptionF5);
    release(platform.hotKeys, kOptionF5);
    EXPECT_EQ(allEvents, QList<EventType>({EventType::keyDown, EventType::keyUp}));
    EXPECT_EQ(upEvents, QList<EventType>({EventType::keyUp}));
}

TEST_F(HotKeyDispatchTest, DestroyedStreamUnregistersOnTheMainLoop) {
    const Name name(QStringLiteral("n"));
    platform.settings.setString(userDefaultsKey(name), QString::fromUtf8(kOptionF5.toJson()));
    auto stream = std::make_unique<EventStream>(name);
    EXPECT_TRUE(isEnabled(name));
    int delivered = 0;
    QObject::connect(stream.get(), &EventStream::keyDown, [&] { ++delivered; });
    stream.reset();
    press(platform.hotKeys, kOptionF5);
    EXPECT_EQ(delivered, 0);
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return !isEnabled(name); }, 2000));
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty());
}

TEST_F(HotKeyDispatchTest, OnKeyboardShortcutLivesAsLongAsItsOwner) {
    const Name name(QStringLiteral("n"));
    setShortcut(kOptionF5, name);
    QList<EventType> seen;
    auto owner = std::make_unique<QObject>();
    onKeyboardShortcut(owner.get(), name, [&](EventType type) { seen.append(type); });
    press(platform.hotKeys, kOptionF5);
    owner.reset();
    release(platform.hotKeys, kOptionF5);
    EXPECT_EQ(seen, QList<EventType>({EventType::keyDown}));
}

TEST_F(HotKeyDispatchTest, NewlyInstalledPlatformStartsWithoutRegistrations) {
    const Name name(QStringLiteral("n"));
    setShortcut(kOptionF5, name);
    ASSERT_EQ(platform.hotKeys.registrations().size(), 1);
    FakePlatform second;  // installs itself
    const Name other(QStringLiteral("other"));
    setShortcut(kOptionF5, other);
    ASSERT_EQ(second.hotKeys.registrations().size(), 1) << "registered with the service installed now";
    int runs = 0;
    onKeyDown(other, [&] { ++runs; });
    press(second.hotKeys, kOptionF5);
    EXPECT_EQ(runs, 1);
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty()) << "the first service's hot key was released";
}

TEST_F(HotKeyDispatchTest, UnknownHotKeyIdIsNotHandled) {
    EXPECT_FALSE(Carbon::handleHotKeyEvent(999, HotKeyEvent::pressed));
    EXPECT_FALSE(Carbon::handleRawKeyEvent(40, 4352, RawKeyEvent::keyDown));
}

TEST_F(HotKeyDispatchTest, HotKeyAndRawKeyEventsRunTheMatchingHandlers) {
    const Name name(QStringLiteral("n"));
    setShortcut(kControlCommandK, name);
    QStringList events;
    onKeyDown(name, [&] { events.append(QStringLiteral("down")); });
    onKeyUp(name, [&] { events.append(QStringLiteral("up")); });
    ASSERT_EQ(Carbon::hotKeyIds(), QList<int>({1}));
    EXPECT_TRUE(Carbon::handleHotKeyEvent(1, HotKeyEvent::released));
    EXPECT_TRUE(Carbon::handleHotKeyEvent(1, HotKeyEvent::pressed));
    EXPECT_TRUE(Carbon::handleRawKeyEvent(40, 4352, RawKeyEvent::probe)) << "a probe matches";
    EXPECT_FALSE(Carbon::handleRawKeyEvent(40, 256, RawKeyEvent::probe)) << "other modifiers do not";
    EXPECT_EQ(events, QStringList({QStringLiteral("up"), QStringLiteral("down")})) << "a probe runs nothing";
    EXPECT_TRUE(Carbon::handleRawKeyEvent(40, 4352, RawKeyEvent::keyDown));
    EXPECT_TRUE(Carbon::handleRawKeyEvent(40, 4352, RawKeyEvent::keyUp));
    EXPECT_EQ(events, QStringList({QStringLiteral("up"), QStringLiteral("down"), QStringLiteral("down"),
                                   QStringLiteral("up")}));
}

TEST_F(HotKeyDispatchTest, SystemListsCandidatesHeldByOthers) {
    platform.hotKeys.markTaken(40, 4352);
    EXPECT_EQ(Carbon::system({kControlCommandK, kOptionF5}), QList<Shortcut>({kControlCommandK}));
}

TEST_F(HotKeyDispatchTest, OpeningAnyMenuSuspendsHotKeysAndKeysReachHandlersNotTheMenu) {
    const Name name(QStringLiteral("menuKey"));  // creating a name starts watching menus
    setShortcut(kControlCommandK, name);
    int downs = 0;
    int ups = 0;
    onKeyDown(name, [&] { ++downs; });
    onKeyUp(name, [&] { ++ups; });

    QMenu menu;
    QAction* item = menu.addAction(QStringLiteral("Keep"));
    item->setShortcut(QKeySequence(QKeyCombination(Qt::ControlModifier | Qt::MetaModifier, Qt::Key_K)));
    bool triggered = false;
    QObject::connect(item, &QAction::triggered, [&] { triggered = true; });
    menu.popup(QPoint(10, 10));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&menu));
    EXPECT_TRUE(isMenuOpen());
    EXPECT_TRUE(platform.hotKeys.registrations().isEmpty()) << "hot keys are suspended while a menu is open";
    EXPECT_TRUE(Carbon::isRawKeyMonitorActive());

    QTest::keyPress(menu.windowHandle(), Qt::Key_K, Qt::ControlModifier | Qt::MetaModifier);
    QTest::keyRelease(menu.windowHandle(), Qt::Key_K, Qt::ControlModifier | Qt::MetaModifier);
    EXPECT_EQ(downs, 1);
    EXPECT_EQ(ups, 1);
    EXPECT_FALSE(triggered) << "the menu did not act on the key";
    EXPECT_TRUE(menu.isVisible());

    // A key that is not a hot key still reaches the menu.
    QTest::keyClick(menu.windowHandle(), Qt::Key_Escape);
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return !menu.isVisible(); }, 2000));
    EXPECT_FALSE(isMenuOpen());
    EXPECT_FALSE(Carbon::isRawKeyMonitorActive());
    ASSERT_EQ(platform.hotKeys.registrations().size(), 1) << "closing the menu registers them again";
    EXPECT_EQ(Carbon::hotKeyIds(), QList<int>({1}));
    EXPECT_TRUE(Carbon::isActive(1)) << "under its old id";
}

}  // namespace
