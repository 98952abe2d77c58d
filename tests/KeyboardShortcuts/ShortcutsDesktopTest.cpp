// SPDX-License-Identifier: MIT
// Global shortcuts on a real X server: hot keys grabbed on the root window, keys typed through XTEST.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <variant>

#include <QApplication>
#include <QElapsedTimer>
#include <QMenu>
#include <QTemporaryDir>
#include <QTest>
#include <QVBoxLayout>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "KeyboardShortcuts/widgets/MenuWatcher.h"
#include "KeyboardShortcuts/widgets/ShortcutRecorder.h"
#include "platform/Platform.h"
#include "platform/SettingsStore.h"
#include "platform/x11/X11HotKeys.h"
#include "platform/x11/X11KeyboardLayout.h"
#include "platform/x11/X11Platform.h"
#include "tests/KeyboardShortcuts/XTestKeyboard.h"
#include "tests/support/VirtualDesktop.h"

using namespace KeyboardShortcuts;

namespace {

// Control+Option (Control+Alt): IceWM holds the Super keys for itself, so most tests avoid them.
const Shortcut kControlOptionK(Key::k, ModifierFlag::control | ModifierFlag::option);
const Shortcut kControlOptionJ(Key::j, ModifierFlag::control | ModifierFlag::option);
const Shortcut kControlOptionL(Key::l, ModifierFlag::control | ModifierFlag::option);
const Shortcut kControlOptionF8(Key::f8, ModifierFlag::control | ModifierFlag::option);
const Shortcut kControlCommandK(Key::k, ModifierFlag::control | ModifierFlag::command);
const QList<xcb_keycode_t> kControlAlt = {XTestKeyboard::controlL, XTestKeyboard::altL};
const QList<xcb_keycode_t> kControlSuper = {XTestKeyboard::controlL, XTestKeyboard::superL};

// The name the running window manager gives itself.
QString windowManagerName() {
    const QString check = VirtualDesktop::output(QStringLiteral("xprop"),
                                                 {QStringLiteral("-root"), QStringLiteral("_NET_SUPPORTING_WM_CHECK")});
    const QString window = check.section(QLatin1Char(' '), -1).trimmed();
    return VirtualDesktop::output(QStringLiteral("xprop"),
                                  {QStringLiteral("-id"), window, QStringLiteral("_NET_WM_NAME")});
}

// Counts key-down and key-up runs of one name.
struct Counter {
    int downs = 0;
    int ups = 0;
    void attach(ActionShortcuts& shortcuts, const Name& name) {
        shortcuts.onKeyDown(name, [this] { ++downs; });
        shortcuts.onKeyUp(name, [this] { ++ups; });
    }
};

class ShortcutsDesktopTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        s_config = new QTemporaryDir();
        // Keep the test's user defaults away from the real ones.
        qputenv("XDG_CONFIG_HOME", s_config->path().toUtf8());
        s_platform = X11Platform::connect().release();
        ASSERT_NE(s_platform, nullptr);
    }
    static void TearDownTestSuite() {
        Platform::install({});
        delete s_platform;
        delete s_config;
    }

    void SetUp() override {
        ASSERT_NE(s_platform, nullptr);
        ASSERT_TRUE(keyboard.isConnected());
        s_platform->install();
        for (const QString& key : Platform::services().settings->keys()) {
            Platform::services().settings->remove(key);
        }
        shortcuts = std::make_unique<ActionShortcuts>();
        // As in the program: our menus and popups hold the keyboard, and the watcher tells the shortcuts.
        menuWatcher = std::make_unique<MenuWatcher>(*shortcuts);
        // The sentinel: once it has fired, every key typed before it has been handled.
        shortcuts->setShortcut(kControlOptionF8, sentinel);
        shortcuts->onKeyUp(sentinel, [this] { ++sentinelCount; });
    }
    void TearDown() override {
        menuWatcher.reset();
        shortcuts.reset();
    }

    X11HotKeys& hotKeys() { return *static_cast<X11HotKeys*>(Platform::services().hotKeys); }

    // Types the sentinel and waits for it, so that everything typed earlier has been dispatched.
    bool settle() {
        const int before = sentinelCount;
        keyboard.type({XTestKeyboard::controlL, XTestKeyboard::altL}, XTestKeyboard::f8);
        return VirtualDesktop::waitUntil([&] { return sentinelCount > before; }, 5000);
    }

    // Turns a lock key on or off and waits until the server says so.
    bool setLock(xcb_keycode_t key, uint16_t mask, bool on) {
        if (((keyboard.modifierState() & mask) != 0) != on) {
            keyboard.tap(key);
        }
        return VirtualDesktop::waitUntil([&] { return ((keyboard.modifierState() & mask) != 0) == on; }, 3000);
    }

    // Assigns the shortcut to the first display's name and counts its runs.
    Counter& countedDisplayShortcut(const Shortcut& shortcut) {
        shortcuts->setShortcut(shortcut, displayName);
        displayRuns.attach(*shortcuts, displayName);
        return displayRuns;
    }

    static QTemporaryDir* s_config;
    static X11Platform* s_platform;
    XTestKeyboard keyboard;
    std::unique_ptr<ActionShortcuts> shortcuts;
    std::unique_ptr<MenuWatcher> menuWatcher;
    Name sentinel{QStringLiteral("sentinel")};
    int sentinelCount = 0;
    const Name displayName{QStringLiteral("display.1")};
    Counter displayRuns;
};

