// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/displays/ScreenSnapshotService.h"
#include "platform/fake/FakePlatform.h"

namespace {

class QualifyingWindows : public ::testing::Test {
protected:
    void SetUp() override { platform.runningApplications.addApplication(100, QStringLiteral("Editor")); }

    static WindowEntry window(qint64 number, const QRectF& bounds = QRectF(0, 0, 800, 600), pid_t pid = 100) {
        return {.id = number, .pid = pid, .ownerName = QStringLiteral("Editor"), .frame = bounds};
    }
    template <typename Change>
    static WindowEntry changed(WindowEntry entry, Change change) {
        change(entry);
        return entry;
    }
    QList<qint64> qualifyingNumbers(const QList<WindowEntry>& entries) {
        platform.windowList.setWindows(entries);
        QList<qint64> numbers;
        for (const QualifiedWindow& qualified : ScreenSnapshotService::qualifyingWindows()) {
            // Each scripted window has its own x origin: its number times 10.
            numbers.append(static_cast<qint64>(qualified.bounds.x() / 10));
        }
        return numbers;
    }
    static QRectF at(qint64 number, double width = 800, double height = 600) {
        return QRectF(number * 10, 0, width, height);
    }
    static WindowEntry numbered(qint64 number, double width = 800, double height = 600) {
        return window(number, at(number, width, height));
    }
    static WindowEntry withOpacity(qint64 number, std::optional<double> opacity) {
        return changed(numbered(number), [opacity](WindowEntry& entry) { entry.opacity = opacity; });
    }
    static WindowEntry ownedBy(qint64 number, std::optional<QString> name) {
        return changed(numbered(number), [name](WindowEntry& entry) { entry.ownerName = name; });
    }
    static WindowEntry onLayer(qint64 number, int layer) {
        return changed(numbered(number), [layer](WindowEntry& entry) { entry.layer = layer; });
    }

