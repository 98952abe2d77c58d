// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "app/controller/AppController.h"
#include "app/displayshortcuts/ShortcutDisplayRecordCoding.h"
#include "platform/fake/FakePlatform.h"

namespace {

const QString kRecordsKey = QStringLiteral("shortcutDisplayRecords.v1");

Monitor display(MonitorId id, const QString& name, quint32 serial, qreal x = 0) {
    return {.id = id, .name = name, .bounds = QRectF(x, 0, 1920, 1080), .vendor = 16, .model = 32, .serial = serial};
}

class ShortcutDisplayRecordsTest : public ::testing::Test {
protected:
    FakePlatform platform;

    QByteArray storedRecords() const { return platform.settings.dataValue(kRecordsKey).value_or(QByteArray()); }
    void storeRecords(const QByteArray& json) { platform.settings.setData(kRecordsKey, json); }
};

TEST_F(ShortcutDisplayRecordsTest, FirstRunWithTwoDisplaysStoresTwoRecordsSortedByIndex) {
    platform.monitors.setMonitors(
        {display(5, QStringLiteral("Studio Display"), 7), display(9, QStringLiteral("Side"), 8, 1920)});
    AppController controller;
    EXPECT_TRUE(platform.settings.dataValue(kRecordsKey).has_value());
    EXPECT_EQ(storedRecords(), QByteArray(R"([{"id":"v16-m32-s7","lastKnownName":"Studio Display","lastKnownIndex":1},)"
                                          R"({"id":"v16-m32-s8","lastKnownName":"Side","lastKnownIndex":2}])"));
    ASSERT_EQ(controller.connectedShortcutDisplays().size(), 2);
    EXPECT_EQ(controller.connectedShortcutDisplays()[0],
              (ShortcutDisplayItem{QStringLiteral("v16-m32-s7"), QStringLiteral("Studio Display"), 1, true}));
    EXPECT_EQ(controller.connectedShortcutDisplays()[1],
              (ShortcutDisplayItem{QStringLiteral("v16-m32-s8"), QStringLiteral("Side"), 2, true}));
    EXPECT_TRUE(controller.disconnectedShortcutDisplays().isEmpty());
    EXPECT_EQ(controller.registeredShortcutDisplayIDs(),
              (QSet<QString>{QStringLiteral("v16-m32-s7"), QStringLiteral("v16-m32-s8")}));
}

TEST_F(ShortcutDisplayRecordsTest, UnpluggingMovesTheRowToDisconnectedWithItsLastNameAndIndex) {
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1), display(9, QStringLiteral("Side"), 2, 1920)});
    AppController controller;
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1)});
    controller.refreshShortcutDisplays();
    ASSERT_EQ(controller.connectedShortcutDisplays().size(), 1);
    ASSERT_EQ(controller.disconnectedShortcutDisplays().size(), 1);
    EXPECT_EQ(controller.disconnectedShortcutDisplays()[0],
              (ShortcutDisplayItem{QStringLiteral("v16-m32-s2"), QStringLiteral("Side"), 2, false}));
    // Its handler stays installed so that its shortcut can say the display is absent.
    EXPECT_TRUE(controller.registeredShortcutDisplayIDs().contains(QStringLiteral("v16-m32-s2")));
}

TEST_F(ShortcutDisplayRecordsTest, DisplayChangeSignalUpdatesShortcutListsButNotThePanelDisplays) {
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1), display(9, QStringLiteral("Side"), 2, 1920)});
    AppController controller;
    const QList<DisplaySnapshot> panelDisplays = controller.displays();
    platform.monitors.changeMonitors({display(5, QStringLiteral("Main"), 1)});
    QCoreApplication::processEvents();
    EXPECT_EQ(controller.connectedShortcutDisplays().size(), 1);
    EXPECT_EQ(controller.disconnectedShortcutDisplays().size(), 1);
    EXPECT_EQ(controller.displays().size(), panelDisplays.size());
}

TEST_F(ShortcutDisplayRecordsTest, ReconnectedDisplayGetsItsOldRecordBack) {
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1), display(9, QStringLiteral("Side"), 2, 1920)});
    AppController controller;
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1)});
    controller.refreshShortcutDisplays();
    // Back under a new display number and another name: matched by its stable identifier.
    platform.monitors.setMonitors(
        {display(5, QStringLiteral("Main"), 1), display(44, QStringLiteral("Side 2"), 2, 1920)});
    controller.refreshShortcutDisplays();
    EXPECT_TRUE(controller.disconnectedShortcutDisplays().isEmpty());
    ASSERT_EQ(controller.connectedShortcutDisplays().size(), 2);
    EXPECT_EQ(controller.connectedShortcutDisplays()[1].id, QStringLiteral("v16-m32-s2"));
    EXPECT_EQ(controller.shortcutDisplayRecords().size(), 2);
    EXPECT_EQ(controller.shortcutDisplayRecords()[1].lastKnownName, QStringLiteral("Side 2"));
}

