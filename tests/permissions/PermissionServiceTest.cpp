// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "app/permissions/PermissionService.h"
#include "platform/fake/FakePlatform.h"
#include "platform/x11/X11SessionCheck.h"
#include "platform/x11/X11SessionHelpPage.h"

namespace {

class PermissionServiceTest : public ::testing::Test {
protected:
    FakePlatform platform;
};

TEST_F(PermissionServiceTest, ScreenCaptureAvailableButWindowControlMissingReadsTrueFalse) {
    platform.sessionCheck.screenCaptureAvailable = true;
    platform.sessionCheck.windowControlAvailable = false;
    const PermissionState state = PermissionService::currentState();
    EXPECT_TRUE(state.screenRecordingGranted);
    EXPECT_FALSE(state.accessibilityGranted);
    // The reason travels with the state, for the views.
    EXPECT_EQ(state.windowControl,
              (CapabilityCheck{Availability::Unavailable, platform.sessionCheck.windowControlReason}));
    EXPECT_EQ(state.screenCapture, (CapabilityCheck{Availability::Available, {}}));
}

TEST_F(PermissionServiceTest, ScreenCaptureIsCheckedFirst) {
    QList<QString> order;
    struct OrderedCheck : FakeSessionCheck {
        QList<QString>* order = nullptr;
        CapabilityCheck windowControl() override {
            order->append(QStringLiteral("window control"));
            return FakeSessionCheck::windowControl();
        }
        CapabilityCheck screenCapture() override {
            order->append(QStringLiteral("screen capture"));
            return FakeSessionCheck::screenCapture();
        }
    } check;
    check.order = &order;
    PlatformServices services = Platform::services();
    services.sessionCheck = &check;
    Platform::install(services);
    PermissionService::currentState();
    EXPECT_EQ(order, (QList<QString>{QStringLiteral("screen capture"), QStringLiteral("window control")}));
}

TEST_F(PermissionServiceTest, LimitedWindowControlCountsAsGrantedAndKeepsItsLimit) {
    platform.sessionCheck.windowControlLimit = QStringLiteral("Only X11 applications can be moved.");
    const PermissionState state = PermissionService::currentState();
    EXPECT_TRUE(state.accessibilityGranted);
    EXPECT_EQ(state.windowControl.availability, Availability::Limited);
    EXPECT_EQ(state.windowControl.explanation, QStringLiteral("Only X11 applications can be moved."));
}

TEST_F(PermissionServiceTest, RequestsCheckAgain) {
    platform.sessionCheck.windowControlAvailable = false;
    EXPECT_FALSE(PermissionService::requestWindowControl().isUsable());
    EXPECT_EQ(platform.sessionCheck.windowControlChecks, 1);
    // Something changed on the desktop in between: the next request sees it.
    platform.sessionCheck.windowControlAvailable = true;
    EXPECT_TRUE(PermissionService::requestWindowControl().isUsable());
    EXPECT_EQ(PermissionService::requestScreenCapture().availability, Availability::Available);
    EXPECT_EQ(platform.sessionCheck.screenCaptureChecks, 1);
}

TEST_F(PermissionServiceTest, HelpPagesAreOpenedForEachCapability) {
    EXPECT_TRUE(PermissionService::openHelp(Capability::WindowControl));
    EXPECT_TRUE(PermissionService::openHelp(Capability::ScreenCapture));
    EXPECT_EQ(platform.sessionCheck.helpPagesAsked,
              (QList<Capability>{Capability::WindowControl, Capability::ScreenCapture}));
    EXPECT_EQ(platform.desktopLauncher.openedURLs,
              (QList<QUrl>{FakeSessionCheck::helpPageUrl(Capability::WindowControl),
                           FakeSessionCheck::helpPageUrl(Capability::ScreenCapture)}));
}

TEST(X11SessionChecksTest, X11SessionWithWindowManagerHasBoth) {
    const X11SessionCheck::Facts facts{true, true, false};
    EXPECT_EQ(X11SessionCheck::windowControlFor(facts), (CapabilityCheck{Availability::Available, {}}));
    EXPECT_EQ(X11SessionCheck::screenCaptureFor(facts), (CapabilityCheck{Availability::Available, {}}));
}

TEST(X11SessionChecksTest, X11SessionWithoutWindowManagerCannotMoveWindowsAndSaysWhy) {
    const X11SessionCheck::Facts facts{true, false, false};
    const CapabilityCheck windowControl = X11SessionCheck::windowControlFor(facts);
    EXPECT_EQ(windowControl.availability, Availability::Unavailable);
    EXPECT_TRUE(windowControl.explanation.startsWith(QStringLiteral("No window manager is running.")));
    EXPECT_EQ(X11SessionCheck::screenCaptureFor(facts).availability, Availability::Available);
}

TEST(X11SessionChecksTest, WaylandSessionMovesOnlyX11ApplicationsAndCapturesNothing) {
    const X11SessionCheck::Facts facts{true, true, true};
    const CapabilityCheck windowControl = X11SessionCheck::windowControlFor(facts);
    EXPECT_EQ(windowControl.availability, Availability::Limited);
    EXPECT_TRUE(windowControl.explanation.contains(QStringLiteral("only X11 applications")));
    const CapabilityCheck capture = X11SessionCheck::screenCaptureFor(facts);
    EXPECT_EQ(capture.availability, Availability::Unavailable);
    EXPECT_TRUE(capture.explanation.contains(QStringLiteral("Wayland session")));
}

TEST(X11SessionChecksTest, WaylandSessionWithoutWindowManagerInXwaylandMovesNothing) {
    const X11SessionCheck::Facts facts{true, false, true};
    EXPECT_EQ(X11SessionCheck::windowControlFor(facts).availability, Availability::Unavailable);
    EXPECT_EQ(X11SessionCheck::screenCaptureFor(facts).availability, Availability::Unavailable);
}

TEST(X11SessionChecksTest, LostConnectionGivesNeither) {
    const X11SessionCheck::Facts facts{false, false, false};
    EXPECT_FALSE(X11SessionCheck::windowControlFor(facts).isUsable());
    EXPECT_FALSE(X11SessionCheck::screenCaptureFor(facts).isUsable());
    EXPECT_FALSE(X11SessionCheck::windowControlFor(facts).explanation.isEmpty());
}

TEST(X11SessionChecksTest, WaylandIsRecognisedBySessionTypeOrDisplay) {
    EXPECT_TRUE(X11SessionCheck::isWaylandSession(QStringLiteral("wayland"), {}));
    EXPECT_TRUE(X11SessionCheck::isWaylandSession(QStringLiteral("x11"), QStringLiteral("wayland-0")));
    EXPECT_FALSE(X11SessionCheck::isWaylandSession(QStringLiteral("x11"), {}));
    EXPECT_FALSE(X11SessionCheck::isWaylandSession({}, {}));
}

TEST(X11SessionHelpPageTest, PageIsWrittenAndPointsAtTheCase) {
    QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    const QString folder = QDir(directory.path()).filePath(QStringLiteral("lattica"));
    const QUrl windowControl = X11SessionHelpPage::write(folder, Capability::WindowControl, false);
    ASSERT_TRUE(windowControl.isLocalFile());
    EXPECT_EQ(windowControl.fragment(), QStringLiteral("window-control"));
    EXPECT_EQ(X11SessionHelpPage::write(folder, Capability::ScreenCapture, false).fragment(),
              QStringLiteral("screen-capture"));
    EXPECT_EQ(X11SessionHelpPage::write(folder, Capability::ScreenCapture, true).fragment(), QStringLiteral("wayland"));
    QFile page(windowControl.toLocalFile());
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    const QByteArray html = page.readAll();
    for (const char* id : {"id=\"window-control\"", "id=\"screen-capture\"", "id=\"wayland\""}) {
        EXPECT_TRUE(html.contains(id)) << id;
    }
}

}  // namespace