QTemporaryDir* ShortcutsDesktopTest::s_config = nullptr;
X11Platform* ShortcutsDesktopTest::s_platform = nullptr;

TEST_F(ShortcutsDesktopTest, RegisteredShortcutFiresOneKeyDownAndOneKeyUp) {
    Counter& counter = countedDisplayShortcut(kControlOptionK);
    keyboard.type(kControlAlt, XTestKeyboard::keyK);
    ASSERT_TRUE(settle());
    EXPECT_EQ(counter.downs, 1);
    EXPECT_EQ(counter.ups, 1);
}

TEST_F(ShortcutsDesktopTest, CommandShortcutFiresOnSuperKey) {
    if (windowManagerName().contains(QStringLiteral("IceWM"))) {
        GTEST_SKIP() << "IceWM grabs the Super keys itself (Win95Keys), so Super combinations never reach a client";
    }
    Counter& counter = countedDisplayShortcut(kControlCommandK);
    keyboard.type(kControlSuper, XTestKeyboard::keyK);
    ASSERT_TRUE(settle());
    EXPECT_EQ(counter.downs, 1);
    EXPECT_EQ(counter.ups, 1);
}

TEST_F(ShortcutsDesktopTest, FiresWithNumLockOn) {
    ASSERT_NE(hotKeys().numLockMask(), 0) << "NumLock sits on a real modifier";
    ASSERT_TRUE(setLock(XTestKeyboard::numLock, hotKeys().numLockMask(), true));
    Counter& counter = countedDisplayShortcut(kControlOptionK);
    keyboard.type(kControlAlt, XTestKeyboard::keyK);
    const bool settled = settle();
    EXPECT_TRUE(setLock(XTestKeyboard::numLock, hotKeys().numLockMask(), false));
    ASSERT_TRUE(settled);
    EXPECT_EQ(counter.downs, 1);
    EXPECT_EQ(counter.ups, 1);
}

TEST_F(ShortcutsDesktopTest, FiresWithCapsLockOn) {
    ASSERT_TRUE(setLock(XTestKeyboard::capsLock, XCB_MOD_MASK_LOCK, true));
    Counter& counter = countedDisplayShortcut(kControlOptionK);
    keyboard.type(kControlAlt, XTestKeyboard::keyK);
    const bool settled = settle();
    EXPECT_TRUE(setLock(XTestKeyboard::capsLock, XCB_MOD_MASK_LOCK, false));
    ASSERT_TRUE(settled);
    EXPECT_EQ(counter.downs, 1);
    EXPECT_EQ(counter.ups, 1);
}

TEST_F(ShortcutsDesktopTest, FiresWithNumLockAndCapsLockOn) {
    ASSERT_TRUE(setLock(XTestKeyboard::numLock, hotKeys().numLockMask(), true));
    ASSERT_TRUE(setLock(XTestKeyboard::capsLock, XCB_MOD_MASK_LOCK, true));
    Counter& counter = countedDisplayShortcut(kControlOptionK);
    keyboard.type(kControlAlt, XTestKeyboard::keyK);
    const bool settled = settle();
    EXPECT_TRUE(setLock(XTestKeyboard::capsLock, XCB_MOD_MASK_LOCK, false));
    EXPECT_TRUE(setLock(XTestKeyboard::numLock, hotKeys().numLockMask(), false));
    ASSERT_TRUE(settled);
    EXPECT_EQ(counter.downs, 1);
    EXPECT_EQ(counter.ups, 1);
}

