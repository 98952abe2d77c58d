#include "platform/Monitors.h"
#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "tests/platform/gnome/GnomeSessionFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

using GnomeMoveTest = GnomeSessionFixture;

TEST_F(GnomeMoveTest, ANativeWindowMovesToTheOtherMonitorAndResizes) {
    ASSERT_TRUE(wayland.open(QStringLiteral("mover"), QStringLiteral("title=moving-window w=400 h=300")));
    const auto entry = waitForWindow(QStringLiteral("moving-window"));
    ASSERT_TRUE(entry);
    WindowControl& control = *Platform::services().windowControl;
    const QList<QRect> monitors = layout();

    const QPointF onFirst = monitors[0].topLeft() + QPointF(100, 120);
    ASSERT_EQ(control.move(entry->id, onFirst), Result::Ok);
    EXPECT_EQ(control.frame(entry->id).value->topLeft(), onFirst);

    const QPointF onSecond = monitors[1].topLeft() + QPointF(300, 200);
    ASSERT_EQ(control.move(entry->id, onSecond), Result::Ok);
    const QRectF moved = *control.frame(entry->id).value;
    EXPECT_EQ(moved.topLeft(), onSecond);
    EXPECT_TRUE(monitors[1].contains(moved.toAlignedRect()));

    ASSERT_EQ(control.resize(entry->id, QSizeF(640, 480)), Result::Ok);
    EXPECT_EQ(*control.frame(entry->id).value, QRectF(onSecond, QSizeF(640, 480)));
}

TEST_F(GnomeMoveTest, AMinimisedWindowIsRestored) {
    ASSERT_TRUE(wayland.open(QStringLiteral("small"), QStringLiteral("title=minimised-window state=minimized")));
    WindowControl& control = *Platform::services().windowControl;
    std::optional<WindowEntry> entry;
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        entry = waitForWindow(QStringLiteral("minimised-window"), 100);
        return entry && control.minimised(entry->id).value == true;
    }));
    ASSERT_EQ(control.unminimise(entry->id), Result::Ok);
    EXPECT_EQ(control.minimised(entry->id).value, false);
}

TEST_F(GnomeMoveTest, AGoneWindowIsReportedGone) {
    WindowControl& control = *Platform::services().windowControl;
    EXPECT_EQ(control.move(987654321, QPointF(10, 10)), Result::Gone);
    EXPECT_EQ(control.frame(987654321).result, Result::Gone);
}

}  // namespace
