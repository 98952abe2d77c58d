// SPDX-License-Identifier: MIT
#include <QJsonDocument>
#include <QJsonObject>
#include <QKeyEvent>
#include <QMouseEvent>

#include "KeyboardShortcuts/InputEvent.h"
#include "KeyboardShortcuts/Key.h"
#include "KeyboardShortcuts/ModifierFlags.h"
#include "KeyboardShortcuts/Shortcut.h"
#include "KeyboardShortcuts/SpecialKey.h"
#include "KeyboardShortcuts/Utilities.h"
#include "tests/KeyboardShortcuts/ShortcutTestFixture.h"

using namespace KeyboardShortcuts;

namespace {

using ShortcutModelTest = ShortcutTest;

const ModifierFlags kControlOptionShiftCommand =
    ModifierFlag::control | ModifierFlag::option | ModifierFlag::shift | ModifierFlag::command;

TEST_F(ShortcutModelTest, NamedKeysAreThe113CarbonCodes) {
    ASSERT_EQ(Key::allNamed().size(), 113);
    EXPECT_EQ(Key::a.rawValue(), 0);
    EXPECT_EQ(Key::s.rawValue(), 1);
    EXPECT_EQ(Key::return_.rawValue(), 36);
    EXPECT_EQ(Key::tab.rawValue(), 48);
    EXPECT_EQ(Key::space.rawValue(), 49);
    EXPECT_EQ(Key::delete_.rawValue(), 51);
    EXPECT_EQ(Key::escape.rawValue(), 53);
    EXPECT_EQ(Key::command.rawValue(), 55);
    EXPECT_EQ(Key::f1.rawValue(), 122);
    EXPECT_EQ(Key::f17.rawValue(), 64);
    EXPECT_EQ(Key::upArrow.rawValue(), 126);
    EXPECT_EQ(Key::keypadEnter.rawValue(), 76);
    EXPECT_EQ(Key::allNamed().first(), Key::a);
    EXPECT_EQ(Key::allNamed().last(), Key::keypadPlus);
    QSet<int> codes;
    for (const Key& key : Key::allNamed()) {
        codes.insert(key.rawValue());
    }
    EXPECT_EQ(codes.size(), 113) << "no two named keys share a code";
}

TEST_F(ShortcutModelTest, SpecialKeyMappingHas53Entries) {
    EXPECT_EQ(keyToSpecialKeyMapping().size(), 53);
    EXPECT_EQ(specialKey(Key::return_), SpecialKey::return_);
    EXPECT_EQ(specialKey(Key::f13), SpecialKey::f13);
    EXPECT_EQ(specialKey(Key::keypadPlus), SpecialKey::keypadPlus);
    EXPECT_FALSE(specialKey(Key::a));
    EXPECT_FALSE(specialKey(Key::mute));
    EXPECT_FALSE(specialKey(Key::command));
}

TEST_F(ShortcutModelTest, NormalisingKeepsOnlyTheFiveKnownBits) {
    EXPECT_EQ(Shortcut(0, 0x1001).carbonModifiers(), 0x1000);
    EXPECT_EQ(Shortcut(0, 0xFFFFFFF).carbonModifiers(), 0x100 | 0x200 | 0x800 | 0x1000 | 0x20000);
    EXPECT_EQ(Shortcut(0, 0x400 | 0x10000).carbonModifiers(), 0);
    EXPECT_EQ(Shortcut(12345, 0).carbonKeyCode(), 12345) << "the key code is kept unchanged";
}

TEST_F(ShortcutModelTest, ModifierConversionsFollowTheTable) {
    EXPECT_EQ(carbon(ModifierFlag::control), 0x1000);
    EXPECT_EQ(carbon(ModifierFlag::option), 0x800);
    EXPECT_EQ(carbon(ModifierFlag::shift), 0x200);
    EXPECT_EQ(carbon(ModifierFlag::command), 0x100);
    EXPECT_EQ(carbon(ModifierFlag::function), 0x20000);
    EXPECT_EQ(carbon(ModifierFlag::capsLock | ModifierFlag::numericPad | ModifierFlag::help), 0);
    EXPECT_EQ(modifierFlagsFromCarbon(0x1000 | 0x100), ModifierFlag::control | ModifierFlag::command);
    EXPECT_EQ(static_cast<unsigned int>(ModifierFlag::control), 0x40000u);
    EXPECT_EQ(static_cast<unsigned int>(ModifierFlag::function), 0x800000u);
    EXPECT_EQ(toQtModifiers(ModifierFlag::command | ModifierFlag::option),
              Qt::KeyboardModifiers(Qt::MetaModifier | Qt::AltModifier));
    EXPECT_EQ(modifierFlagsFromQt(Qt::ControlModifier | Qt::ShiftModifier),
              ModifierFlag::control | ModifierFlag::shift);
    EXPECT_EQ(Shortcut(Key::k, Qt::ControlModifier | Qt::MetaModifier), Shortcut(40, 4352));
}

TEST_F(ShortcutModelTest, SymbolicRepresentationUsesFixedOrder) {
    EXPECT_EQ(ks_symbolicRepresentation({}), QString());
    EXPECT_EQ(ks_symbolicRepresentation(ModifierFlag::function | ModifierFlag::command | ModifierFlag::shift |
                                        ModifierFlag::option | ModifierFlag::control),
              QStringLiteral("⌃⌥⇧⌘\U0001F310\uFE0E"));
}

TEST_F(ShortcutModelTest, ModifierNamesAreTheDesktopsInItsOrder) {
    EXPECT_EQ(modifierNames({}), QStringList());
    EXPECT_EQ(modifierNames(ModifierFlag::function | ModifierFlag::shift | ModifierFlag::option |
                            ModifierFlag::control | ModifierFlag::command),
              QStringList({QStringLiteral("Super"), QStringLiteral("Ctrl"), QStringLiteral("Alt"),
                           QStringLiteral("Shift"), QStringLiteral("Fn")}));
    EXPECT_EQ(modifierNames(ModifierFlag::capsLock | ModifierFlag::numericPad), QStringList());
}

TEST_F(ShortcutModelTest, ModifierOrderInDisplayStringDoesNotDependOnPressOrder) {
    const Shortcut pressedShiftFirst(Key::k, ModifierFlag::shift | ModifierFlag::option | ModifierFlag::control);
    const Shortcut pressedControlFirst(Key::k, ModifierFlag::control | ModifierFlag::option | ModifierFlag::shift);
    EXPECT_EQ(pressedShiftFirst.presentableDescription(), QStringLiteral("Ctrl+Alt+Shift+K"));
    EXPECT_EQ(pressedControlFirst.presentableDescription(), QStringLiteral("Ctrl+Alt+Shift+K"));
    EXPECT_EQ(Shortcut(Key::k, kControlOptionShiftCommand).description(), QStringLiteral("Super+Ctrl+Alt+Shift+K"));
}

TEST_F(ShortcutModelTest, DisplayStringNamesKeysAsTheDesktopDoes) {
    EXPECT_EQ(Shortcut(Key::two, ModifierFlag::control | ModifierFlag::option).presentableDescription(),
              QStringLiteral("Ctrl+Alt+2"));
    EXPECT_EQ(Shortcut(Key::leftArrow, ModifierFlag::shift | ModifierFlag::command).presentableDescription(),
              QStringLiteral("Super+Shift+Left"));
    EXPECT_EQ(Shortcut(Key::return_, ModifierFlag::command).presentableDescription(), QStringLiteral("Super+Return"));
    EXPECT_EQ(Shortcut(Key::space, ModifierFlag::control).presentableDescription(), QStringLiteral("Ctrl+Space"));
    EXPECT_EQ(Shortcut(Key::f5).presentableDescription(), QStringLiteral("F5"));
    EXPECT_EQ(Shortcut(Key::f20).presentableDescription(), QStringLiteral("F20"));
    const QList<std::pair<Key, QString>> names = {
        {Key::rightArrow, QStringLiteral("Right")},
        {Key::upArrow, QStringLiteral("Up")},
        {Key::downArrow, QStringLiteral("Down")},
        {Key::pageUp, QStringLiteral("Page Up")},
        {Key::pageDown, QStringLiteral("Page Down")},
        {Key::home, QStringLiteral("Home")},
        {Key::end, QStringLiteral("End")},
        {Key::tab, QStringLiteral("Tab")},
        {Key::escape, QStringLiteral("Escape")},
        {Key::delete_, QStringLiteral("Backspace")},
        {Key::deleteForward, QStringLiteral("Delete")},
        {Key::help, QStringLiteral("Insert")},
        {Key::f1, QStringLiteral("F1")},
        {Key::f12, QStringLiteral("F12")},
        {Key::keypad0, QStringLiteral("Num+0")},
        {Key::keypadEnter, QStringLiteral("Num+Enter")},
        {Key::keypadClear, QStringLiteral("Num+Clear")},
        {Key::keypadPlus, QStringLiteral("Num++")},
    };
    for (const auto& [key, name] : names) {
        EXPECT_EQ(Shortcut(key, ModifierFlag::control).presentableDescription(), QStringLiteral("Ctrl+") + name)
            << key.rawValue();
    }
}

TEST_F(ShortcutModelTest, NoDisplayStringHoldsAGlyph) {
    const ModifierFlags all = kControlOptionShiftCommand | ModifierFlag::function;
    for (const Key& key : Key::allNamed()) {
        const QString text = Shortcut(key, all).presentableDescription();
        for (const QChar glyph : {QChar(0x2318), QChar(0x2325), QChar(0x2303), QChar(0x21E7), QChar(0x20E3)}) {
            EXPECT_FALSE(text.contains(glyph)) << text.toStdString();
        }
        EXPECT_TRUE(text.startsWith(QStringLiteral("Super+Ctrl+Alt+Shift+Fn+"))) << text.toStdString();
    }
}

TEST_F(ShortcutModelTest, SpecialKeysKeepTheirGlyphsForMenus) {
    EXPECT_EQ(glyph(SpecialKey::return_), QStringLiteral("↩"));
    EXPECT_EQ(glyph(SpecialKey::f5), QStringLiteral("F5"));
    EXPECT_EQ(glyph(SpecialKey::f20), QStringLiteral("F20"));
    EXPECT_EQ(glyph(SpecialKey::keypad0), QStringLiteral("0\u20E3"));
    EXPECT_EQ(glyph(SpecialKey::keypadEnter), QStringLiteral("\u21A9\u20E3"));
    EXPECT_EQ(glyph(SpecialKey::keypadClear), QStringLiteral("\u2612\u20E3"));
    EXPECT_EQ(glyph(SpecialKey::help), QStringLiteral("?\u20DD"));
    EXPECT_EQ(glyph(SpecialKey::space), QStringLiteral("Space"));
    EXPECT_EQ(glyph(SpecialKey::leftArrow), QStringLiteral("←"));
    EXPECT_EQ(glyph(SpecialKey::pageDown), QStringLiteral("⇟"));
    EXPECT_EQ(appKitMenuItemKeyEquivalent(SpecialKey::leftArrow), QStringLiteral("←"));
    EXPECT_EQ(appKitMenuItemKeyEquivalent(SpecialKey::return_), QStringLiteral("↩"));
}

TEST_F(ShortcutModelTest, KeyCodeNotNamedIsValidAndShownThroughLayout) {
    platform.keyboardLayout.characters.insert(10, QStringLiteral("§"));
    const Shortcut isoSection(10, 0x1000);
    EXPECT_EQ(isoSection.carbonKeyCode(), 10);
    EXPECT_EQ(isoSection.presentableDescription(), QStringLiteral("Ctrl+§"));
    EXPECT_EQ(isoSection.nsMenuItemKeyEquivalent(), QStringLiteral("§"));
}

TEST_F(ShortcutModelTest, NoLayoutShowsReplacementCharacter) {
    platform.keyboardLayout.hasLayout = false;
    EXPECT_EQ(Shortcut(Key::k, ModifierFlag::control | ModifierFlag::command).presentableDescription(),
              QStringLiteral("Super+Ctrl+\uFFFD"));
    EXPECT_FALSE(Shortcut(Key::k, ModifierFlag::command).nsMenuItemKeyEquivalent());
    EXPECT_EQ(Shortcut(Key::f3).presentableDescription(), QStringLiteral("F3")) << "special keys need no layout";
}

TEST_F(ShortcutModelTest, LayoutTextOfMoreThanOneCharacterIsNoCharacter) {
    platform.keyboardLayout.characters.insert(Key::k.rawValue(), QStringLiteral("ab"));
    EXPECT_EQ(Shortcut(Key::k, ModifierFlag::command).presentableDescription(), QStringLiteral("Super+\uFFFD"));
}

TEST_F(ShortcutModelTest, KeyDownAndKeyUpEventsYieldShortcutsFlagsChangedNone) {
    const ModifierFlags flags = ModifierFlag::control | ModifierFlag::command;
    const auto down = Shortcut::fromEvent(InputEvent(InputEvent::keyDown, Key::k.rawValue(), flags));
    const auto up = Shortcut::fromEvent(InputEvent(InputEvent::keyUp, Key::k.rawValue(), flags));
    ASSERT_TRUE(down);
    ASSERT_TRUE(up);
    EXPECT_EQ(*down, Shortcut(40, 4352));
    EXPECT_EQ(*up, *down);
    EXPECT_FALSE(Shortcut::fromEvent(InputEvent(InputEvent::flagsChanged, Key::command.rawValue(), flags)));
    EXPECT_FALSE(Shortcut::fromEvent(InputEvent(InputEvent::leftMouseUp, std::nullopt, flags)));
}

TEST_F(ShortcutModelTest, FunctionFlagIsNotCapturedFromTypedLetter) {
    const auto shortcut = Shortcut::fromEvent(
        InputEvent(InputEvent::keyDown, Key::a.rawValue(), ModifierFlag::function | ModifierFlag::command));
    ASSERT_TRUE(shortcut);
    EXPECT_EQ(shortcut->carbonModifiers(), 0x100);
    EXPECT_EQ(Shortcut(Key::a, ModifierFlag::function).carbonModifiers(), 0x20000) << "the model can still hold fn";
}

TEST_F(ShortcutModelTest, CapsLockAndNumericPadAreDroppedFromEvents) {
    const auto shortcut =
        Shortcut::fromEvent(InputEvent(InputEvent::keyDown, Key::k.rawValue(),
                                       ModifierFlag::capsLock | ModifierFlag::numericPad | ModifierFlag::option));
    ASSERT_TRUE(shortcut);
    EXPECT_EQ(shortcut->carbonModifiers(), 0x800);
}

TEST_F(ShortcutModelTest, JsonIsWrittenInFixedOrder) {
    EXPECT_EQ(Shortcut(Key::k, ModifierFlag::control | ModifierFlag::command).toJson(),
              QByteArrayLiteral("{\"carbonKeyCode\":40,\"carbonModifiers\":4352}"));
}

TEST_F(ShortcutModelTest, JsonReaderAcceptsEitherOrder) {
    EXPECT_EQ(Shortcut::fromJson("{\"carbonModifiers\":4352,\"carbonKeyCode\":40}"), Shortcut(40, 4352));
    EXPECT_EQ(Shortcut::fromJson(" { \"carbonKeyCode\" : 40 , \"carbonModifiers\" : 4352 } "), Shortcut(40, 4352));
}

TEST_F(ShortcutModelTest, JsonReaderRefusesMissingOrWrongMembers) {
    EXPECT_FALSE(Shortcut::fromJson("{\"carbonKeyCode\":40}"));
    EXPECT_FALSE(Shortcut::fromJson("{\"carbonModifiers\":4352}"));
    EXPECT_FALSE(Shortcut::fromJson("{\"carbonKeyCode\":\"40\",\"carbonModifiers\":4352}"));
    EXPECT_FALSE(Shortcut::fromJson("{\"carbonKeyCode\":40.5,\"carbonModifiers\":4352}"));
    EXPECT_FALSE(Shortcut::fromJson("{\"carbonKeyCode\":true,\"carbonModifiers\":4352}"));
    EXPECT_FALSE(Shortcut::fromJson("{\"carbonKeyCode\":null,\"carbonModifiers\":4352}"));
    EXPECT_FALSE(Shortcut::fromJson("[40,4352]"));
    EXPECT_FALSE(Shortcut::fromJson("not json"));
    EXPECT_FALSE(Shortcut::fromJson(""));
}

TEST_F(ShortcutModelTest, JsonReaderRefusesNumbersOutside32Bits) {
    EXPECT_FALSE(Shortcut::fromJson("{\"carbonKeyCode\":4294967336,\"carbonModifiers\":4352}"));
    EXPECT_FALSE(Shortcut::fromJson("{\"carbonKeyCode\":40,\"carbonModifiers\":-2147483649}"));
    EXPECT_EQ(Shortcut::fromJson("{\"carbonKeyCode\":40,\"carbonModifiers\":2147483647}"), Shortcut(40, 2147483647));
}

TEST_F(ShortcutModelTest, JsonReaderRefusesKeyCodesOutside16Bits) {
    EXPECT_FALSE(Shortcut::fromJson("{\"carbonKeyCode\":65536,\"carbonModifiers\":0}"));
    EXPECT_FALSE(Shortcut::fromJson("{\"carbonKeyCode\":-1,\"carbonModifiers\":0}"));
    EXPECT_EQ(Shortcut::fromJson("{\"carbonKeyCode\":65535,\"carbonModifiers\":0}"), Shortcut(65535, 0));
}

TEST_F(ShortcutModelTest, JsonRoundTripKeepsEveryNamedKey) {
    for (const Key& key : Key::allNamed()) {
        const Shortcut shortcut(key, ModifierFlag::option | ModifierFlag::shift);
        EXPECT_EQ(Shortcut::fromJson(shortcut.toJson()), shortcut) << key.rawValue();
    }
}

TEST_F(ShortcutModelTest, MenuKeyEquivalents) {
    EXPECT_EQ(Shortcut(Key::f1).nsMenuItemKeyEquivalent(), QString(QChar(0xF704)));
    EXPECT_EQ(Shortcut(Key::f20).nsMenuItemKeyEquivalent(), QString(QChar(0xF717)));
    EXPECT_EQ(Shortcut(Key::space).nsMenuItemKeyEquivalent(), QStringLiteral(" "));
    EXPECT_EQ(Shortcut(Key::return_).nsMenuItemKeyEquivalent(), QStringLiteral("↩"));
    EXPECT_EQ(Shortcut(Key::upArrow).nsMenuItemKeyEquivalent(), QStringLiteral("↑"));
    EXPECT_FALSE(Shortcut(Key::keypad5).nsMenuItemKeyEquivalent());
    EXPECT_EQ(Shortcut(Key::k, ModifierFlag::command).nsMenuItemKeyEquivalent(), QStringLiteral("k"));
}

TEST_F(ShortcutModelTest, WidgetKeySequences) {
    EXPECT_EQ(Shortcut(Key::k, ModifierFlag::control | ModifierFlag::shift).toSwiftUI(),
              QKeySequence(QKeyCombination(Qt::ControlModifier | Qt::ShiftModifier, Qt::Key_K)));
    EXPECT_EQ(Shortcut(Key::return_, ModifierFlag::command).toSwiftUI(),
              QKeySequence(QKeyCombination(Qt::MetaModifier, Qt::Key_Return)));
    EXPECT_EQ(Shortcut(Key::keypad5).toSwiftUI(), QKeySequence(QKeyCombination(Qt::KeypadModifier, Qt::Key_5)));
    platform.keyboardLayout.hasLayout = false;
    EXPECT_FALSE(Shortcut(Key::k, ModifierFlag::command).toSwiftUI());
}

TEST_F(ShortcutModelTest, QtKeyEventsMapToCarbonCodes) {
    EXPECT_EQ(carbonKeyCodeForQtKey(Qt::Key_K, false), 40);
    EXPECT_EQ(carbonKeyCodeForQtKey(Qt::Key_5, false), Key::five.rawValue());
    EXPECT_EQ(carbonKeyCodeForQtKey(Qt::Key_5, true), Key::keypad5.rawValue());
    EXPECT_EQ(carbonKeyCodeForQtKey(Qt::Key_Backtab, false), Key::tab.rawValue());
    EXPECT_FALSE(carbonKeyCodeForQtKey(Qt::Key_F30, false));
    platform.keyboardLayout.scanCodes.insert(45, Key::k.rawValue());
    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, 45, 0, 0);
    EXPECT_EQ(InputEvent::carbonKeyCode(event), Key::k.rawValue()) << "the physical key wins over the produced key";
}