TEST_F(ShortcutsDesktopTest, HeldKeyThatAutoRepeatsFiresOneKeyUp) {
    EXPECT_TRUE(hotKeys().hasDetectableAutoRepeat());
    Counter& counter = countedDisplayShortcut(kControlOptionK);
    const int repeatsBefore = hotKeys().suppressedRepeats();
    keyboard.press(XTestKeyboard::controlL);
    keyboard.press(XTestKeyboard::altL);
    keyboard.press(XTestKeyboard::keyK);
    // Hold until the server has repeated the key a few times.
    const bool repeated =
        VirtualDesktop::waitUntil([&] { return hotKeys().suppressedRepeats() >= repeatsBefore + 3; }, 10000);
    keyboard.release(XTestKeyboard::keyK);
    keyboard.release(XTestKeyboard::altL);
    keyboard.release(XTestKeyboard::controlL);
    ASSERT_TRUE(repeated) << "the held key did not auto-repeat";
    ASSERT_TRUE(settle());
    EXPECT_EQ(counter.downs, 1);
    EXPECT_EQ(counter.ups, 1);
}

TEST_F(ShortcutsDesktopTest, TwoNamesSharingShortcutShareOneGrabAndBothRun) {
    const Name first(QStringLiteral("display.1"));
    const Name second(QStringLiteral("display.2"));
    shortcuts->setShortcut(kControlOptionK, first);
    shortcuts->setShortcut(kControlOptionK, second);
    Counter firstCounter;
    Counter secondCounter;
    firstCounter.attach(*shortcuts, first);
    secondCounter.attach(*shortcuts, second);
    int hotKeysForK = 0;
    for (const int id : shortcuts->hotKeys().hotKeyIds()) {
        hotKeysForK += shortcuts->hotKeys().shortcutForHotKey(id) == kControlOptionK ? 1 : 0;
    }
    EXPECT_EQ(hotKeysForK, 1);
    keyboard.type(kControlAlt, XTestKeyboard::keyK);
    ASSERT_TRUE(settle());
    EXPECT_EQ(firstCounter.ups, 1);
    EXPECT_EQ(secondCounter.ups, 1);
}

TEST_F(ShortcutsDesktopTest, NameWhoseShortcutChangedNoLongerReactsToOldKey) {
    const Name name(QStringLiteral("display.1"));
    shortcuts->setShortcut(kControlOptionK, name);
    Counter counter;
    counter.attach(*shortcuts, name);
    shortcuts->setShortcut(kControlOptionJ, name);
    keyboard.type(kControlAlt, XTestKeyboard::keyK);
    ASSERT_TRUE(settle());
    EXPECT_EQ(counter.ups, 0);
    keyboard.type(kControlAlt, XTestKeyboard::keyJ);
    ASSERT_TRUE(settle());
    EXPECT_EQ(counter.ups, 1);
}

