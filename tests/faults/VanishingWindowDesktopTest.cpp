// SPDX-License-Identifier: MIT
// A window destroyed after the mover has listed it and before it is moved: it is skipped, every other
// window moves, and the program goes on working.
#include <gtest/gtest.h>

#include <QThreadPool>

#include <QRegularExpression>
#include <memory>

#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "platform/WindowControl.h"
#include "platform/x11/X11Platform.h"
#include "tests/support/VirtualDesktop.h"
#include "tests/testclient/TestClient.h"

namespace {

TEST(VanishingWindowDesktopTest, WindowDestroyedBetweenListingAndMovingIsSkippedAndTheOthersMove) {
    if (qEnvironmentVariable("LATTICA_TEST_WM") == QLatin1String("none")) {
        GTEST_SKIP() << "needs a window manager";
    }
    std::unique_ptr<X11Platform> platform = X11Platform::connect();
    ASSERT_NE(platform, nullptr);
    platform->install();
    TestClient client;
    ASSERT_TRUE(client.start());
    const QList<DisplayDescriptor> displays = ScreenSnapshotService::currentDisplayDescriptors();
    ASSERT_GE(displays.size(), 2);
    const QRect first = VirtualDesktop::layout().first();
    auto place = [&](int dx) {
        return QStringLiteral("x=%1 y=%2 w=300 h=200").arg(first.x() + dx).arg(first.y() + 100);
    };
    // Whichever of a and b is moved first destroys the other one, which the mover has listed by then.
    const quint32 a = client.open(QStringLiteral("a"), place(100) + QStringLiteral(" vanish-when-moved=b"));
    const quint32 b = client.open(QStringLiteral("b"), place(500) + QStringLiteral(" vanish-when-moved=a"));
    const quint32 c = client.open(QStringLiteral("c"), place(900));
    ASSERT_NE(a, 0u);
    ASSERT_NE(b, 0u);
    ASSERT_NE(c, 0u);

    auto controllerOwner = std::make_unique<AppController>();
    AppController& controller = *controllerOwner;
    controller.moveWindows(DisplaySnapshot::placeholder(displays.at(0)), DisplaySnapshot::placeholder(displays.at(1)));
    const QString status = controller.statusMessage();
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^Moved 2 of [23] windows\\.$")).match(status).hasMatch())
        << qPrintable(status);
    auto onSecond = [&](quint32 window) {
        const Reading<QRectF> frame = platform->services().windowControl->frame(window);
        return frame.result == Result::Ok && frame.value && displays.at(1).bounds.contains(frame.value->center());
    };
    const bool aLives = platform->services().windowControl->frame(a).result != Result::Gone;
    const bool bLives = platform->services().windowControl->frame(b).result != Result::Gone;
    EXPECT_NE(aLives, bLives) << "exactly one of the pair is destroyed";
    EXPECT_TRUE(onSecond(aLives ? a : b));
    EXPECT_TRUE(onSecond(c));

    // Nothing is left in a bad state: the two that remain move back.
    controller.moveWindows(DisplaySnapshot::placeholder(displays.at(1)), DisplaySnapshot::placeholder(displays.at(0)));
    EXPECT_EQ(controller.statusMessage(), QStringLiteral("Moved 2 of 2 windows."));
    controllerOwner.reset();
    // The moves' refreshes read the desktop in the background through the platform: let them end first.
    QThreadPool::globalInstance()->waitForDone();
    client.exit();
    Platform::install({});
}

}  // namespace
