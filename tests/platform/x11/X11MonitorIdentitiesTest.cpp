// SPDX-License-Identifier: MIT
// Identical monitors get distinct identities, and the same ones every time.
#include <gtest/gtest.h>

#include <QSet>

#include "app/displays/ScreenSnapshotService.h"
#include "platform/x11/X11MonitorIdentities.h"

namespace {

Monitor identical(MonitorId id, quint32 serial = 0x01010101) {
    Monitor monitor;
    monitor.id = id;
    monitor.name = QStringLiteral("DELL U2720Q");
    monitor.vendor = 0x10AC;
    monitor.model = 0xA0C4;
    monitor.serial = serial;
    monitor.unit = static_cast<quint32>(id);
    return monitor;
}

QStringList identifiers(const QList<Monitor>& monitors) {
    QStringList result;
    for (const Monitor& monitor : monitors) {
        result.append(ScreenSnapshotService::stableDisplayIdentifier(monitor));
    }
    return result;
}

// Runs the disambiguation on monitors plugged into the connectors, with the serial texts.
QStringList distinct(QList<Monitor>& monitors, const QStringList& connectors, const QStringList& serialTexts) {
    QList<X11MonitorIdentities::Candidate> candidates;
    for (qsizetype i = 0; i < monitors.size(); ++i) {
        candidates.append({&monitors[i], connectors[i], serialTexts[i]});
    }
    return X11MonitorIdentities::makeDistinct(candidates);
}

TEST(X11MonitorIdentitiesTest, SameNumericSerialWithDifferentSerialTextsGivesDistinctIdentifiers) {
    QList<Monitor> monitors = {identical(101), identical(102)};
    const QStringList changes = distinct(monitors, {QStringLiteral("DP-1"), QStringLiteral("DP-2")},
                                         {QStringLiteral("CN0A"), QStringLiteral("CN0B")});
    const QStringList ids = identifiers(monitors);
    EXPECT_NE(ids[0], ids[1]);
    // The first keeps the identifier it always had, so what was stored for it still matches.
    EXPECT_EQ(ids[0], QStringLiteral("v4268-m41156-s16843009"));
    ASSERT_EQ(changes.size(), 1);
    EXPECT_TRUE(changes[0].contains(QLatin1String("DP-2"))) << changes[0].toStdString();
    EXPECT_TRUE(changes[0].contains(QLatin1String("serial-number text"))) << changes[0].toStdString();
}

TEST(X11MonitorIdentitiesTest, SerialTextDecidesIndependentlyOfTheConnector) {
    QList<Monitor> before = {identical(101), identical(102)};
    distinct(before, {QStringLiteral("DP-1"), QStringLiteral("DP-2")},
             {QStringLiteral("CN0A"), QStringLiteral("CN0B")});
    // The second monitor moved to another connector that still sorts after the first.
    QList<Monitor> after = {identical(201), identical(202)};
    distinct(after, {QStringLiteral("DP-1"), QStringLiteral("HDMI-1")},
             {QStringLiteral("CN0A"), QStringLiteral("CN0B")});
    EXPECT_EQ(identifiers(before), identifiers(after));
}

TEST(X11MonitorIdentitiesTest, EqualSerialTextsAreToldApartByConnectorStably) {
    QList<Monitor> first = {identical(101), identical(102)};
    const QStringList changes =
        distinct(first, {QStringLiteral("HDMI-1"), QStringLiteral("DP-1")}, {QStringLiteral("0"), QStringLiteral("0")});
    const QStringList ids = identifiers(first);
    EXPECT_NE(ids[0], ids[1]);
    // DP-1 sorts first and keeps the plain identifier, whichever monitor the server lists first.
    EXPECT_EQ(ids[1], QStringLiteral("v4268-m41156-s16843009"));
    ASSERT_EQ(changes.size(), 1);
    EXPECT_TRUE(changes[0].contains(QLatin1String("connector"))) << changes[0].toStdString();

    // Listed the other way round (another primary monitor), after a reconnection with new display numbers.
    QList<Monitor> again = {identical(301), identical(302)};
    distinct(again, {QStringLiteral("DP-1"), QStringLiteral("HDMI-1")}, {QStringLiteral("0"), QStringLiteral("0")});
    EXPECT_EQ(identifiers(again), (QStringList{ids[1], ids[0]}));
}

TEST(X11MonitorIdentitiesTest, ThreeIdenticalMonitorsWithoutSerialTextsAllDiffer) {
    QList<Monitor> monitors = {identical(1), identical(2), identical(3)};
    const QStringList changes =
        distinct(monitors, {QStringLiteral("DP-1"), QStringLiteral("DP-2"), QStringLiteral("DP-3")},
                 {QString(), QString(), QString()});
    const QStringList ids = identifiers(monitors);
    EXPECT_EQ(QSet<QString>(ids.cbegin(), ids.cend()).size(), 3);
    EXPECT_EQ(changes.size(), 2);
}

TEST(X11MonitorIdentitiesTest, EqualUnitsWithoutSerialAreToldApart) {
    Monitor first = identical(1, 0);
    Monitor second = identical(2, 0);
    second.unit = first.unit;
    QList<Monitor> monitors = {first, second};
    distinct(monitors, {QStringLiteral("DP-1"), QStringLiteral("DP-2")}, {QString(), QString()});
    const QStringList ids = identifiers(monitors);
    EXPECT_NE(ids[0], ids[1]);
    EXPECT_EQ(ids[0], QStringLiteral("v4268-m41156-u1"));
}

TEST(X11MonitorIdentitiesTest, DistinctMonitorsAreLeftAsTheyAre) {
    Monitor other = identical(2, 0x02020202);
    QList<Monitor> monitors = {identical(1), other, identical(3, 0)};
    monitors[2].vendor = 0;
    monitors[2].model = 0;
    const QList<Monitor> original = monitors;
    const QStringList changes =
        distinct(monitors, {QStringLiteral("DP-1"), QStringLiteral("DP-2"), QStringLiteral("VIRTUAL-1")},
                 {QString(), QString(), QString()});
    EXPECT_TRUE(changes.isEmpty());
    EXPECT_EQ(monitors, original);
}

}  // namespace