TEST_F(ShortcutsDesktopTest, ShortcutGrabbedByAnotherClientPrintsErrorLine) {
    XTestKeyboard other;  // another client that holds Control+Alt+L
    ASSERT_TRUE(other.isConnected());
    xcb_void_cookie_t cookie =
        xcb_grab_key_checked(other.connection(), 1, other.root(), XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1,
                             XTestKeyboard::keyL, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    ASSERT_EQ(xcb_request_check(other.connection(), cookie), nullptr);

    EXPECT_EQ(shortcuts->hotKeys().heldByOthers({kControlOptionL, kControlOptionK}),
              QList<Shortcut>({kControlOptionL}));
    const Name name(QStringLiteral("display.1"));
    Counter counter;
    counter.attach(*shortcuts, name);
    testing::internal::CaptureStdout();
    shortcuts->setShortcut(kControlOptionL, name);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error registering hotkey Ctrl+Alt+L: -9878\n");
    EXPECT_EQ(shortcuts->shortcut(name), kControlOptionL);
    keyboard.type(kControlAlt, XTestKeyboard::keyL);
    ASSERT_TRUE(settle());
    EXPECT_EQ(counter.ups, 0);
}

TEST_F(ShortcutsDesktopTest, RegistrationAnswersAnIdOrWhyNot) {
    const auto keyK = static_cast<quint32>(Key::k.rawValue());
    const quint32 controlOption = CarbonModifier::controlKey | CarbonModifier::optionKey;
    const HotKeys::Registration first = hotKeys().registerHotKey(keyK, controlOption);
    const HotKeys::Registration shared = hotKeys().registerHotKey(keyK, controlOption);
    ASSERT_TRUE(std::holds_alternative<HotKeys::RegistrationId>(first));
    ASSERT_TRUE(std::holds_alternative<HotKeys::RegistrationId>(shared)) << "a combination we hold is shared";
    const HotKeys::RegistrationId firstId = std::get<HotKeys::RegistrationId>(first);
    const HotKeys::RegistrationId sharedId = std::get<HotKeys::RegistrationId>(shared);
    EXPECT_NE(firstId, 0u);
    EXPECT_NE(firstId, sharedId);

    EXPECT_EQ(hotKeys().registerHotKey(keyK, controlOption | CarbonModifier::function),
              HotKeys::Registration(HotKeys::Failure{HotKeys::Error::unsupportedModifier}))
        << "X has no function modifier";
    EXPECT_EQ(hotKeys().registerHotKey(0x7FFF, controlOption),
              HotKeys::Registration(HotKeys::Failure{HotKeys::Error::unsupportedKey}));

    XTestKeyboard other;  // another client that holds Control+Alt+J
    ASSERT_TRUE(other.isConnected());
    ASSERT_EQ(xcb_request_check(
                  other.connection(),
                  xcb_grab_key_checked(other.connection(), 1, other.root(), XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1,
                                       XTestKeyboard::keyJ, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)),
              nullptr);
    EXPECT_EQ(hotKeys().registerHotKey(static_cast<quint32>(Key::j.rawValue()), controlOption),
              HotKeys::Registration(HotKeys::Failure{HotKeys::Error::takenByAnotherClient}));

    // Presses and releases are reported under a registration id (the sentinel's are left out).
    QList<HotKeys::RegistrationId> presses;
    QList<HotKeys::RegistrationId> releases;
    const auto ours = [&](HotKeys::RegistrationId id) { return id == firstId || id == sharedId; };
    QObject scope;  // ends the connections with the test
    QObject::connect(&hotKeys(), &HotKeys::pressed, &scope, [&](HotKeys::RegistrationId id) {
        if (ours(id)) {
            presses.append(id);
        }
    });
    QObject::connect(&hotKeys(), &HotKeys::released, &scope, [&](HotKeys::RegistrationId id) {
        if (ours(id)) {
            releases.append(id);
        }
    });
    keyboard.type(kControlAlt, XTestKeyboard::keyK);
    ASSERT_TRUE(settle());
    ASSERT_EQ(presses.size(), 1);
    EXPECT_TRUE(presses.first() == firstId || presses.first() == sharedId);
    EXPECT_EQ(releases, presses);

    hotKeys().unregisterHotKey(firstId);
    hotKeys().unregisterHotKey(sharedId);
    presses.clear();
    keyboard.type(kControlAlt, XTestKeyboard::keyK);
    ASSERT_TRUE(settle());
    EXPECT_TRUE(presses.isEmpty()) << "released with its last registration";
}

TEST_F(ShortcutsDesktopTest, RefusedLockVariantReleasesTheVariantsAlreadyGrabbed) {
    XTestKeyboard other;  // holds Control+Alt+L only while NumLock is on
    ASSERT_TRUE(other.isConnected());
    const uint16_t withNumLock = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | hotKeys().numLockMask();
    ASSERT_EQ(xcb_request_check(other.connection(),
                                xcb_grab_key_checked(other.connection(), 1, other.root(), withNumLock,
                                                     XTestKeyboard::keyL, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)),
              nullptr);
    const Name name(QStringLiteral("display.1"));
    testing::internal::CaptureStdout();
    shortcuts->setShortcut(kControlOptionL, name);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error registering hotkey Ctrl+Alt+L: -9878\n");
    // The plain variant was grabbed first and must have been let go: the other client can take it.
    xcb_generic_error_t* error = xcb_request_check(
        other.connection(),
        xcb_grab_key_checked(other.connection(), 1, other.root(), XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1,
                             XTestKeyboard::keyL, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    EXPECT_EQ(error, nullptr);
    std::free(error);
}

TEST_F(ShortcutsDesktopTest, ServerKeysCountAsSystemShortcuts) {
    auto* layout = static_cast<X11KeyboardLayout*>(Platform::services().keyboardLayout);
    int changes = 0;
    QObject scope;  // ends the connection with the test
    QObject::connect(layout, &KeyboardLayout::layoutChanged, &scope, [&] { ++changes; });
    const Shortcut controlOptionF1(Key::f1, ModifierFlag::control | ModifierFlag::option);
    EXPECT_TRUE(shortcuts->hotKeys().heldByOthers({controlOptionF1}).isEmpty()) << "srvrkeys:none frees them";
    ASSERT_EQ(VirtualDesktop::run(QStringLiteral("setxkbmap"), {QStringLiteral("-option"), QString()}), 0);
    const bool reloaded = VirtualDesktop::waitUntil([&] { return changes > 0; }, 5000);
    const QList<Shortcut> held = shortcuts->hotKeys().heldByOthers({controlOptionF1});
    VirtualDesktop::run(QStringLiteral("setxkbmap"), {QStringLiteral("-option"), QStringLiteral("srvrkeys:none")});
    ASSERT_TRUE(reloaded);
    EXPECT_EQ(held, QList<Shortcut>({controlOptionF1}));
}

TEST_F(ShortcutsDesktopTest, NothingFiresWhileRecorderRecordsAndAssignedShortcutIsRecorded) {
    Counter& counter = countedDisplayShortcut(kControlOptionK);

    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    const Name recorded(QStringLiteral("display.2"));
    auto* recorder = new ShortcutRecorder(*shortcuts, recorded);
    layout->addWidget(recorder);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return recorder->canBecomeKey(); }));
    QTest::mouseClick(recorder, Qt::LeftButton);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return recorder->isRecording(); }));
    EXPECT_TRUE(shortcuts->isPaused());

    // The key of another display's shortcut reaches the recorder instead of firing.
    keyboard.type(kControlAlt, XTestKeyboard::keyK);
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return shortcuts->shortcut(recorded) == kControlOptionK; }, 5000));
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_EQ(recorder->text(), QStringLiteral("Ctrl+Alt+K"));
    ASSERT_TRUE(settle());
    EXPECT_EQ(counter.downs, 0);
    EXPECT_EQ(counter.ups, 0);

    // Recording is over: the hot key is back and both names react to it.
    Counter recordedCounter;
    recordedCounter.attach(*shortcuts, recorded);
    keyboard.type(kControlAlt, XTestKeyboard::keyK);
    ASSERT_TRUE(settle());
    EXPECT_EQ(recordedCounter.ups, 1);
}

