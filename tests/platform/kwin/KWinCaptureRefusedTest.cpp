// SPDX-License-Identifier: MIT
#include "platform/Monitors.h"
#include "platform/Platform.h"
#include "platform/SessionCheck.h"
#include "platform/WindowControl.h"
#include "tests/platform/kwin/KWinSessionFixture.h"

namespace {

// KWin keeps its screenshot restriction here, as on a desktop where Lattica's desktop file is not
// installed: capture is refused, and the session check says so in KWin's words.
using KWinCaptureRefusedTest = KWinSessionFixture;

TEST_F(KWinCaptureRefusedTest, ARefusedCaptureIsExplainedAndEverythingElseWorks) {
    const QList<Monitor> monitors = Platform::services().monitors->monitors();
    ASSERT_FALSE(monitors.isEmpty());
    EXPECT_TRUE(Platform::services().monitors->capture(monitors.first().id).isNull());

    const CapabilityCheck capture = Platform::services().sessionCheck->screenCapture();
    EXPECT_EQ(capture.availability, Availability::Unavailable);
    EXPECT_TRUE(capture.explanation.contains(QStringLiteral("not authorized"))) << capture.explanation.toStdString();
    EXPECT_TRUE(capture.explanation.contains(QStringLiteral("X-KDE-DBUS-Restricted-Interfaces")));
    EXPECT_EQ(Platform::services().sessionCheck->windowControl().availability, Availability::Available);

    ASSERT_TRUE(wayland.open(QStringLiteral("w"), QStringLiteral("title=still-movable")));
    const auto entry = waitForWindow(QStringLiteral("still-movable"));
    ASSERT_TRUE(entry);
    const QPointF target = monitors.last().bounds.topLeft() + QPointF(20, 30);
    ASSERT_EQ(Platform::services().windowControl->move(entry->id, target), Result::Ok);
    EXPECT_EQ(Platform::services().windowControl->frame(entry->id).value->topLeft(), target);
}

}  // namespace
