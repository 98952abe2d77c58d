// SPDX-License-Identifier: MIT
#include <QDBusConnection>
#include <QDBusMessage>
#include <QSignalSpy>

#include "platform/HotKeys.h"
#include "platform/Platform.h"
#include "platform/kwin/KWinBridge.h"
#include "tests/platform/kwin/KWinSessionFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

using KWinHotKeysTest = KWinSessionFixture;

constexpr quint32 kControl = 0x1000;
constexpr quint32 kOption = 0x800;
constexpr quint32 kTab = 0x30;
constexpr quint32 kFunction = 0x20000;
constexpr quint32 kTwo = 0x13;

// Asks KGlobalAccel to run one of Lattica's shortcuts, as a key press would.
bool invoke(const QString& action) {
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.kde.kglobalaccel"), QStringLiteral("/component/lattica"),
        QStringLiteral("org.kde.kglobalaccel.Component"), QStringLiteral("invokeShortcut"));
    message.setArguments({action});
    return QDBusConnection::sessionBus().call(message).type() == QDBusMessage::ReplyMessage;
}

TEST_F(KWinHotKeysTest, ARegisteredShortcutReportsItsPress) {
    HotKeys& hotKeys = *Platform::services().hotKeys;
    const HotKeys::Registration registration = hotKeys.registerHotKey(kTwo, kControl | kOption);
    ASSERT_TRUE(std::holds_alternative<HotKeys::RegistrationId>(registration));
    const HotKeys::RegistrationId id = std::get<HotKeys::RegistrationId>(registration);
    QSignalSpy pressed(&hotKeys, &HotKeys::pressed);
    ASSERT_TRUE(invoke(QStringLiteral("hotkey-%1").arg(id)));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return pressed.size() == 1; }));
    EXPECT_EQ(pressed.first().first().value<HotKeys::RegistrationId>(), id);

    hotKeys.unregisterHotKey(id);
    pressed.clear();
    invoke(QStringLiteral("hotkey-%1").arg(id));
    // The next registration is answered only after KGlobalAccel has handled the call above.
    const auto again = hotKeys.registerHotKey(kTwo, kControl | kOption);
    ASSERT_TRUE(std::holds_alternative<HotKeys::RegistrationId>(again));
    QCoreApplication::processEvents();
    EXPECT_TRUE(pressed.isEmpty());
    hotKeys.unregisterHotKey(std::get<HotKeys::RegistrationId>(again));
}

TEST_F(KWinHotKeysTest, AKeyboardPressReportsThePressAndTheReleaseApart) {
    HotKeys& hotKeys = *Platform::services().hotKeys;
    const HotKeys::Registration registration = hotKeys.registerHotKey(kTwo, kControl | kOption);
    ASSERT_TRUE(std::holds_alternative<HotKeys::RegistrationId>(registration))
        << static_cast<int>(std::get<HotKeys::Failure>(registration).error);
    const HotKeys::RegistrationId id = std::get<HotKeys::RegistrationId>(registration);
    QSignalSpy pressed(&hotKeys, &HotKeys::pressed);
    QSignalSpy released(&hotKeys, &HotKeys::released);
    FakeKeys keys;
    ASSERT_TRUE(keys.start());

    ASSERT_TRUE(keys.send("down", FakeKeys::kEvdevLeftControl));
    ASSERT_TRUE(keys.send("down", FakeKeys::kEvdevLeftAlt));
    ASSERT_TRUE(keys.send("down", FakeKeys::kEvdevTwo));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return pressed.size() == 1; }));
    EXPECT_EQ(pressed.first().first().value<HotKeys::RegistrationId>(), id);
    EXPECT_TRUE(released.isEmpty());

    ASSERT_TRUE(keys.send("up", FakeKeys::kEvdevTwo));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return released.size() == 1; }));
    EXPECT_EQ(released.first().first().value<HotKeys::RegistrationId>(), id);
    EXPECT_EQ(pressed.size(), 1);
    keys.send("up", FakeKeys::kEvdevLeftAlt);
    keys.send("up", FakeKeys::kEvdevLeftControl);
    hotKeys.unregisterHotKey(id);
}

TEST_F(KWinHotKeysTest, KWinsOwnShortcutsAreTakenAndFunctionIsRefused) {
    HotKeys& hotKeys = *Platform::services().hotKeys;
    EXPECT_TRUE(hotKeys.isHeldByAnotherClient(kTab, kOption));  // KWin's window switcher
    const auto taken = hotKeys.registerHotKey(kTab, kOption);
    ASSERT_TRUE(std::holds_alternative<HotKeys::Failure>(taken));
    EXPECT_EQ(std::get<HotKeys::Failure>(taken).error, HotKeys::Error::takenByAnotherClient);
    const auto function = hotKeys.registerHotKey(kTwo, kFunction);
    ASSERT_TRUE(std::holds_alternative<HotKeys::Failure>(function));
    EXPECT_EQ(std::get<HotKeys::Failure>(function).error, HotKeys::Error::unsupportedModifier);
}

}  // namespace