TEST_F(ShortcutsDesktopTest, WithOurMenuOpenShortcutRunsHandlerAndMenuDoesNotAct) {
    Counter& counter = countedDisplayShortcut(kControlOptionK);

    QMenu menu;
    QAction* item = menu.addAction(QStringLiteral("&Keep"));
    item->setShortcut(QKeySequence(QKeyCombination(Qt::ControlModifier | Qt::AltModifier, Qt::Key_K)));
    bool triggered = false;
    QObject::connect(item, &QAction::triggered, [&] { triggered = true; });
    menu.popup(QPoint(100, 100));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&menu));
    ASSERT_TRUE(VirtualDesktop::waitUntil([this] { return shortcuts->isMenuOpen(); }));
    EXPECT_TRUE(shortcuts->hotKeys().isRawKeyMonitorActive());

    keyboard.type(kControlAlt, XTestKeyboard::keyK);
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return counter.ups == 1; }, 5000));
    EXPECT_EQ(counter.downs, 1);
    EXPECT_FALSE(triggered);
    EXPECT_TRUE(menu.isVisible());

    keyboard.tap(XTestKeyboard::escape);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return !menu.isVisible() && !shortcuts->isMenuOpen(); }, 5000));
    keyboard.type(kControlAlt, XTestKeyboard::keyK);
    ASSERT_TRUE(settle());
    EXPECT_EQ(counter.ups, 2) << "the grab is back once the menu closed";
}