TEST_F(ShortcutModelTest, QtEventsBecomeInputEvents) {
    const QKeyEvent press(QEvent::KeyPress, Qt::Key_K, Qt::ControlModifier | Qt::AltModifier);
    const auto down = InputEvent::fromQEvent(&press);
    ASSERT_TRUE(down);
    EXPECT_EQ(down->type(), InputEvent::keyDown);
    EXPECT_EQ(down->keyCode(), Key::k.rawValue());
    EXPECT_EQ(down->modifierFlags(), ModifierFlag::control | ModifierFlag::option);
    const QKeyEvent release(QEvent::KeyRelease, Qt::Key_F5, Qt::NoModifier);
    EXPECT_EQ(InputEvent::fromQEvent(&release)->type(), InputEvent::keyUp);
    const QKeyEvent modifierOnly(QEvent::KeyPress, Qt::Key_Shift, Qt::ShiftModifier);
    EXPECT_EQ(InputEvent::fromQEvent(&modifierOnly)->type(), InputEvent::flagsChanged);
    EXPECT_FALSE(Shortcut::fromEvent(*InputEvent::fromQEvent(&modifierOnly)));
    const QMouseEvent rightUp(QEvent::MouseButtonRelease, QPointF(1, 2), QPointF(30, 40), Qt::RightButton, Qt::NoButton,
                              Qt::NoModifier);
    const auto mouse = InputEvent::fromQEvent(&rightUp);
    ASSERT_TRUE(mouse);
    EXPECT_EQ(mouse->type(), InputEvent::rightMouseUp);
    EXPECT_EQ(mouse->globalPosition(), QPointF(30, 40));
    const QMouseEvent middle(QEvent::MouseButtonRelease, QPointF(), QPointF(), Qt::MiddleButton, Qt::NoButton,
                             Qt::NoModifier);
    EXPECT_FALSE(InputEvent::fromQEvent(&middle));
    EXPECT_EQ(InputEvent::mask(InputEvent::keyDown) | InputEvent::mask(InputEvent::leftMouseUp) |
                  InputEvent::mask(InputEvent::rightMouseUp),
              0x414u);
}

TEST_F(ShortcutModelTest, CapitalizedStartsEveryWordUpperCase) {
    EXPECT_EQ(capitalized(QStringLiteral("space bar")), QStringLiteral("Space Bar"));
    EXPECT_EQ(capitalized(QStringLiteral("é")), QStringLiteral("É"));
}

}  // namespace
