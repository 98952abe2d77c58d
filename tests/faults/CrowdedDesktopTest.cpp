// SPDX-License-Identifier: MIT
// A crowded and hostile desktop: 1500 windows on one monitor, a title of a megabyte and titles that are
// not UTF-8. The panel opens with every window counted, and the windows still move.
#include <gtest/gtest.h>

#include <QThreadPool>

#include <QElapsedTimer>
#include <QLabel>
#include <QTest>
#include <algorithm>

#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "app/ui/panel/DisplayCardView.h"
#include "app/ui/panel/TrayPanelView.h"
#include "platform/WindowList.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Platform.h"
#include "tests/support/XcbProbe.h"
#include "tests/support/VirtualDesktop.h"
#include "tests/testclient/TestClient.h"

namespace {

constexpr int kWindowCount = 1500;

class CrowdedDesktopTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_platform = X11Platform::connect();
        ASSERT_NE(m_platform, nullptr);
        m_platform->install();
        ASSERT_TRUE(m_client.start());
    }
    void TearDown() override {
        // The moves' refreshes read the desktop in the background through the platform: let them end first.
        QThreadPool::globalInstance()->waitForDone();
        m_client.kill();
        Platform::install({});
        m_platform.reset();
    }

    // The panel's count for the first monitor once its capture has come in, and how long that took.
    QString firstCardCount(AppController& controller, qint64* elapsedMs) {
        TrayPanelView panel(controller);
        QElapsedTimer clock;
        clock.start();
        controller.refreshForMenuOpen();
        panel.show();
        // With a crowded desktop the window manager takes its time to show the panel.
        if (!QTest::qWaitForWindowExposed(&panel, 60000)) {
            return QStringLiteral("(the panel was not shown)");
        }
        if (!VirtualDesktop::waitUntil([&] { return !controller.isLoadingPreviews(); }, 60000)) {
            return QStringLiteral("(the capture did not end)");
        }
        *elapsedMs = clock.elapsed();
        if (panel.cards().isEmpty()) {
            return QStringLiteral("(no cards)");
        }
        const auto* label = panel.cards().first()->findChild<QLabel*>(QStringLiteral("windowCount"));
        return label != nullptr ? label->text() : QString();
    }

    std::unique_ptr<X11Platform> m_platform;
    TestClient m_client;
};

TEST_F(CrowdedDesktopTest, MegabyteAndInvalidUtf8TitlesAreReadSafelyAndCounted) {
    const QRect first = VirtualDesktop::layout().first();
    const QString place = QStringLiteral("x=%1 y=%2 w=300 h=200").arg(first.x() + 100).arg(first.y() + 100);
    const quint32 huge = m_client.open(QStringLiteral("huge"), place);
    const quint32 broken = m_client.open(QStringLiteral("broken"), place);
    const quint32 plain = m_client.open(QStringLiteral("plain"), place + QStringLiteral(" title=Plain"));
    ASSERT_NE(huge, 0u);
    ASSERT_NE(broken, 0u);
    ASSERT_NE(plain, 0u);
    xcb_connection_t* xcb = m_platform->connection().xcb();
    XcbProbe::setTitleBytes(xcb, huge, QByteArray(1024 * 1024, 'T'));
    // Truncated sequences, a lone continuation byte, an overlong encoding, a surrogate, bytes never valid.
    XcbProbe::setTitleBytes(xcb, broken, QByteArray("bad \xc3 \x80 \xc0\xaf \xed\xa0\x80 \xff\xfe end"));

    QElapsedTimer clock;
    clock.start();
    const std::optional<QList<WindowEntry>> listed =
        m_platform->services().windowList->windows(DesktopWindows::Exclude);
    ASSERT_TRUE(listed.has_value());
    const QList<WindowEntry>& entries = *listed;
    std::printf("listing with a megabyte title took %lld ms\n", static_cast<long long>(clock.elapsed()));
    auto entryOf = [&](quint32 window) {
        return std::find_if(entries.cbegin(), entries.cend(),
                            [&](const WindowEntry& entry) { return entry.id == window; });
    };
    ASSERT_NE(entryOf(huge), entries.cend());
    ASSERT_NE(entryOf(broken), entries.cend());
    ASSERT_NE(entryOf(plain), entries.cend());
    // The long title is read up to a bound, not whole; the broken one keeps its valid parts.
    const QString hugeTitle = entryOf(huge)->title.value_or(QString());
    const QString brokenTitle = entryOf(broken)->title.value_or(QString());
    EXPECT_TRUE(hugeTitle.startsWith(QStringLiteral("TTTT")));
    EXPECT_LT(hugeTitle.size(), 1024 * 1024);
    EXPECT_TRUE(brokenTitle.startsWith(QStringLiteral("bad "))) << qPrintable(brokenTitle);
    EXPECT_TRUE(brokenTitle.endsWith(QStringLiteral(" end"))) << qPrintable(brokenTitle);
    EXPECT_EQ(entryOf(plain)->title, QStringLiteral("Plain"));

    // All three are counted.
    AppController controller;
    controller.refreshForMenuOpen();
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return !controller.isLoadingPreviews(); }, 30000));
    ASSERT_FALSE(controller.displays().isEmpty());
    EXPECT_EQ(controller.displays().first().visibleWindowCount, 3);
}

