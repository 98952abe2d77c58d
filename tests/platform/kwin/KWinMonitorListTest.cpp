// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/displays/ScreenSnapshotService.h"
#include "platform/kwin/KWinMonitorList.h"

namespace {

// An EDID base block with a valid checksum: manufacturer, product, serial and a monitor-name descriptor.
QByteArray edid(quint16 manufacturer, quint16 product, quint32 serial, const QByteArray& name = {}) {
    QByteArray block(128, '\0');
    const char header[8] = {0, char(0xFF), char(0xFF), char(0xFF), char(0xFF), char(0xFF), char(0xFF), 0};
    for (int i = 0; i < 8; ++i) {
        block[i] = header[i];
    }
    block[8] = char(manufacturer >> 8);
    block[9] = char(manufacturer & 0xFF);
    block[10] = char(product & 0xFF);
    block[11] = char(product >> 8);
    for (int i = 0; i < 4; ++i) {
        block[12 + i] = char((serial >> (8 * i)) & 0xFF);
    }
    block[54] = 0x01;  // a detailed timing, not a descriptor
    if (!name.isEmpty()) {
        block[72 + 3] = char(0xFC);
        const QByteArray text = (name + '\n').leftJustified(13, ' ', true);
        for (int i = 0; i < 13; ++i) {
            block[72 + 5 + i] = text[i];
        }
    }
    int sum = 0;
    for (int i = 0; i < 127; ++i) {
        sum += quint8(block[i]);
    }
    block[127] = char((256 - sum % 256) % 256);
    return block;
}

KWinOutputDevice device(const QString& name, const QRect& geometry, const QByteArray& edidBytes = {}) {
    KWinOutputDevice device;
    device.name = name;
    device.position = geometry.topLeft();
    device.modeSize = geometry.size();
    device.edid = edidBytes;
    device.enabled = true;
    return device;
}

KWinState screens(const QList<KWinScreen>& list) {
    KWinState state;
    state.api = 6;
    state.screens = list;
    return state;
}

QString noToolkitName(const QRectF&) {
    return {};
}

const QRect kLeft(0, 0, 1920, 1080);
const QRect kRight(1920, 0, 2560, 1440);

TEST(KWinMonitorListTest, OutputsWithoutEdidKeepTheirConnectorsNumber) {
    const KWinState state = screens({{QStringLiteral("Virtual-0"), kLeft}, {QStringLiteral("Virtual-1"), kRight}});
    const QList<KWinListedMonitor> listed = KWinMonitorList::build(
        state, {device(QStringLiteral("Virtual-0"), kLeft), device(QStringLiteral("Virtual-1"), kRight)}, noToolkitName,
        nullptr);
    ASSERT_EQ(listed.size(), 2);
    for (const KWinListedMonitor& entry : listed) {
        EXPECT_EQ(entry.monitor.id, KWinMonitorList::idForConnector(entry.connector));
        EXPECT_EQ(entry.monitor.name, entry.connector);
        EXPECT_EQ(entry.monitor.vendor, 0u);
        EXPECT_EQ(entry.monitor.serial, 0u);
        EXPECT_EQ(entry.monitor.formerId, 0u);
        // The identifier settings were stored under before EDIDs were read.
        EXPECT_EQ(ScreenSnapshotService::stableDisplayIdentifier(entry.monitor),
                  QStringLiteral("display-%1").arg(KWinMonitorList::idForConnector(entry.connector)));
    }
    EXPECT_TRUE(listed[0].monitor.primary);
    EXPECT_FALSE(listed[1].monitor.primary);
    EXPECT_EQ(listed[1].monitor.bounds, QRectF(kRight));
    // Without any output device (no Wayland connection) the same.
    EXPECT_EQ(KWinMonitorList::build(state, {}, noToolkitName, nullptr), listed);
}

TEST(KWinMonitorListTest, AnOutputWithEdidIsKnownByItAndRemembersItsConnectorsNumber) {
    const KWinState state = screens({{QStringLiteral("eDP-1"), kLeft}, {QStringLiteral("DP-2"), kRight}});
    const QList<KWinListedMonitor> listed =
        KWinMonitorList::build(state,
                               {device(QStringLiteral("eDP-1"), kLeft),
                                device(QStringLiteral("DP-2"), kRight, edid(0x10AC, 0xA0C4, 123456, "DELL U2720Q"))},
                               noToolkitName, nullptr);
    ASSERT_EQ(listed.size(), 2);
    const Monitor& external = listed[1].monitor;
    EXPECT_EQ(listed[1].connector, QStringLiteral("DP-2"));
    EXPECT_EQ(external.name, QStringLiteral("DELL U2720Q"));
    EXPECT_EQ(external.vendor, 0x10ACu);
    EXPECT_EQ(external.model, 0xA0C4u);
    EXPECT_EQ(external.serial, 123456u);
    EXPECT_EQ(external.id, KWinMonitorList::idForConnector(QStringLiteral("DP-2")));
    EXPECT_EQ(external.formerId, external.id);
    EXPECT_EQ(ScreenSnapshotService::stableDisplayIdentifier(external), QStringLiteral("v4268-m41156-s123456"));
    EXPECT_EQ(ScreenSnapshotService::formerDisplayIdentifier(external), QStringLiteral("display-%1").arg(external.id));
}

TEST(KWinMonitorListTest, AMonitorPluggedIntoAnotherConnectorKeepsItsIdentifier) {
    const QByteArray studio = edid(0x4C2D, 0x7100, 99, "Studio");
    const QList<KWinListedMonitor> before =
        KWinMonitorList::build(screens({{QStringLiteral("DP-1"), kLeft}}),
                               {device(QStringLiteral("DP-1"), kLeft, studio)}, noToolkitName, nullptr);
    const QList<KWinListedMonitor> after =
        KWinMonitorList::build(screens({{QStringLiteral("HDMI-A-1"), kLeft}}),
                               {device(QStringLiteral("HDMI-A-1"), kLeft, studio)}, noToolkitName, nullptr);
    ASSERT_EQ(before.size(), 1);
    ASSERT_EQ(after.size(), 1);
    EXPECT_NE(before[0].monitor.id, after[0].monitor.id);
    EXPECT_EQ(ScreenSnapshotService::stableDisplayIdentifier(before[0].monitor),
              ScreenSnapshotService::stableDisplayIdentifier(after[0].monitor));
}

TEST(KWinMonitorListTest, UnnamedScreensOfPlasma5AreNamedByTheDeviceAtTheirPlace) {
    // The protocol rounds the scale: 2560 pixels at 1.332031 are 1921.9 logical ones.
    KWinOutputDevice scaled = device(QStringLiteral("Virtual-0"), QRect(0, 0, 2560, 1440), edid(0x1E6D, 0x5B09, 7));
    scaled.scale = 1.332031;
    const QList<KWinListedMonitor> listed =
        KWinMonitorList::build(screens({{QString(), QRectF(0, 0, 1920, 1080)}, {QString(), kRight}}),
                               {scaled, device(QStringLiteral("Virtual-1"), kRight)}, noToolkitName, nullptr);
    ASSERT_EQ(listed.size(), 2);
    EXPECT_EQ(listed[0].connector, QStringLiteral("Virtual-0"));
    EXPECT_EQ(listed[0].monitor.serial, 7u);
    EXPECT_EQ(listed[1].connector, QStringLiteral("Virtual-1"));
    EXPECT_EQ(listed[1].monitor.serial, 0u);
}

TEST(KWinMonitorListTest, TheToolkitNamesAScreenThatNothingElseNames) {
    const QList<KWinListedMonitor> listed = KWinMonitorList::build(
        screens({{QString(), kLeft}, {QString(), kRight}}), {},
        [](const QRectF& geometry) { return geometry == QRectF(kRight) ? QStringLiteral("Right") : QString(); },
        nullptr);
    ASSERT_EQ(listed.size(), 2);
    EXPECT_EQ(listed[0].connector, QString());
    EXPECT_EQ(listed[0].monitor.id, KWinMonitorList::idForConnector(QStringLiteral("screen-0")));
    EXPECT_EQ(listed[1].connector, QStringLiteral("Right"));
    EXPECT_EQ(listed[1].monitor.id, KWinMonitorList::idForConnector(QStringLiteral("Right")));
}

TEST(KWinMonitorListTest, DisabledDevicesAndUnreadableEdidsAreNotUsed) {
    KWinOutputDevice disabled = device(QStringLiteral("DP-1"), kLeft, edid(0x10AC, 1, 5));
    disabled.enabled = false;
    QByteArray broken = edid(0x10AC, 2, 6);
    broken[127] = char(broken[127] + 1);
    const QList<KWinListedMonitor> listed =
        KWinMonitorList::build(screens({{QStringLiteral("DP-1"), kLeft}, {QStringLiteral("DP-2"), kRight}}),
                               {disabled, device(QStringLiteral("DP-2"), kRight, broken)}, noToolkitName, nullptr);
    ASSERT_EQ(listed.size(), 2);
    EXPECT_EQ(listed[0].monitor.vendor, 0u);
    EXPECT_EQ(listed[1].monitor.vendor, 0u);
    EXPECT_EQ(listed[1].monitor.formerId, 0u);
    EXPECT_EQ(listed[1].monitor.name, QStringLiteral("DP-2"));
}

TEST(KWinMonitorListTest, TwinsWithOneSerialAreToldApartByConnector) {
    const QByteArray twin = edid(0x10AC, 0x4321, 0, "Twin");
    QStringList changes;
    const QList<KWinListedMonitor> listed = KWinMonitorList::build(
        screens({{QStringLiteral("DP-2"), kLeft}, {QStringLiteral("DP-1"), kRight}}),
        {device(QStringLiteral("DP-2"), kLeft, twin), device(QStringLiteral("DP-1"), kRight, twin)}, noToolkitName,
        &changes);
    ASSERT_EQ(listed.size(), 2);
    EXPECT_NE(ScreenSnapshotService::stableDisplayIdentifier(listed[0].monitor),
              ScreenSnapshotService::stableDisplayIdentifier(listed[1].monitor));
    // The first connector by name keeps the plain identity.
    EXPECT_EQ(ScreenSnapshotService::stableDisplayIdentifier(listed[1].monitor), QStringLiteral("v4268-m17185-u0"));
    ASSERT_EQ(changes.size(), 1);
    EXPECT_TRUE(changes[0].contains(QStringLiteral("DP-1"))) << changes[0].toStdString();
}

}  // namespace
