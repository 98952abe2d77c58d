// SPDX-License-Identifier: MIT
// A window's opacity shows only while a compositing manager runs (xcompmgr here): without one the server
// draws every window fully, so a window with opacity 0 is seen and counts. The answer follows the
// compositor when it starts or stops between two reads of windows already read.
#include <xcb/xcb.h>

#include <QProcess>

#include "app/displays/ScreenSnapshotService.h"
#include "platform/Platform.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/XcbReply.h"
#include "tests/platform/x11/X11DesktopFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

class X11CompositorOpacityTest : public X11DesktopFixture {
protected:
    void TearDown() override {
        stopCompositor();
        X11DesktopFixture::TearDown();
    }

    bool compositorOwnsSelection() {
        const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
            xcb(), xcb_get_selection_owner(xcb(), platform->connection().atom("_NET_WM_CM_S0")), nullptr));
        return reply && reply->owner != XCB_NONE;
    }
    // Starts xcompmgr and waits until it owns the compositing manager's selection.
    bool startCompositor() {
        compositor.start(QStringLiteral("xcompmgr"), {});
        return compositor.waitForStarted(10000) &&
               VirtualDesktop::waitUntil(
                   [&] { return compositorOwnsSelection() || compositor.state() != QProcess::Running; }, 10000) &&
               compositor.state() == QProcess::Running;
    }
    // Ends xcompmgr and waits until the server has let its selection go.
    bool stopCompositor() {
        if (compositor.state() != QProcess::NotRunning) {
            compositor.terminate();
            if (!compositor.waitForFinished(10000)) {
                compositor.kill();
                compositor.waitForFinished(10000);
            }
        }
        return VirtualDesktop::waitUntil([&] { return !compositorOwnsSelection(); }, 10000);
    }
    // Whether the core's inventory counts the window (known by its owner and frame: each test places
    // its windows apart).
    bool qualifies(quint32 window) {
        const QRectF frame(frameFromTree(window));
        for (const QualifiedWindow& qualified : ScreenSnapshotService::qualifyingWindows()) {
            if (qualified.ownerPID == client.pid() && qualified.bounds == frame) {
                return true;
            }
        }
        return false;
    }

    QProcess compositor;
};

TEST_F(X11CompositorOpacityTest, WithoutCompositorEveryWindowIsDrawnFully) {
    ASSERT_TRUE(stopCompositor()) << "a compositing manager already runs";
    const quint32 invisible =
        client.open(QStringLiteral("invisible"), placement(0, 100, 100, 300, 200) + QStringLiteral(" opacity=0"));
    const quint32 half =
        client.open(QStringLiteral("half"), placement(0, 500, 300, 300, 200) + QStringLiteral(" opacity=0.5"));
    ASSERT_NE(invisible, 0u);
    ASSERT_NE(half, 0u);
    const std::optional<WindowEntry> invisibleEntry = entryFor(invisible);
    const std::optional<WindowEntry> halfEntry = entryFor(half);
    ASSERT_TRUE(invisibleEntry && invisibleEntry->opacity);
    ASSERT_TRUE(halfEntry && halfEntry->opacity);
    EXPECT_DOUBLE_EQ(*invisibleEntry->opacity, 1.0);
    EXPECT_DOUBLE_EQ(*halfEntry->opacity, 1.0);
    EXPECT_TRUE(qualifies(invisible));
    EXPECT_TRUE(qualifies(half));
}

TEST_F(X11CompositorOpacityTest, WhileCompositorRunsZeroOpacityWindowIsLeftOut) {
    ASSERT_TRUE(startCompositor()) << "xcompmgr did not take the compositing manager's selection";
    const quint32 invisible =
        client.open(QStringLiteral("invisible"), placement(0, 100, 100, 300, 200) + QStringLiteral(" opacity=0"));
    const quint32 half =
        client.open(QStringLiteral("half"), placement(0, 500, 300, 300, 200) + QStringLiteral(" opacity=0.5"));
    const quint32 plain = client.open(QStringLiteral("plain"), placement(1, 100, 100, 300, 200));
    ASSERT_NE(invisible, 0u);
    ASSERT_NE(half, 0u);
    ASSERT_NE(plain, 0u);
    const std::optional<WindowEntry> invisibleEntry = entryFor(invisible);
    const std::optional<WindowEntry> halfEntry = entryFor(half);
    const std::optional<WindowEntry> plainEntry = entryFor(plain);
    ASSERT_TRUE(invisibleEntry && invisibleEntry->opacity);
    ASSERT_TRUE(halfEntry && halfEntry->opacity);
    ASSERT_TRUE(plainEntry && plainEntry->opacity);
    EXPECT_DOUBLE_EQ(*invisibleEntry->opacity, 0.0);
    EXPECT_NEAR(*halfEntry->opacity, 0.5, 1e-6);
    EXPECT_DOUBLE_EQ(*plainEntry->opacity, 1.0);
    EXPECT_FALSE(qualifies(invisible));
    EXPECT_TRUE(qualifies(half));
    EXPECT_TRUE(qualifies(plain));
}

TEST_F(X11CompositorOpacityTest, CompositorStartingOrStoppingAfterAReadShowsInTheNextRead) {
    ASSERT_TRUE(stopCompositor()) << "a compositing manager already runs";
    const quint32 invisible =
        client.open(QStringLiteral("invisible"), placement(1, 200, 200, 300, 200) + QStringLiteral(" opacity=0"));
    ASSERT_NE(invisible, 0u);
    // Read (and so known to the window cache) before any compositor runs.
    ASSERT_TRUE(qualifies(invisible));
    ASSERT_TRUE(startCompositor()) << "xcompmgr did not take the compositing manager's selection";
    EXPECT_FALSE(qualifies(invisible));
    const std::optional<WindowEntry> composited = entryFor(invisible);
    ASSERT_TRUE(composited && composited->opacity);
    EXPECT_DOUBLE_EQ(*composited->opacity, 0.0);
    ASSERT_TRUE(stopCompositor());
    EXPECT_TRUE(qualifies(invisible));
    const std::optional<WindowEntry> drawnFully = entryFor(invisible);
    ASSERT_TRUE(drawnFully && drawnFully->opacity);
    EXPECT_DOUBLE_EQ(*drawnFully->opacity, 1.0);
    // And once more, now that the cache knows the window's opacity from the compositor's time.
    ASSERT_TRUE(startCompositor()) << "xcompmgr did not take the compositing manager's selection a second time";
    EXPECT_FALSE(qualifies(invisible));
}

}  // namespace
