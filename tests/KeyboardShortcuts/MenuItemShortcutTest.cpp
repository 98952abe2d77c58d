// SPDX-License-Identifier: MIT
#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QWidget>

#include "KeyboardShortcuts/LocalEventMonitor.h"
#include "KeyboardShortcuts/widgets/MenuItemShortcut.h"
#include "tests/KeyboardShortcuts/ShortcutTestFixture.h"
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

}  // namespace
