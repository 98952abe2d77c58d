// SPDX-License-Identifier: MIT
#include <QImage>

#include "platform/Monitors.h"
#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "tests/platform/kwin/KWinSessionFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

using KWinMoveTest = KWinSessionFixture;

TEST_F(KWinMoveTest, ANativeWindowMovesAndResizesWhereAsked) {
    ASSERT_TRUE(wayland.open(QStringLiteral("mover"), QStringLiteral("title=moving-window w=400 h=300")));
    const auto entry = waitForWindow(QStringLiteral("moving-window"));
    ASSERT_TRUE(entry);
    WindowControl& control = *Platform::services().windowControl;
    const QList<QRect> outputs = layout();

    const QPointF onFirst = outputs[0].topLeft() + QPointF(100, 120);
    ASSERT_EQ(control.move(entry->id, onFirst), Result::Ok);
    EXPECT_EQ(control.frame(entry->id).value->topLeft(), onFirst);

    const QPointF onSecond = outputs[1].topLeft() + QPointF(300, 200);
    ASSERT_EQ(control.move(entry->id, onSecond), Result::Ok);
    const QRectF moved = *control.frame(entry->id).value;
    EXPECT_EQ(moved.topLeft(), onSecond);
    EXPECT_TRUE(outputs[1].contains(moved.toAlignedRect()));

    ASSERT_EQ(control.resize(entry->id, QSizeF(640, 480)), Result::Ok);
    EXPECT_TRUE(near(*control.frame(entry->id).value, QRectF(onSecond, QSizeF(640, 480))))
        << control.frame(entry->id).value->width() << "x" << control.frame(entry->id).value->height();
}

TEST_F(KWinMoveTest, AnXwaylandWindowMovesToAnotherOutput) {
    ASSERT_NE(x11.open(QStringLiteral("legacy"), QStringLiteral("title=\"x11-mover\" w=300 h=200")), 0U);
    const auto entry = waitForWindow(QStringLiteral("x11-mover"));
    ASSERT_TRUE(entry);
    WindowControl& control = *Platform::services().windowControl;
    const QList<QRect> outputs = layout();
    const QPointF target = outputs[2].topLeft() + QPointF(40, 50);
    ASSERT_EQ(control.move(entry->id, target), Result::Ok);
    EXPECT_TRUE(near(*control.frame(entry->id).value, QRectF(target, entry->frame.size())));
}

TEST_F(KWinMoveTest, AMaximisedWindowStaysMaximisedOnTheTargetOutput) {
    ASSERT_TRUE(wayland.open(QStringLiteral("big"), QStringLiteral("title=maximised-window state=maximized")));
    const QList<QRect> outputs = layout();
    WindowControl& control = *Platform::services().windowControl;
    std::optional<WindowEntry> entry;
    // Qt maximises after the first frame: wait until the window fills an output.
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        entry = waitForWindow(QStringLiteral("maximised-window"), 100);
        return entry && std::any_of(outputs.cbegin(), outputs.cend(),
                                    [&](const QRect& output) { return near(entry->frame, output); });
    })) << (entry ? entry->frame.width() : 0)
        << "x" << (entry ? entry->frame.height() : 0);
    const int from = static_cast<int>(std::find_if(outputs.cbegin(), outputs.cend(),
                                                   [&](const QRect& output) { return near(entry->frame, output); }) -
                                      outputs.cbegin());
    const int to = (from + 1) % static_cast<int>(outputs.size());

    ASSERT_EQ(control.move(entry->id, outputs[to].topLeft()), Result::Ok);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return near(*control.frame(entry->id).value, outputs[to]); }))
        << control.frame(entry->id).value->x() << "," << control.frame(entry->id).value->y() << " "
        << control.frame(entry->id).value->width() << "x" << control.frame(entry->id).value->height();
    // A size computed for the old output leaves it as it is.
    EXPECT_EQ(control.resize(entry->id, QSizeF(300, 200)), Result::Ok);
    EXPECT_TRUE(near(*control.frame(entry->id).value, outputs[to]));
}

TEST_F(KWinMoveTest, AFullScreenWindowStaysFullScreenOnTheTargetOutput) {
    ASSERT_TRUE(wayland.open(QStringLiteral("whole"), QStringLiteral("title=full-screen-window state=fullscreen")));
    const QList<QRect> outputs = layout();
    WindowControl& control = *Platform::services().windowControl;
    std::optional<WindowEntry> entry;
    int from = -1;
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        entry = waitForWindow(QStringLiteral("full-screen-window"), 100);
        for (int i = 0; entry && i < outputs.size(); ++i) {
            if (near(entry->frame, outputs[i])) {
                from = i;
            }
        }
        return from >= 0;
    }));
    const int to = (from + 2) % static_cast<int>(outputs.size());
    ASSERT_EQ(control.move(entry->id, outputs[to].topLeft() + QPointF(10, 10)), Result::Ok);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return near(*control.frame(entry->id).value, outputs[to]); }))
        << control.frame(entry->id).value->x() << "," << control.frame(entry->id).value->y() << " "
        << control.frame(entry->id).value->width() << "x" << control.frame(entry->id).value->height();
}

TEST_F(KWinMoveTest, AWindowClosedBeforeTheMoveIsGone) {
    ASSERT_TRUE(wayland.open(QStringLiteral("brief"), QStringLiteral("title=closing-window")));
    const auto entry = waitForWindow(QStringLiteral("closing-window"));
    ASSERT_TRUE(entry);
    ASSERT_TRUE(wayland.close(QStringLiteral("brief")));
    WindowControl& control = *Platform::services().windowControl;
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return control.frame(entry->id).result == Result::Gone; }));
    EXPECT_EQ(control.move(entry->id, QPointF(10, 10)), Result::Gone);
}

TEST_F(KWinMoveTest, ACaptureShowsWhatTheClientDrew) {
    ASSERT_TRUE(
        wayland.open(QStringLiteral("paint"), QStringLiteral("title=painted-window w=300 h=200 color=#ff8000")));
    const auto entry = waitForWindow(QStringLiteral("painted-window"));
    ASSERT_TRUE(entry);
    WindowControl& control = *Platform::services().windowControl;
    const QList<QRect> outputs = layout();
    ASSERT_EQ(control.move(entry->id, outputs[1].topLeft() + QPointF(500, 400)), Result::Ok);
    ASSERT_EQ(control.activate(entry->id), Result::Ok);

    const QList<Monitor> monitors = Platform::services().monitors->monitors();
    ASSERT_EQ(monitors.size(), outputs.size());
    const QRectF frame = *control.frame(entry->id).value;
    QImage picture;
    // KWin shows the window's new place from its next frame on.
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        picture = Platform::services().monitors->capture(monitors[1].id);
        if (picture.isNull()) {
            return false;
        }
        const double scale = picture.width() / monitors[1].bounds.width();
        const QPointF centre = (frame.center() - monitors[1].bounds.topLeft()) * scale;
        return QColor(picture.pixel(centre.toPoint())) == QColor(0xff, 0x80, 0x00);
    })) << "capture "
        << picture.width() << "x" << picture.height();
}

}  // namespace
