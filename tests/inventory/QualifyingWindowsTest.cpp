#include <gtest/gtest.h>

#include "app/ScreenSnapshotService.h"
#include "platform/fake/FakePlatform.h"

namespace {

class QualifyingWindows : public ::testing::Test {
protected:
    void SetUp() override { platform.workspace.addApplication(100, QStringLiteral("Editor")); }

    static WindowInfo window(qint64 number, const QRectF& bounds = QRectF(0, 0, 800, 600), pid_t pid = 100) {
        return FakeWindowServer::entry(
            {.number = number, .pid = pid, .ownerName = QStringLiteral("Editor"), .bounds = bounds});
    }
    static WindowInfo changed(WindowInfo entry, const char* key, const QVariant& value) {
        if (value.isValid()) {
            entry.insert(QLatin1String(key), value);
        } else {
            entry.remove(QLatin1String(key));
        }
        return entry;
    }
    QList<qint64> qualifyingNumbers(const QList<WindowInfo>& entries) {
        platform.windowServer.setWindowList(entries);
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
    static WindowInfo numbered(qint64 number, double width = 800, double height = 600) {
        return window(number, at(number, width, height));
    }

    FakePlatform platform;
};

TEST_F(QualifyingWindows, ListIsQueriedWithDesktopElementsExcludedOnly) {
    qualifyingNumbers({});
    EXPECT_EQ(platform.windowServer.lastOptions(), 16u);
}

TEST_F(QualifyingWindows, UnavailableWindowListGivesNoWindows) {
    platform.windowServer.setWindowList(std::nullopt);
    EXPECT_TRUE(ScreenSnapshotService::qualifyingWindows().isEmpty());
}

TEST_F(QualifyingWindows, WindowOf119By500IsDroppedAnd120By80Kept) {
    EXPECT_EQ(qualifyingNumbers({numbered(1, 119, 500), numbered(2, 120, 80), numbered(3, 500, 79)}), QList<qint64>{2});
}

TEST_F(QualifyingWindows, AlphaOfOneHundredthIsDroppedAndSlightlyMoreKept) {
    EXPECT_EQ(
        qualifyingNumbers({changed(numbered(1), kCGWindowAlpha, 0.01), changed(numbered(2), kCGWindowAlpha, 0.011),
                           changed(numbered(3), kCGWindowAlpha, QVariant()), changed(numbered(4), kCGWindowAlpha, 0.0),
                           changed(numbered(5), kCGWindowAlpha, QStringLiteral("0"))}),
        (QList<qint64>{2, 3, 5}));
}

TEST_F(QualifyingWindows, ExcludedOwnerNamesAreDroppedEvenForRegularApplications) {
    QList<WindowInfo> entries;
    qint64 number = 1;
    for (const char* name : {"Window Server", "SystemUIServer", "ControlCenter", "NotificationCenter", "Dock"}) {
        entries.append(changed(numbered(number++), kCGWindowOwnerName, QString::fromLatin1(name)));
    }
    entries.append(changed(numbered(number), kCGWindowOwnerName, QStringLiteral("Docker")));
    EXPECT_EQ(qualifyingNumbers(entries), QList<qint64>{6});
}

TEST_F(QualifyingWindows, OnlyLayerZeroGivenAsIntegerQualifies) {
    EXPECT_EQ(
        qualifyingNumbers({changed(numbered(1), kCGWindowLayer, 25), changed(numbered(2), kCGWindowLayer, QVariant()),
                           changed(numbered(3), kCGWindowLayer, QStringLiteral("0")),
                           changed(numbered(4), kCGWindowLayer, 0.0), changed(numbered(5), kCGWindowLayer, qint64(0))}),
        QList<qint64>{5});
}

TEST_F(QualifyingWindows, OnlyWindowsOfRegularRunningApplicationsQualify) {
    platform.workspace.addApplication(200, QStringLiteral("Helper"), ActivationPolicy::Accessory);
    platform.workspace.addApplication(300, QStringLiteral("Daemon"), ActivationPolicy::Prohibited);
    platform.workspace.addApplication(400, QStringLiteral("Gone"));
    platform.workspace.applications.last().isTerminated = true;
    EXPECT_EQ(
        qualifyingNumbers({window(1, at(1), 200), window(2, at(2), 300), window(3, at(3), 400), window(4, at(4), 999),
                           changed(numbered(5), kCGWindowOwnerPID, QVariant()), numbered(6)}),
        QList<qint64>{6});
}

TEST_F(QualifyingWindows, WindowWithoutReadableNumberOrBoundsIsDropped) {
    EXPECT_EQ(
        qualifyingNumbers({changed(numbered(1), kCGWindowNumber, QVariant()),
                           changed(numbered(2), kCGWindowNumber, QStringLiteral("2")),
                           changed(numbered(3), kCGWindowBounds, QVariant()),
                           changed(numbered(4), kCGWindowBounds, QVariant(QRectF(40, 0, 800, 600))), numbered(5)}),
        QList<qint64>{5});
}

TEST_F(QualifyingWindows, QualifiedWindowCarriesBoundsVisibilityOwnerAndName) {
    platform.windowServer.setWindows({{.number = 1,
                                       .pid = 100,
                                       .ownerName = QStringLiteral("Editor"),
                                       .bounds = QRectF(5, 6, 700, 500),
                                       .onScreen = false}});
    const QList<QualifiedWindow> windows = ScreenSnapshotService::qualifyingWindows();
    ASSERT_EQ(windows.size(), 1);
    EXPECT_EQ(windows[0], (QualifiedWindow{QRectF(5, 6, 700, 500), false, 100, QStringLiteral("Editor")}));
}

TEST_F(QualifyingWindows, MissingOrNonStringOwnerNameReadsAsUnknown) {
    platform.windowServer.setWindowList(QList<WindowInfo>{changed(numbered(1), kCGWindowOwnerName, QVariant()),
                                                          changed(numbered(2), kCGWindowOwnerName, 12)});
    const QList<QualifiedWindow> windows = ScreenSnapshotService::qualifyingWindows();
    ASSERT_EQ(windows.size(), 2);
    EXPECT_EQ(windows[0].ownerName, QStringLiteral("Unknown"));
    EXPECT_EQ(windows[1].ownerName, QStringLiteral("Unknown"));
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