TEST_F(ShortcutsDesktopTest, WithOurPopupPanelOpenShortcutRunsHandler) {
    Counter& counter = countedDisplayShortcut(kControlOptionK);

    // Shown like the tray panel: a popup, which holds the keyboard grabbed while it is open.
    QWidget panel(nullptr, Qt::Popup | Qt::FramelessWindowHint);
    panel.resize(240, 160);
    panel.move(100, 100);
    panel.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&panel));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return keyboard.isKeyboardGrabbedByAnotherClient(); }, 5000));

    keyboard.type(kControlAlt, XTestKeyboard::keyK);
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return counter.ups == 1; }, 5000));
    EXPECT_EQ(counter.downs, 1);
    EXPECT_TRUE(panel.isVisible());

    panel.hide();
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return !shortcuts->isMenuOpen(); }, 5000));
    keyboard.type(kControlAlt, XTestKeyboard::keyK);
    ASSERT_TRUE(settle());
    EXPECT_EQ(counter.ups, 2) << "the grab is back once the popup closed";
}

TEST_F(ShortcutsDesktopTest, DisplayedCharacterFollowsLayoutWhileSamePhysicalKeyFires) {
    auto* layout = static_cast<X11KeyboardLayout*>(Platform::services().keyboardLayout);
    const Shortcut controlZ(Key::z, ModifierFlag::control | ModifierFlag::option);
    EXPECT_EQ(controlZ.presentableDescription(), QStringLiteral("Ctrl+Alt+Z"));
    EXPECT_EQ(Shortcut(Key::y, ModifierFlag::command).presentableDescription(), QStringLiteral("Super+Y"));
    int changes = 0;
    QObject scope;  // ends the connection with the test
    QObject::connect(layout, &KeyboardLayout::layoutChanged, &scope, [&] { ++changes; });

    ASSERT_EQ(VirtualDesktop::run(QStringLiteral("setxkbmap"), {QStringLiteral("de")}), 0);
    const bool switched = VirtualDesktop::waitUntil(
        [&] { return controlZ.presentableDescription() == QStringLiteral("Ctrl+Alt+Y"); }, 5000);
    const QString yKey = Shortcut(Key::y, ModifierFlag::command).presentableDescription();

    Counter& counter = countedDisplayShortcut(controlZ);
    keyboard.type(kControlAlt, XTestKeyboard::keyZ);
    const bool settled = settle();
    VirtualDesktop::run(QStringLiteral("setxkbmap"), {QStringLiteral("us")});
    EXPECT_TRUE(VirtualDesktop::waitUntil(
        [&] { return controlZ.presentableDescription() == QStringLiteral("Ctrl+Alt+Z"); }, 5000));

    EXPECT_TRUE(switched) << controlZ.presentableDescription().toStdString();
    EXPECT_GT(changes, 0);
    EXPECT_EQ(yKey, QStringLiteral("Super+Z"));
    ASSERT_TRUE(settled);
    EXPECT_EQ(counter.ups, 1) << "the physical key of Z still fires";
}

TEST_F(ShortcutsDesktopTest, DisplayedCharacterFollowsTheCurrentKeyboardGroup) {
    auto* layout = static_cast<X11KeyboardLayout*>(Platform::services().keyboardLayout);
    QObject scope;  // ends the connection with the test
    int changes = 0;
    QObject::connect(layout, &KeyboardLayout::layoutChanged, &scope, [&] { ++changes; });
    const Shortcut commandZ(Key::z, ModifierFlag::command);
    ASSERT_EQ(VirtualDesktop::run(QStringLiteral("setxkbmap"),
                                  {QStringLiteral("-layout"), QStringLiteral("us,de"), QStringLiteral("-option"),
                                   QStringLiteral("grp:alt_shift_toggle")}),
              0);
    const bool loaded = VirtualDesktop::waitUntil([&] { return changes > 0; }, 5000);
    const QString firstGroup = commandZ.presentableDescription();
    // Alt+Shift switches to the second group (de).
    keyboard.press(XTestKeyboard::altL);
    keyboard.tap(50);  // left shift
    keyboard.release(XTestKeyboard::altL);
    const bool switched =
        VirtualDesktop::waitUntil([&] { return commandZ.presentableDescription() == QStringLiteral("Super+Y"); }, 5000);
    VirtualDesktop::run(QStringLiteral("setxkbmap"),
                        {QStringLiteral("-layout"), QStringLiteral("us"), QStringLiteral("-option"), QString(),
                         QStringLiteral("-option"), QStringLiteral("srvrkeys:none")});
    EXPECT_TRUE(
        VirtualDesktop::waitUntil([&] { return commandZ.presentableDescription() == QStringLiteral("Super+Z"); }));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(firstGroup, QStringLiteral("Super+Z"));
    EXPECT_TRUE(switched) << commandZ.presentableDescription().toStdString();
}