TEST_F(ShortcutDisplayRecordsTest, DeletingTheDisconnectedRowRemovesItsRecordAndDeletingAgainDoesNothing) {
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1), display(9, QStringLiteral("Side"), 2, 1920)});
    AppController controller;
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1)});
    controller.refreshShortcutDisplays();
    controller.deleteDisconnectedShortcutDisplay(QStringLiteral("v16-m32-s2"));
    EXPECT_TRUE(controller.disconnectedShortcutDisplays().isEmpty());
    EXPECT_EQ(storedRecords(), QByteArray(R"([{"id":"v16-m32-s1","lastKnownName":"Main","lastKnownIndex":1}])"));
    EXPECT_FALSE(controller.registeredShortcutDisplayIDs().contains(QStringLiteral("v16-m32-s2")));
    const QByteArray before = storedRecords();
    controller.deleteDisconnectedShortcutDisplay(QStringLiteral("v16-m32-s2"));
    EXPECT_EQ(storedRecords(), before);
    EXPECT_EQ(controller.connectedShortcutDisplays().size(), 1);
}

TEST_F(ShortcutDisplayRecordsTest, ConnectedDisplayCannotBeDeleted) {
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1)});
    AppController controller;
    controller.deleteDisconnectedShortcutDisplay(QStringLiteral("v16-m32-s1"));
    EXPECT_EQ(controller.shortcutDisplayRecords().size(), 1);
    EXPECT_EQ(controller.connectedShortcutDisplays().size(), 1);
}

TEST_F(ShortcutDisplayRecordsTest, RecordWithoutIndexDecodesSortsLastAndIsWrittenBackWithoutIt) {
    storeRecords(R"([{"id":"old","lastKnownName":"Attic"},{"id":"other","lastKnownName":"Beta","lastKnownIndex":3}])");
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1)});
    AppController controller;
    EXPECT_EQ(storedRecords(), QByteArray(R"([{"id":"v16-m32-s1","lastKnownName":"Main","lastKnownIndex":1},)"
                                          R"({"id":"other","lastKnownName":"Beta","lastKnownIndex":3},)"
                                          R"({"id":"old","lastKnownName":"Attic"}])"));
    ASSERT_EQ(controller.disconnectedShortcutDisplays().size(), 2);
    EXPECT_EQ(controller.disconnectedShortcutDisplays()[1],
              (ShortcutDisplayItem{QStringLiteral("old"), QStringLiteral("Attic"), std::nullopt, false}));
}

TEST_F(ShortcutDisplayRecordsTest, NullIndexDecodesAsAbsent) {
    const auto records =
        ShortcutDisplayRecordCoding::decode(R"([{"id":"a","lastKnownName":"A","lastKnownIndex":null}])");
    ASSERT_TRUE(records.has_value());
    ASSERT_EQ(records->size(), 1);
    EXPECT_FALSE(records->first().lastKnownIndex.has_value());
}

TEST_F(ShortcutDisplayRecordsTest, EqualIndexesAreOrderedByNameCaseInsensitively) {
    storeRecords(R"([{"id":"zeta","lastKnownName":"Zeta","lastKnownIndex":1}])");
    platform.monitors.setMonitors({{.id = 5, .name = QStringLiteral("apple"), .bounds = QRectF(0, 0, 100, 100)}});
    AppController controller;
    ASSERT_EQ(controller.shortcutDisplayRecords().size(), 2);
    EXPECT_EQ(controller.shortcutDisplayRecords()[0].lastKnownName, QStringLiteral("apple"));
    EXPECT_EQ(controller.shortcutDisplayRecords()[1].lastKnownName, QStringLiteral("Zeta"));
    ASSERT_EQ(controller.disconnectedShortcutDisplays().size(), 1);
    EXPECT_EQ(controller.disconnectedShortcutDisplays()[0].name, QStringLiteral("Zeta"));
}

TEST_F(ShortcutDisplayRecordsTest, CorruptDataIsReplacedAtStartUpByTheConnectedDisplays) {
    storeRecords("{not json");
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1)});
    AppController controller;
    EXPECT_EQ(storedRecords(), QByteArray(R"([{"id":"v16-m32-s1","lastKnownName":"Main","lastKnownIndex":1}])"));
}

