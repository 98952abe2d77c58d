#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QWidget>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "KeyboardShortcuts/LocalEventMonitor.h"
#include "KeyboardShortcuts/MenuItemShortcut.h"
#include "KeyboardShortcuts/Notifications.h"
#include "KeyboardShortcuts/ObjectAssociation.h"
#include "KeyboardShortcuts/ViewModifiers.h"
#include "tests/shortcuts/ShortcutTestFixture.h"
#include "tests/support/VirtualDesktop.h"

using namespace KeyboardShortcuts;

namespace {

using MenuItemShortcutTest = ShortcutTest;

const Shortcut kControlOptionK(Key::k, ModifierFlag::control | ModifierFlag::option);
const Shortcut kCommandShiftF2(Key::f2, ModifierFlag::command | ModifierFlag::shift);

QKeySequence sequence(Qt::KeyboardModifiers modifiers, Qt::Key key) {
    return QKeySequence(QKeyCombination(modifiers, key));
}

TEST_F(MenuItemShortcutTest, ShortcutBecomesKeyEquivalentAndMask) {
    QAction item;
    setShortcut(&item, kControlOptionK);
    EXPECT_EQ(item.shortcut(), sequence(Qt::ControlModifier | Qt::AltModifier, Qt::Key_K));
    EXPECT_EQ(keyEquivalent(&item), QStringLiteral("k"));
    EXPECT_EQ(keyEquivalentModifierMask(&item), ModifierFlag::control | ModifierFlag::option);
    setShortcut(&item, kCommandShiftF2);
    EXPECT_EQ(item.shortcut(), sequence(Qt::MetaModifier | Qt::ShiftModifier, Qt::Key_F2));
    EXPECT_EQ(keyEquivalent(&item), QString(QChar(0xF705)));
    setShortcut(&item, Shortcut(Key::return_, ModifierFlag::command));
    EXPECT_EQ(item.shortcut(), sequence(Qt::MetaModifier, Qt::Key_Return));
    setShortcut(&item, std::optional<Shortcut>());
    EXPECT_TRUE(item.shortcut().isEmpty());
}

TEST_F(MenuItemShortcutTest, KeypadKeysHaveNoMenuKeyEquivalent) {
    QAction item;
    setShortcut(&item, Shortcut(Key::keypad5, ModifierFlag::command));
    EXPECT_TRUE(item.shortcut().isEmpty());
}

TEST_F(MenuItemShortcutTest, ItemBoundToNameFollowsChangesAsynchronously) {
    const Name name(QStringLiteral("bound"));
    setShortcut(kControlOptionK, name);
    QAction item;
    setShortcutFor(&item, name);
    EXPECT_EQ(item.shortcut(), sequence(Qt::ControlModifier | Qt::AltModifier, Qt::Key_K));
    setShortcut(kCommandShiftF2, name);
    EXPECT_EQ(item.shortcut(), sequence(Qt::ControlModifier | Qt::AltModifier, Qt::Key_K))
        << "applied on the main loop";
    EXPECT_TRUE(VirtualDesktop::waitUntil(
        [&] { return item.shortcut() == sequence(Qt::MetaModifier | Qt::ShiftModifier, Qt::Key_F2); }));
}

TEST_F(MenuItemShortcutTest, ItemBoundToNameWhoseShortcutIsRemovedShowsNoKeyEquivalent) {
    const Name name(QStringLiteral("bound"));
    setShortcut(kControlOptionK, name);
    QAction item;
    setShortcutFor(&item, name);
    setShortcut(std::nullopt, name);
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return item.shortcut().isEmpty(); }));
}

TEST_F(MenuItemShortcutTest, BindingSecondNameKeepsFirstObservation) {
    const Name first(QStringLiteral("first"));
    const Name second(QStringLiteral("second"));
    setShortcut(kControlOptionK, first);
    setShortcut(kCommandShiftF2, second);
    QAction item;
    setShortcutFor(&item, first);
    setShortcutFor(&item, second);
    EXPECT_EQ(item.shortcut(), sequence(Qt::MetaModifier | Qt::ShiftModifier, Qt::Key_F2));
    // A later change of the first name re-applies the first name's shortcut to the item.
    setShortcut(Shortcut(Key::j, ModifierFlag::control), first);
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return item.shortcut() == sequence(Qt::ControlModifier, Qt::Key_J); }));
}

