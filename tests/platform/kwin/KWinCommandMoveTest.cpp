// SPDX-License-Identifier: MIT
#include <QProcess>
#include <QTemporaryDir>

#include "app/mover/WindowMover.h"
#include "platform/Platform.h"
#include "platform/WindowControl.h"
#include "tests/platform/kwin/KWinSessionFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

// Moves through the real program's commands (its own KWin bridge), checked through the test's bridge.
class KWinCommandMoveTest : public KWinSessionFixture {
protected:
    int lattica(const QStringList& arguments) {
        QTemporaryDir config;
        QProcessEnvironment environment = VirtualDesktop::programEnvironment(config.path());
        environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.start(QStringLiteral(LATTICA_BINARY), arguments);
        if (!process.waitForFinished(20000)) {
            process.kill();
            process.waitForFinished();
            return -1;
        }
        return process.exitCode();
    }

    QRectF frameOf(WindowId id) { return Platform::services().windowControl->frame(id).value.value_or(QRectF()); }

    // Where the mover puts a frame of the source output on the destination output.
    static QRectF expected(const QRectF& frame, const QRectF& source, const QRectF& destination, bool adjustSize) {
        const QSizeF size = adjustSize ? WindowMover::adjustedSize(frame, source, destination) : frame.size();
        return QRectF(WindowMover::destinationOrigin(WindowMover::normalizedCenter(frame, source), size, destination),
                      size);
    }

    bool landsNear(WindowId id, const QRectF& wanted) {
        return VirtualDesktop::waitUntil([&] { return near(frameOf(id), wanted); }, 3000);
    }
};

TEST_F(KWinCommandMoveTest, MovingAllWindowsOfAnOutputKeepsTheirRelativePlaces) {
    ASSERT_TRUE(wayland.open(QStringLiteral("a"), QStringLiteral("title=native-a w=400 h=300")));
    ASSERT_NE(x11.open(QStringLiteral("b"), QStringLiteral("title=\"legacy-b\" w=300 h=200")), 0U);
    const auto native = waitForWindow(QStringLiteral("native-a"));
    const auto legacy = waitForWindow(QStringLiteral("legacy-b"));
    ASSERT_TRUE(native && legacy);
    WindowControl& control = *Platform::services().windowControl;
    const QList<QRect> outputs = layout();
    ASSERT_EQ(control.move(native->id, outputs[0].topLeft() + QPointF(200, 150)), Result::Ok);
    ASSERT_EQ(control.move(legacy->id, outputs[0].topLeft() + QPointF(1300, 700)), Result::Ok);
    const QRectF nativeBefore = frameOf(native->id);
    const QRectF legacyBefore = frameOf(legacy->id);

    ASSERT_EQ(lattica({QStringLiteral("move-all"), QStringLiteral("--from"), QStringLiteral("1"),
                       QStringLiteral("--to"), QStringLiteral("2"), QStringLiteral("--keep-size")}),
              0);
    EXPECT_TRUE(landsNear(native->id, expected(nativeBefore, outputs[0], outputs[1], false)))
        << frameOf(native->id).x();
    EXPECT_TRUE(landsNear(legacy->id, expected(legacyBefore, outputs[0], outputs[1], false)))
        << frameOf(legacy->id).x();

    const QRectF nativeOnSecond = frameOf(native->id);
    const QRectF legacyOnSecond = frameOf(legacy->id);
    ASSERT_EQ(lattica({QStringLiteral("move-all"), QStringLiteral("--from"), QStringLiteral("2"),
                       QStringLiteral("--to"), QStringLiteral("3"), QStringLiteral("--adjust-size")}),
              0);
    EXPECT_TRUE(landsNear(native->id, expected(nativeOnSecond, outputs[1], outputs[2], true)))
        << frameOf(native->id).width() << "x" << frameOf(native->id).height();
    EXPECT_TRUE(landsNear(legacy->id, expected(legacyOnSecond, outputs[1], outputs[2], true)))
        << frameOf(legacy->id).width() << "x" << frameOf(legacy->id).height();
}

TEST_F(KWinCommandMoveTest, MovingAnApplicationRestoresItsMinimisedWindow) {
    ASSERT_TRUE(wayland.open(QStringLiteral("shown"), QStringLiteral("title=app-shown w=400 h=300")));
    ASSERT_TRUE(
        wayland.open(QStringLiteral("hidden"), QStringLiteral("title=app-minimised w=300 h=200 state=minimized")));
    const auto shown = waitForWindow(QStringLiteral("app-shown"));
    const auto hidden = waitForWindow(QStringLiteral("app-minimised"));
    ASSERT_TRUE(shown && hidden);
    WindowControl& control = *Platform::services().windowControl;
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return control.minimised(hidden->id).value == true; }));
    const QList<QRect> outputs = layout();
    ASSERT_EQ(control.move(shown->id, outputs[0].topLeft() + QPointF(100, 100)), Result::Ok);
    ASSERT_EQ(control.move(hidden->id, outputs[0].topLeft() + QPointF(600, 300)), Result::Ok);

    ASSERT_EQ(lattica({QStringLiteral("move-app"), QString::number(wayland.pid()), QStringLiteral("--to"),
                       QStringLiteral("2"), QStringLiteral("--keep-size")}),
              0);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return control.minimised(hidden->id).value == false; }));
    EXPECT_TRUE(outputs[1].contains(frameOf(shown->id).center().toPoint())) << frameOf(shown->id).x();
    EXPECT_TRUE(outputs[1].contains(frameOf(hidden->id).center().toPoint())) << frameOf(hidden->id).x();
}

}  // namespace