TEST_F(ShortcutsDesktopTest, RecorderDoesNotStartRecordingWhenItsWindowOpens) {
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    auto* recorder = new ShortcutRecorder(*shortcuts, Name(QStringLiteral("display.2")));
    layout->addWidget(recorder);  // the window's only focusable widget
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return recorder->canBecomeKey(); }));
    QCoreApplication::processEvents();
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_FALSE(shortcuts->isPaused());
    QTest::mouseClick(recorder, Qt::LeftButton);
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return recorder->isRecording(); })) << "a click still starts it";
}

TEST_F(ShortcutsDesktopTest, NumLockMovedToAnotherModifierIsFollowed) {
    const uint16_t original = hotKeys().numLockMask();
    ASSERT_EQ(original, XCB_MOD_MASK_2);
    Counter& counter = countedDisplayShortcut(kControlOptionK);
    ASSERT_EQ(
        VirtualDesktop::run(QStringLiteral("xmodmap"), {QStringLiteral("-e"), QStringLiteral("clear mod2"),
                                                        QStringLiteral("-e"), QStringLiteral("add mod3 = Num_Lock")}),
        0);
    const bool moved = VirtualDesktop::waitUntil([&] { return hotKeys().numLockMask() == XCB_MOD_MASK_3; });
    const bool locked = moved && setLock(XTestKeyboard::numLock, XCB_MOD_MASK_3, true);
    keyboard.type(kControlAlt, XTestKeyboard::keyK);
    const bool settled = settle();
    setLock(XTestKeyboard::numLock, hotKeys().numLockMask(), false);
    VirtualDesktop::run(QStringLiteral("xmodmap"), {QStringLiteral("-e"), QStringLiteral("clear mod3"),
                                                    QStringLiteral("-e"), QStringLiteral("add mod2 = Num_Lock")});
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return hotKeys().numLockMask() == original; }));
    ASSERT_TRUE(moved) << "the new NumLock modifier was not noticed";
    ASSERT_TRUE(locked);
    ASSERT_TRUE(settled);
    EXPECT_EQ(counter.ups, 1) << "the grabs were renewed for the new NumLock bit";
}

// Prints how long a key press typed through XTEST takes to reach the handler.
TEST_F(ShortcutsDesktopTest, PressToHandlerLatencyFigures) {
    Counter& counter = countedDisplayShortcut(kControlOptionK);
    keyboard.press(XTestKeyboard::controlL);
    keyboard.press(XTestKeyboard::altL);
    constexpr int kPresses = 100;
    QList<qint64> nanoseconds;
    QElapsedTimer timer;
    for (int i = 0; i < kPresses; ++i) {
        const int before = counter.downs;
        timer.start();
        keyboard.press(XTestKeyboard::keyK);
        // Spin without sleeping so that the figure is not the polling interval.
        while (counter.downs == before && timer.elapsed() < 5000) {
            QCoreApplication::processEvents();
        }
        if (counter.downs == before) {
            break;
        }
        nanoseconds.append(timer.nsecsElapsed());
        keyboard.release(XTestKeyboard::keyK);
        VirtualDesktop::waitUntil([&] { return counter.ups > before; }, 5000);
    }
    keyboard.release(XTestKeyboard::altL);
    keyboard.release(XTestKeyboard::controlL);
    ASSERT_EQ(nanoseconds.size(), kPresses);
    EXPECT_EQ(counter.ups, kPresses);
    std::sort(nanoseconds.begin(), nanoseconds.end());
    const double sum = std::accumulate(nanoseconds.cbegin(), nanoseconds.cend(), 0.0);
    std::printf(
        "[figures] XTEST press -> onKeyDown handler over %d presses: median %.3f ms, mean %.3f ms, "
        "p95 %.3f ms, max %.3f ms\n",
        kPresses, nanoseconds[kPresses / 2] / 1e6, sum / kPresses / 1e6, nanoseconds[kPresses * 95 / 100] / 1e6,
        nanoseconds.last() / 1e6);
}

}  // namespace