// The values kept aside under "<key>.corrupt-<time>".
QList<SettingValue> keptCopies(const FakeSettingsStore& settings) {
    QList<SettingValue> kept;
    for (const QString& key : settings.keys()) {
        if (key.startsWith(kRecordsKey + QStringLiteral(".corrupt-"))) {
            kept.append(*settings.value(key));
        }
    }
    return kept;
}

TEST_F(ShortcutDisplayRecordsTest, UndecodableDocumentIsKeptAsideOnceBeforeItIsReplaced) {
    const QByteArray document =
        R"([{"id":"v16-m32-s9","lastKnownName":"Unplugged","lastKnownIndex":2},{"id":"v16-m32-s9","lastKnownName":"Twin"}])";
    storeRecords(document);
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1)});
    {
        AppController controller;
        EXPECT_EQ(controller.shortcutDisplayRecords().size(), 1);
    }
    EXPECT_EQ(storedRecords(), QByteArray(R"([{"id":"v16-m32-s1","lastKnownName":"Main","lastKnownIndex":1}])"));
    EXPECT_EQ(keptCopies(platform.settings), QList<SettingValue>{SettingValue(document)});
    // The replacement reads back: a second start keeps nothing more.
    AppController again;
    EXPECT_EQ(keptCopies(platform.settings).size(), 1);
}

TEST_F(ShortcutDisplayRecordsTest, StoredValueOfAnotherTypeIsKeptAsideWithItsType) {
    platform.settings.setString(kRecordsKey, QStringLiteral("[]"));
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1)});
    AppController controller;
    EXPECT_EQ(keptCopies(platform.settings), QList<SettingValue>{SettingValue(QStringLiteral("[]"))});
}

TEST_F(ShortcutDisplayRecordsTest, ReadableDocumentKeepsNothingAside) {
    storeRecords(R"([{"id":"v16-m32-s1","lastKnownName":"Main","lastKnownIndex":1}])");
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1)});
    AppController controller;
    EXPECT_TRUE(keptCopies(platform.settings).isEmpty());
}

TEST_F(ShortcutDisplayRecordsTest, DocumentThatRepeatsAnIdentifierReadsAsEmpty) {
    storeRecords(
        R"([{"id":"a","lastKnownName":"A","lastKnownIndex":1},{"id":"a","lastKnownName":"B","lastKnownIndex":2}])");
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1)});
    AppController controller;
    EXPECT_EQ(controller.shortcutDisplayRecords().size(), 1);
    EXPECT_TRUE(controller.disconnectedShortcutDisplays().isEmpty());
}

TEST_F(ShortcutDisplayRecordsTest, StoredValueOfAnotherTypeReadsAsEmpty) {
    platform.settings.setString(kRecordsKey, QStringLiteral("[]"));
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1)});
    AppController controller;
    EXPECT_EQ(controller.shortcutDisplayRecords().size(), 1);
    EXPECT_TRUE(platform.settings.dataValue(kRecordsKey).has_value());
}

TEST_F(ShortcutDisplayRecordsTest, MalformedRecordsMakeTheWholeDocumentUnreadable) {
    for (const QByteArray& json :
         {QByteArray(R"({"id":"a"})"), QByteArray(R"([{"id":1,"lastKnownName":"A"}])"),
          QByteArray(R"([{"lastKnownName":"A"}])"),
          QByteArray(R"([{"id":"a","lastKnownName":"A","lastKnownIndex":"2"}])"),
          QByteArray(R"([{"id":"a","lastKnownName":"A","lastKnownIndex":2.5}])"),
          QByteArray(R"([{"id":"a","lastKnownName":"A","lastKnownIndex":9999999999}])"), QByteArray(R"([3])")}) {
        EXPECT_FALSE(ShortcutDisplayRecordCoding::decode(json).has_value()) << json.constData();
    }
}

TEST_F(ShortcutDisplayRecordsTest, EncodingEscapesNamesAndRoundTrips) {
    const QList<ShortcutDisplayRecord> records{{QStringLiteral("display-3"), QStringLiteral("Dell \"U2720Q\" \\ é"), 2},
                                               {QStringLiteral("x"), QStringLiteral("No index"), std::nullopt}};
    const QByteArray json = ShortcutDisplayRecordCoding::encode(records);
    EXPECT_EQ(ShortcutDisplayRecordCoding::decode(json), records);
    EXPECT_TRUE(QJsonDocument::fromJson(json).isArray());
}

TEST_F(ShortcutDisplayRecordsTest, EveryRebuildRewritesTheStoredValue) {
    platform.monitors.setMonitors({display(5, QStringLiteral("Main"), 1)});
    AppController controller;
    platform.settings.remove(kRecordsKey);
    controller.refreshShortcutDisplays();
    EXPECT_TRUE(platform.settings.contains(kRecordsKey));
}

}  // namespace
