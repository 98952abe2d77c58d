// SPDX-License-Identifier: MIT
// A window destroyed after the mover has listed it and before it is moved: it is skipped, every other
// window moves, and the program goes on working.
#include <gtest/gtest.h>

#include <QThreadPool>

#include <functional>
#include <memory>
#include <utility>

#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "platform/Platform.h"
#include "platform/x11/X11Platform.h"
#include "tests/support/ForwardingWindowControl.h"
#include "tests/support/VirtualDesktop.h"
#include "tests/testclient/TestClient.h"

namespace {

// The desktop's own window control, with one fault: just before the first write (a batch of placements or
// a single move or resize), it runs the given step, which destroys a window that the mover has listed.
class DestroyBeforeFirstWrite : public ForwardingWindowControl {
public:
    DestroyBeforeFirstWrite(WindowControl& real, std::function<void()> destroy)
        : ForwardingWindowControl(real), m_destroy(std::move(destroy)) {}

    Result move(WindowId window, const QPointF& topLeft) override {
        destroyOnce();
        return ForwardingWindowControl::move(window, topLeft);
    }
    Result resize(WindowId window, const QSizeF& size) override {
        destroyOnce();
        return ForwardingWindowControl::resize(window, size);
    }
    QList<PlacementResult> place(const QList<WindowPlacement>& placements) override {
        destroyOnce();
        return ForwardingWindowControl::place(placements);
    }

private:
    void destroyOnce() {
        if (m_destroy) {
            std::exchange(m_destroy, {})();
        }
    }

    std::function<void()> m_destroy;
};

TEST(VanishingWindowDesktopTest, WindowDestroyedBetweenListingAndMovingIsSkippedAndTheOthersMove) {
    if (qEnvironmentVariable("LATTICA_TEST_WM") == QLatin1String("none")) {
        GTEST_SKIP() << "needs a window manager";
    }
    std::unique_ptr<X11Platform> platform = X11Platform::connect();
    ASSERT_NE(platform, nullptr);
    TestClient client;
    ASSERT_TRUE(client.start());
    const QRect first = VirtualDesktop::layout().first();
    auto place = [&](int dx) {
        return QStringLiteral("x=%1 y=%2 w=300 h=200").arg(first.x() + dx).arg(first.y() + 100);
    };
    const quint32 a = client.open(QStringLiteral("a"), place(100));
    const quint32 b = client.open(QStringLiteral("b"), place(500));
    const quint32 c = client.open(QStringLiteral("c"), place(900));
    ASSERT_NE(a, 0u);
    ASSERT_NE(b, 0u);
    ASSERT_NE(c, 0u);

    WindowControl& real = *platform->services().windowControl;
    bool destroyed = false;
    DestroyBeforeFirstWrite faulty(real, [&] { destroyed = client.close(QStringLiteral("b")); });
    PlatformServices services = platform->services();
    services.windowControl = &faulty;
    Platform::install(services);
    const QList<DisplayDescriptor> displays = ScreenSnapshotService::currentDisplayDescriptors();
    ASSERT_GE(displays.size(), 2);

    auto controllerOwner = std::make_unique<AppController>();
    AppController& controller = *controllerOwner;
    controller.moveWindows(DisplaySnapshot::placeholder(displays.at(0)), DisplaySnapshot::placeholder(displays.at(1)));
    ASSERT_TRUE(destroyed) << "the window was not destroyed before the first write";
    EXPECT_EQ(controller.statusMessage(), QStringLiteral("Moved 2 of 3 windows."));
    auto onSecond = [&](quint32 window) {
        const Reading<QRectF> frame = real.frame(window);
        return frame.result == Result::Ok && frame.value && displays.at(1).bounds.contains(frame.value->center());
    };
    EXPECT_EQ(real.frame(b).result, Result::Gone);
    EXPECT_TRUE(onSecond(a));
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