    FakePlatform platform;
};

TEST_F(QualifyingWindows, ListIsQueriedWithDesktopElementsExcludedOnly) {
    qualifyingNumbers({});
    EXPECT_EQ(platform.windowList.lastDesktopWindows(), DesktopWindows::Exclude);
}

TEST_F(QualifyingWindows, UnavailableWindowListGivesNoWindows) {
    platform.windowList.setWindowList(std::nullopt);
    EXPECT_TRUE(ScreenSnapshotService::qualifyingWindows().isEmpty());
}

TEST_F(QualifyingWindows, WindowOf119By500IsDroppedAnd120By80Kept) {
    EXPECT_EQ(qualifyingNumbers({numbered(1, 119, 500), numbered(2, 120, 80), numbered(3, 500, 79)}), QList<qint64>{2});
}

TEST_F(QualifyingWindows, OpacityOfOneHundredthIsDroppedAndSlightlyMoreKept) {
    EXPECT_EQ(qualifyingNumbers({withOpacity(1, 0.01), withOpacity(2, 0.011), withOpacity(3, std::nullopt),
                                 withOpacity(4, 0.0), withOpacity(5, 1.0)}),
              (QList<qint64>{2, 3, 5}));
}

TEST_F(QualifyingWindows, ExcludedOwnerNamesAreDroppedEvenForRegularApplications) {
    QList<WindowEntry> entries;
    qint64 number = 1;
    for (const char* name : {"Window Server", "SystemUIServer", "ControlCenter", "NotificationCenter", "Dock"}) {
        entries.append(ownedBy(number++, QString::fromLatin1(name)));
    }
    entries.append(ownedBy(number, QStringLiteral("Docker")));
    EXPECT_EQ(qualifyingNumbers(entries), QList<qint64>{6});
}

TEST_F(QualifyingWindows, OnlyLayerZeroQualifies) {
    EXPECT_EQ(qualifyingNumbers({onLayer(1, 25), onLayer(2, -1), onLayer(3, 3), onLayer(4, 0)}), QList<qint64>{4});
}

TEST_F(QualifyingWindows, OnlyWindowsOfRegularRunningApplicationsQualify) {
    platform.runningApplications.addApplication(200, QStringLiteral("Helper"), ApplicationPolicy::Accessory);
    platform.runningApplications.addApplication(300, QStringLiteral("Daemon"), ApplicationPolicy::Prohibited);
    platform.runningApplications.addApplication(400, QStringLiteral("Gone"));
    platform.runningApplications.applications.last().terminated = true;
    EXPECT_EQ(
        qualifyingNumbers({window(1, at(1), 200), window(2, at(2), 300), window(3, at(3), 400), window(4, at(4), 999),
                           changed(numbered(5), [](WindowEntry& entry) { entry.pid.reset(); }), numbered(6)}),
        QList<qint64>{6});
}

TEST_F(QualifyingWindows, QualifiedWindowCarriesBoundsVisibilityOwnerAndName) {
    platform.windowList.setWindows({{.id = 1,
                                     .pid = 100,
                                     .ownerName = QStringLiteral("Editor"),
                                     .frame = QRectF(5, 6, 700, 500),
                                     .onScreen = false}});
    const QList<QualifiedWindow> windows = ScreenSnapshotService::qualifyingWindows();
    ASSERT_EQ(windows.size(), 1);
    EXPECT_EQ(windows[0], (QualifiedWindow{QRectF(5, 6, 700, 500), false, 100, QStringLiteral("Editor")}));
}

TEST_F(QualifyingWindows, MissingOwnerNameReadsAsUnknown) {
    platform.windowList.setWindows({ownedBy(1, std::nullopt), ownedBy(2, QStringLiteral("Mail"))});
    const QList<QualifiedWindow> windows = ScreenSnapshotService::qualifyingWindows();
    ASSERT_EQ(windows.size(), 2);
    EXPECT_EQ(windows[0].ownerName, QStringLiteral("Unknown"));
    EXPECT_EQ(windows[1].ownerName, QStringLiteral("Mail"));
}

TEST_F(QualifyingWindows, WindowListOrderIsKept) {
    EXPECT_EQ(qualifyingNumbers({numbered(3), numbered(1), numbered(2)}), (QList<qint64>{3, 1, 2}));
}

TEST_F(QualifyingWindows, ApplicationWithoutReadableWindowListsKeepsAllItsWindows) {
    platform.windowControl.setWindowsError(100, WindowScope::Visible, Result::NotPermitted);
    platform.windowControl.setWindowsError(100, WindowScope::IncludingMinimised, Result::NotPermitted);
    EXPECT_EQ(qualifyingNumbers({numbered(1), numbered(2)}), (QList<qint64>{1, 2}));
}

TEST_F(QualifyingWindows, OnlyWindowAndDialogRolesCountWhenOneIsPresent) {
    platform.windowControl.addWindow(100, {.id = 1, .role = WindowRole::Window});
    platform.windowControl.addWindow(100, {.id = 2, .role = WindowRole::Other});
    platform.windowControl.addWindow(100, {.id = 4, .role = WindowRole::Dialog});
    platform.windowControl.addWindow(100, {.id = 5, .role = WindowRole::Dialog});
    EXPECT_EQ(qualifyingNumbers({numbered(1), numbered(2), numbered(3), numbered(4), numbered(5)}),
              (QList<qint64>{1, 4, 5}));
}

TEST_F(QualifyingWindows, AllNumbersFilterWhenNoWindowHasAMovableRole) {
    platform.windowControl.addWindow(100, {.id = 1, .role = WindowRole::Other});
    platform.windowControl.addWindow(100, {.id = 2, .role = WindowRole::Other});
    EXPECT_EQ(qualifyingNumbers({numbered(1), numbered(2), numbered(3)}), (QList<qint64>{1, 2}));
}

TEST_F(QualifyingWindows, WindowsListedOnlyByFullListCount) {
    platform.windowControl.addWindow(100, {.id = 1});
    platform.windowControl.addWindow(100, {.id = 2, .inVisible = false});
    EXPECT_EQ(qualifyingNumbers({numbered(1), numbered(2), numbered(3)}), (QList<qint64>{1, 2}));
}

TEST_F(QualifyingWindows, EmptyWindowControlListsLeaveWindowListAlone) {
    platform.windowControl.setWindows(100, WindowScope::Visible, {});
    EXPECT_EQ(qualifyingNumbers({numbered(1), numbered(2)}), (QList<qint64>{1, 2}));
}

TEST_F(QualifyingWindows, UnmovableRoleOnlyWindowWithUnreadableRoleCountsAsMovable) {
    platform.windowControl.addWindow(100, {.id = 1, .role = WindowRole::Other});
    platform.windowControl.addWindow(100, {.id = 2});
    platform.windowControl.setRoleError(2, Result::NoValue);
    EXPECT_EQ(qualifyingNumbers({numbered(1), numbered(2)}), QList<qint64>{2});
}

TEST_F(QualifyingWindows, WindowControlIsAnsweredByTheListsOwnRead) {
    platform.windowControl.addWindow(100, {.id = 1, .role = WindowRole::Window});
    platform.windowControl.addWindow(100, {.id = 2, .role = WindowRole::Other});
    EXPECT_EQ(qualifyingNumbers({numbered(1), numbered(2), numbered(3)}), QList<qint64>{1});
    // The one batch is the inventory's: the window control is not asked again.
    EXPECT_EQ(platform.windowList.queryCount(), 1);
    EXPECT_EQ(platform.windowControl.batchCount(), 1);
}

TEST_F(QualifyingWindows, ListThatBringsNoOwnersAsksTheWindowControl) {
    platform.windowList.answerApplicationsFrom(nullptr);
    platform.windowControl.addWindow(100, {.id = 1, .role = WindowRole::Window});
    platform.windowControl.addWindow(100, {.id = 2, .role = WindowRole::Other});
    EXPECT_EQ(qualifyingNumbers({numbered(1), numbered(2), numbered(3)}), QList<qint64>{1});
    EXPECT_EQ(platform.windowControl.batchCount(), 2);
}

TEST(WindowControlMetadata, ApplicationsAlreadyReadAreNotAskedAgain) {
    FakePlatform platform;
    platform.windowControl.addWindow(200, {.id = 7, .role = WindowRole::Other});
    platform.windowControl.addWindow(200, {.id = 8});
    ApplicationWindowRoles read;
    read.lists = {{Result::Ok, QList<WindowId>{1}}, {Result::Ok, QList<WindowId>{1, 2, 3}}};
    read.roles = {{1, {Result::Ok, WindowRole::Window}},
                  {2, {Result::Ok, WindowRole::Other}},
                  {3, {Result::NoValue, std::nullopt}}};
    const QHash<pid_t, ApplicationWindowRoles> alreadyRead{{100, read}};

    EXPECT_EQ(ScreenSnapshotService::axWindowMetadataByOwnerPID({100}, alreadyRead).value(100),
              (AXWindowMetadata{true, {1, 3}}));
    EXPECT_EQ(platform.windowControl.batchCount(), 0);
    // An application the inventory did not bring is read in the window control's two batches.
    const QHash<pid_t, AXWindowMetadata> metadata =
        ScreenSnapshotService::axWindowMetadataByOwnerPID({100, 200}, alreadyRead);
    EXPECT_EQ(platform.windowControl.batchCount(), 2);
    EXPECT_EQ(metadata.value(100), (AXWindowMetadata{true, {1, 3}}));
    EXPECT_EQ(metadata.value(200), (AXWindowMetadata{true, {8}}));
}

TEST(WindowControlMetadata, ReadsAllApplicationsInTwoBatches) {
    FakePlatform platform;
    platform.windowControl.addWindow(100, {.id = 1});
    platform.windowControl.addWindow(100, {.id = 2, .role = WindowRole::Other, .inVisible = false});
    platform.windowControl.addWindow(200, {.id = 7, .role = WindowRole::Other});
    platform.windowControl.setWindowsError(300, WindowScope::Visible, Result::CannotComplete);
    platform.windowControl.setWindowsError(300, WindowScope::IncludingMinimised, Result::CannotComplete);
    platform.windowControl.setWindowsError(400, WindowScope::Visible, Result::CannotComplete);
    platform.windowControl.setWindows(400, WindowScope::IncludingMinimised, {});

    const QHash<pid_t, AXWindowMetadata> metadata =
        ScreenSnapshotService::axWindowMetadataByOwnerPID({100, 200, 300, 400});
    EXPECT_EQ(platform.windowControl.batchCount(), 2);
    EXPECT_EQ(metadata.size(), 4);
    EXPECT_EQ(metadata.value(100), (AXWindowMetadata{true, {1}}));
    EXPECT_EQ(metadata.value(200), (AXWindowMetadata{true, {7}}));
    EXPECT_EQ(metadata.value(300), (AXWindowMetadata{false, {}}));
    // One of the two reads answering is enough.
    EXPECT_EQ(metadata.value(400), (AXWindowMetadata{true, {}}));
}

}  // namespace