TEST_F(MenuItemShortcutTest, UnbindingRemovesOnlyTheObservationTheItemHolds) {
    const Name first(QStringLiteral("first"));
    const Name second(QStringLiteral("second"));
    setShortcut(kControlOptionK, first);
    setShortcut(kCommandShiftF2, second);
    QAction item;
    setShortcutFor(&item, first);
    setShortcutFor(&item, second);
    setShortcutFor(&item, std::nullopt);
    EXPECT_TRUE(item.shortcut().isEmpty());
    setShortcut(Shortcut(Key::f3), second);
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    EXPECT_TRUE(item.shortcut().isEmpty()) << "the second observation is gone";
    setShortcut(Shortcut(Key::f4), first);
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return item.shortcut() == sequence(Qt::NoModifier, Qt::Key_F4); }))
        << "the first one was never removed";
}

TEST_F(MenuItemShortcutTest, MatchingFindsItemsInSubmenusAndComparesMasks) {
    QMenu root;
    QMenu* sub = root.addMenu(QStringLiteral("Sub"));
    QAction* plain = root.addAction(QStringLiteral("Plain"));
    plain->setShortcut(sequence(Qt::ControlModifier, Qt::Key_K));
    QAction* deep = sub->addAction(QStringLiteral("Deep"));
    deep->setShortcut(sequence(Qt::ControlModifier | Qt::AltModifier, Qt::Key_K));
    QAction* arrow = sub->addAction(QStringLiteral("Arrow"));
    arrow->setShortcut(sequence(Qt::MetaModifier, Qt::Key_Up));
    EXPECT_EQ(menuItemWithMatchingShortcut(root.actions(), kControlOptionK), deep);
    EXPECT_EQ(menuItemWithMatchingShortcut(root.actions(), Shortcut(Key::k, ModifierFlag::control)), plain);
    EXPECT_EQ(menuItemWithMatchingShortcut(root.actions(), Shortcut(Key::upArrow, ModifierFlag::command)), arrow);
    EXPECT_EQ(menuItemWithMatchingShortcut(root.actions(), Shortcut(Key::k, ModifierFlag::command)), nullptr);
    platform.keyboardLayout.hasLayout = false;
    EXPECT_EQ(menuItemWithMatchingShortcut(root.actions(), kControlOptionK), nullptr) << "no layout character";
}

TEST_F(MenuItemShortcutTest, ViewLosesShortcutWhileAnyRecorderRecords) {
    const Name name(QStringLiteral("view"));
    setShortcut(kControlOptionK, name);
    QPushButton button;
    QAction action;
    globalKeyboardShortcut(&button, name);
    globalKeyboardShortcut(&action, name);
    const QKeySequence expected = sequence(Qt::ControlModifier | Qt::AltModifier, Qt::Key_K);
    EXPECT_EQ(button.shortcut(), expected);
    EXPECT_EQ(action.shortcut(), expected);
    Notifications::shared().postRecorderActiveStatusDidChange(true);
    EXPECT_TRUE(button.shortcut().isEmpty());
    EXPECT_TRUE(action.shortcut().isEmpty());
    Notifications::shared().postRecorderActiveStatusDidChange(false);
    EXPECT_EQ(button.shortcut(), expected);
    setShortcut(Shortcut(Key::f6), name);
    EXPECT_EQ(action.shortcut(), sequence(Qt::NoModifier, Qt::Key_F6));
}

TEST_F(MenuItemShortcutTest, LocalEventMonitorSwallowsOrPassesAndStops) {
    QWidget window;
    window.resize(100, 100);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QList<int> seen;
    bool letThrough = false;
    {
        LocalEventMonitor monitor(InputEvent::mask(InputEvent::keyDown), [&](const InputEvent& event) {
            seen.append(event.keyCode().value_or(-1));
            return letThrough;
        });
        monitor.start();
        EXPECT_TRUE(monitor.isStarted());
        QTest::keyClick(window.windowHandle(), Qt::Key_K, Qt::ControlModifier);
        EXPECT_EQ(seen, QList<int>({Key::k.rawValue()})) << "key-up is not in the mask";
    }
    QTest::keyClick(window.windowHandle(), Qt::Key_J);
    EXPECT_EQ(seen.size(), 1) << "releasing the monitor removed it";
}

TEST_F(MenuItemShortcutTest, ObjectAssociationIsOneSlotPerInstance) {
    QObject object;
    ObjectAssociation<int> first;
    ObjectAssociation<QString> second(AssociationPolicy::copy);
    EXPECT_FALSE(first.get(&object));
    first.set(&object, 7);
    second.set(&object, QStringLiteral("seven"));
    EXPECT_EQ(first.get(&object), 7);
    EXPECT_EQ(second.get(&object), QStringLiteral("seven"));
    first.set(&object, std::nullopt);
    EXPECT_FALSE(first.get(&object));
    EXPECT_EQ(static_cast<unsigned int>(AssociationPolicy::retain), 0x301u);
    EXPECT_EQ(static_cast<unsigned int>(AssociationPolicy::copy), 0x303u);
}

}  // namespace
