// SPDX-License-Identifier: MIT
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QToolButton>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "KeyboardShortcuts/Name.h"
#include "KeyboardShortcuts/Shortcut.h"
#include "KeyboardShortcuts/widgets/ShortcutRecorder.h"
#include "KeyboardShortcuts/ShortcutStore.h"
#include "app/ui/settings/SettingsShortcutsSection.h"
#include "app/ui/settings/ShortcutRecorderRow.h"
#include "tests/ui/settings/SettingsFixture.h"

namespace {

class SettingsShortcutsSectionTest : public SettingsFixture {
protected:
    SettingsShortcutsSection* shortcuts() {
        makeView();
        view->setSelectedSection(SettingsSection::Shortcuts);
        return view->findChild<SettingsShortcutsSection*>();
    }

    static QStringList labels(const QList<ShortcutRecorderRow*>& rows) {
        QStringList texts;
        for (const ShortcutRecorderRow* row : rows) {
            texts.append(row->labelShown());
        }
        return texts;
    }
};

TEST_F(SettingsShortcutsSectionTest, ConnectedRowsAreLabelledWithIndexAndName) {
    SettingsShortcutsSection* section = shortcuts();
    ASSERT_NE(section, nullptr);
    EXPECT_EQ(labels(section->connectedRows()),
              (QStringList{QStringLiteral("1. Built-in Display"), QStringLiteral("2. Studio Display")}));
    EXPECT_TRUE(section->connectedEmptyText().isEmpty());
}

TEST_F(SettingsShortcutsSectionTest, EachRowHasARecorderForItsDisplaysShortcutName) {
    SettingsShortcutsSection* section = shortcuts();
    ASSERT_EQ(section->connectedRows().size(), 2);
    const ShortcutRecorderRow* studio = section->connectedRows()[1];
    ASSERT_NE(studio->recorder(), nullptr);
    EXPECT_EQ(studio->recorder()->shortcutName().rawValue(),
              QStringLiteral("moveFocusedWindowToDisplay.") + studioID());
    EXPECT_TRUE(studio->recorder()->isVisible());
}

TEST_F(SettingsShortcutsSectionTest, RowsShowShortcutsAsLinuxDesktopsWriteThem) {
    platform.keyboardLayout.useUSLayout();
    KeyboardShortcuts::ShortcutStore::write(
        platform.settings, KeyboardShortcuts::Name(QStringLiteral("moveFocusedWindowToDisplay.") + studioID()),
        KeyboardShortcuts::Shortcut(KeyboardShortcuts::Key::two, KeyboardShortcuts::ModifierFlag::control |
                                                                     KeyboardShortcuts::ModifierFlag::option));
    SettingsShortcutsSection* section = shortcuts();
    ASSERT_EQ(section->connectedRows().size(), 2);
    EXPECT_EQ(section->connectedRows()[1]->recorder()->text(), QStringLiteral("Ctrl+Alt+2"));
    EXPECT_EQ(section->connectedRows()[0]->recorder()->text(), QString());
    controller->shortcuts().setShortcut(
        KeyboardShortcuts::Shortcut(KeyboardShortcuts::Key::leftArrow,
                                    KeyboardShortcuts::ModifierFlag::command | KeyboardShortcuts::ModifierFlag::shift),
        KeyboardShortcuts::Name(QStringLiteral("moveFocusedWindowToDisplay.") + studioID()));
    EXPECT_EQ(section->connectedRows()[1]->recorder()->text(), QStringLiteral("Super+Shift+Left"));
}

TEST_F(SettingsShortcutsSectionTest, ConnectedRowsHaveNoDeleteButton) {
    SettingsShortcutsSection* section = shortcuts();
    for (const ShortcutRecorderRow* row : section->connectedRows()) {
        EXPECT_EQ(row->deleteButton(), nullptr);
        EXPECT_EQ(row->findChild<QToolButton*>(QStringLiteral("deleteShortcutMapping")), nullptr);
    }
}

TEST_F(SettingsShortcutsSectionTest, NoDisconnectedDisplaysShowsTheTextAndNoDeleteButtons) {
    SettingsShortcutsSection* section = shortcuts();
    EXPECT_TRUE(section->disconnectedRows().isEmpty());
    EXPECT_EQ(section->disconnectedEmptyText(), QStringLiteral("No disconnected screens with saved shortcuts."));
    auto* group = find<QWidget>(QStringLiteral("group.disconnected"));
    auto* empty = group->findChild<QLabel*>(QStringLiteral("emptyText"));
    ASSERT_NE(empty, nullptr);
    EXPECT_TRUE(empty->isVisible());
    EXPECT_TRUE(view->findChildren<QToolButton*>(QStringLiteral("deleteShortcutMapping")).isEmpty());
}

TEST_F(SettingsShortcutsSectionTest, NoConnectedDisplaysShowsItsText) {
    platform.monitors.setMonitors({});
    SettingsShortcutsSection* section = shortcuts();
    EXPECT_TRUE(section->connectedRows().isEmpty());
    EXPECT_EQ(section->connectedEmptyText(), QStringLiteral("No connected screens were detected."));
}

TEST_F(SettingsShortcutsSectionTest, UnpluggedDisplayMovesToTheDisconnectedGroupWithADeleteButton) {
    SettingsShortcutsSection* section = shortcuts();
    platform.monitors.changeMonitors({mainDisplay()});
    ASSERT_TRUE(QTest::qWaitFor([section] { return section->disconnectedRows().size() == 1; }, 5000));
    EXPECT_EQ(labels(section->connectedRows()), QStringList{QStringLiteral("1. Built-in Display")});
    const ShortcutRecorderRow* row = section->disconnectedRows().first();
    EXPECT_EQ(row->labelShown(), QStringLiteral("2. Studio Display"));
    ASSERT_NE(row->deleteButton(), nullptr);
    EXPECT_EQ(row->deleteButton()->toolTip(), QStringLiteral("Delete shortcut mapping for this disconnected screen"));
    EXPECT_FALSE(row->deleteButton()->icon().isNull());
    EXPECT_TRUE(section->disconnectedEmptyText().isEmpty());
    EXPECT_EQ(row->recorder()->shortcutName().rawValue(), QStringLiteral("moveFocusedWindowToDisplay.") + studioID());
}

TEST_F(SettingsShortcutsSectionTest, RememberedDisplayWithoutIndexIsLabelledByName) {
    platform.settings.setData(QStringLiteral("shortcutDisplayRecords.v1"),
                              QByteArrayLiteral(R"([{"id":"v9-m9-s9","lastKnownName":"Projector"}])"));
    SettingsShortcutsSection* section = shortcuts();
    ASSERT_EQ(section->disconnectedRows().size(), 1);
    EXPECT_EQ(section->disconnectedRows().first()->labelShown(), QStringLiteral("Projector"));
    EXPECT_EQ(ShortcutRecorderRow::labelText({QStringLiteral("x"), QStringLiteral("Projector"), std::nullopt, false}),
              QStringLiteral("Projector"));
    EXPECT_EQ(ShortcutRecorderRow::labelText({QStringLiteral("x"), QStringLiteral("Studio Display"), 2, true}),
              QStringLiteral("2. Studio Display"));
}

TEST_F(SettingsShortcutsSectionTest, DeleteButtonForgetsTheDisconnectedDisplay) {
    SettingsShortcutsSection* section = shortcuts();
    platform.monitors.setMonitors({mainDisplay()});
    controller->refreshShortcutDisplays();
    ASSERT_EQ(section->disconnectedRows().size(), 1);
    const QPointer<QToolButton> remove = section->disconnectedRows().first()->deleteButton();
    QTest::mouseClick(remove, Qt::LeftButton);
    EXPECT_TRUE(controller->disconnectedShortcutDisplays().isEmpty());
    EXPECT_TRUE(section->disconnectedRows().isEmpty());
    EXPECT_EQ(section->disconnectedEmptyText(), QStringLiteral("No disconnected screens with saved shortcuts."));
    for (const ShortcutDisplayRecord& record : controller->shortcutDisplayRecords()) {
        EXPECT_NE(record.id, studioID());
    }
    // The old row goes away once the event loop runs again, without harm.
    EXPECT_TRUE(QTest::qWaitFor([&] { return remove.isNull(); }, 5000));
    EXPECT_TRUE(view->findChildren<QToolButton*>(QStringLiteral("deleteShortcutMapping")).isEmpty());
}

TEST_F(SettingsShortcutsSectionTest, UnchangedDisplaysKeepTheirRowsAndRecorders) {
    SettingsShortcutsSection* section = shortcuts();
    const QList<ShortcutRecorderRow*> before = section->connectedRows();
    ASSERT_EQ(before.size(), 2);
    KeyboardShortcuts::ShortcutRecorder* recorder = before[1]->recorder();
    controller->refreshShortcutDisplays();
    controller->refreshForMenuOpen();
    EXPECT_EQ(section->connectedRows(), before);
    EXPECT_EQ(section->connectedRows()[1]->recorder(), recorder);
}

TEST_F(SettingsShortcutsSectionTest, RenamedDisplayGetsItsNewLabel) {
    SettingsShortcutsSection* section = shortcuts();
    Monitor renamed = studioDisplay();
    renamed.name = QStringLiteral("Studio Display XDR");
    platform.monitors.setMonitors({mainDisplay(), renamed});
    controller->refreshShortcutDisplays();
    EXPECT_EQ(labels(section->connectedRows()),
              (QStringList{QStringLiteral("1. Built-in Display"), QStringLiteral("2. Studio Display XDR")}));
}

TEST_F(SettingsShortcutsSectionTest, TenThousandRememberedScreensGetRowsOneBatchAtATime) {
    constexpr int kRemembered = 10000;
    QJsonArray records;
    for (int i = 0; i < kRemembered; ++i) {
        records.append(QJsonObject{{QStringLiteral("id"), QStringLiteral("v9-m9-s%1").arg(i)},
                                   {QStringLiteral("lastKnownName"), QStringLiteral("Screen %1").arg(i)}});
    }
    platform.settings.setData(QStringLiteral("shortcutDisplayRecords.v1"),
                              QJsonDocument(records).toJson(QJsonDocument::Compact));
    SettingsShortcutsSection* section = shortcuts();
    ASSERT_NE(section, nullptr);
    ASSERT_EQ(controller->disconnectedShortcutDisplays().size(), kRemembered);
    EXPECT_TRUE(view->isVisible());

    // Only a batch of rows exists, whatever the number of records.
    const int batch = SettingsShortcutsSection::kRowsPerBatch;
    EXPECT_EQ(section->disconnectedRows().size(), batch);
    EXPECT_LE(view->findChildren<ShortcutRecorderRow*>().size(),
              batch + section->connectedRows().size() + section->moveRows().size());
    ASSERT_TRUE(section->showMoreButton()->isVisible());
    EXPECT_EQ(section->showMoreButton()->text(),
              QStringLiteral("Show %1 more screens (%2 not shown)").arg(batch).arg(kRemembered - batch));

    // The window answers at once: a posted event is handled on the next turn of the event loop.
    bool answered = false;
    QMetaObject::invokeMethod(
        view.get(), [&answered] { answered = true; }, Qt::QueuedConnection);
    EXPECT_TRUE(QTest::qWaitFor([&answered] { return answered; }, 5000));

    QTest::mouseClick(section->showMoreButton(), Qt::LeftButton);
    EXPECT_EQ(section->disconnectedRows().size(), 2 * batch);
    EXPECT_EQ(section->disconnectedRows().last()->item().id,
              controller->disconnectedShortcutDisplays().at(2 * batch - 1).id);
}

TEST_F(SettingsShortcutsSectionTest, FewRememberedScreensNeedNoShowMoreButton) {
    SettingsShortcutsSection* section = shortcuts();
    platform.monitors.setMonitors({mainDisplay()});
    controller->refreshShortcutDisplays();
    ASSERT_EQ(section->disconnectedRows().size(), 1);
    EXPECT_FALSE(section->showMoreButton()->isVisible());
}

TEST_F(SettingsShortcutsSectionTest, MovesHaveRowsStoredUnderTheirOwnNames) {
    SettingsShortcutsSection* section = shortcuts();
    QStringList names;
    for (const ShortcutRecorderRow* row : section->moveRows()) {
        names.append(row->recorder()->shortcutName().rawValue());
    }
    EXPECT_EQ(
        names,
        (QStringList{
            QStringLiteral("moveFocusedWindowToNextDisplay"), QStringLiteral("moveFocusedWindowToPreviousDisplay"),
            QStringLiteral("moveFocusedWindowToLeftDisplay"), QStringLiteral("moveFocusedWindowToRightDisplay"),
            QStringLiteral("swapWindowsOfDisplays.%1.%2").arg(mainID(), studioID()), QStringLiteral("openPanel")}));
    EXPECT_EQ(labels(section->moveRows()),
              (QStringList{QStringLiteral("Move focused window to next monitor"),
                           QStringLiteral("Move focused window to previous monitor"),
                           QStringLiteral("Move focused window to left monitor"),
                           QStringLiteral("Move focused window to right monitor"),
                           QStringLiteral("Swap windows of monitors 1 and 2"), QStringLiteral("Open panel")}));
    // With one monitor there is no pair to swap.
    platform.monitors.setMonitors({mainDisplay()});
    controller->refreshShortcutDisplays();
    EXPECT_EQ(section->moveRows().size(), 5);
}

TEST_F(SettingsShortcutsSectionTest, ReconnectedDisplayReturnsToTheConnectedGroup) {
    SettingsShortcutsSection* section = shortcuts();
    platform.monitors.setMonitors({mainDisplay()});
    controller->refreshShortcutDisplays();
    ASSERT_EQ(section->disconnectedRows().size(), 1);
    platform.monitors.setMonitors({mainDisplay(), studioDisplay()});
    controller->refreshShortcutDisplays();
    EXPECT_EQ(section->connectedRows().size(), 2);
    EXPECT_TRUE(section->disconnectedRows().isEmpty());
}

}  // namespace
