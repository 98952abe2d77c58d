// The window list of a real desktop.
#include "platform/Platform.h"
#include "tests/x11windows/X11DesktopFixture.h"

namespace {

class X11WindowListTest : public X11DesktopFixture {};

TEST_F(X11WindowListTest, WindowsOnEachMonitorAppearWithOuterFrameBoundsAndPid) {
    QList<quint32> windows;
    for (int monitor = 0; monitor < monitors().size(); ++monitor) {
        const quint32 window =
            client.open(QStringLiteral("m%1").arg(monitor), placement(monitor, 120, 90, 500 + monitor, 400));
        ASSERT_NE(window, 0u);
        windows.append(window);
    }
    for (int monitor = 0; monitor < windows.size(); ++monitor) {
        const WindowInfo entry = entryFor(windows[monitor]);
        ASSERT_FALSE(entry.isEmpty());
        EXPECT_EQ(entry.value(QLatin1String(kCGWindowOwnerPID)).toLongLong(), client.pid());
        EXPECT_EQ(entry.value(QLatin1String(kCGWindowLayer)).toInt(), 0);
        const QRectF bounds = boundsOf(entry);
        EXPECT_TRUE(near(bounds, frameFromTree(windows[monitor]), 0.0))
            << bounds.x() << "," << bounds.y() << " " << bounds.width() << "x" << bounds.height();
        EXPECT_GT(bounds.width(), 500 + monitor);  // the decorations are part of the frame
        EXPECT_TRUE(monitors()[monitor].contains(bounds.center().toPoint()));
        EXPECT_TRUE(entry.value(QLatin1String(kCGWindowIsOnscreen)).toBool());
        EXPECT_EQ(entry.value(QLatin1String(kCGWindowName)).toString(), QStringLiteral("m%1").arg(monitor));
    }
}

}  // namespace