// Moves of windows with titles that are not UTF-8. (Under openbox, while a window with a title of a
// megabyte is open, no window moves at all: the window manager never applies the move.)
TEST_F(CrowdedDesktopTest, WindowsWithInvalidUtf8TitlesMove) {
    const QRect first = VirtualDesktop::layout().first();
    const QString place = QStringLiteral("x=%1 y=%2 w=300 h=200").arg(first.x() + 100).arg(first.y() + 100);
    const quint32 broken = m_client.open(QStringLiteral("broken"), place);
    const quint32 plain = m_client.open(QStringLiteral("plain"), place + QStringLiteral(" title=Plain"));
    ASSERT_NE(broken, 0u);
    ASSERT_NE(plain, 0u);
    XcbProbe::setTitleBytes(m_platform->connection().xcb(), broken, QByteArray("\xff\xfe \xc3 moved \xed\xa0\x80"));
    const QList<DisplayDescriptor> displays = ScreenSnapshotService::currentDisplayDescriptors();
    ASSERT_GE(displays.size(), 2);
    AppController controller;
    controller.moveWindows(DisplaySnapshot::placeholder(displays.at(0)), DisplaySnapshot::placeholder(displays.at(1)));
    EXPECT_EQ(controller.statusMessage(), QStringLiteral("Moved 2 of 2 windows."))
        << qPrintable(controller.statusMessage());
}

TEST_F(CrowdedDesktopTest, FifteenHundredWindowsOnOneMonitorAreCountedAndThePanelOpens) {
    const QRect first = VirtualDesktop::layout().first();
    const QList<quint32> windows =
        m_client.openMany(QStringLiteral("crowd"), kWindowCount,
                          QStringLiteral("x=%1 y=%2 w=200 h=150").arg(first.x() + 100).arg(first.y() + 100), 180000);
    ASSERT_EQ(windows.size(), kWindowCount);

    AppController controller;
    qint64 elapsed = 0;
    const QString count = firstCardCount(controller, &elapsed);
    std::printf("the panel counted %d windows in %lld ms\n", kWindowCount, static_cast<long long>(elapsed));
    EXPECT_EQ(count, QStringLiteral("%1 visible windows").arg(kWindowCount));
    ASSERT_FALSE(controller.displays().isEmpty());
    EXPECT_EQ(controller.displays().first().visibleWindowCount, kWindowCount);
    EXPECT_EQ(controller.displays().value(1).visibleWindowCount, 0);
    EXPECT_LT(elapsed, 30000);
}

}  // namespace
