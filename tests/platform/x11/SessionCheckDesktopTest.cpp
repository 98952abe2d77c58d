// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QFile>
#include <QLabel>
#include <QTemporaryDir>
#include <cstdlib>
#include <functional>
#include <memory>

#include "app/controller/AppController.h"
#include "app/permissions/PermissionService.h"
#include "app/ui/guide/PermissionGuideView.h"
#include "app/ui/settings/SettingsPermissionsSection.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Platform.h"

namespace {

// The session checks on a real X server: with a window manager (LATTICA_TEST_WM=openbox), without one
// (LATTICA_TEST_WM=none), and inside a Wayland session as the environment tells it. The guide and the
// settings show what the checks found.
class SessionCheckDesktopTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_home.isValid());
        qputenv("XDG_CONFIG_HOME", (m_home.path() + QStringLiteral("/config")).toUtf8());
        qputenv("XDG_CACHE_HOME", (m_home.path() + QStringLiteral("/cache")).toUtf8());
        qputenv("LATTICA_APPCAST_URL", QByteArrayLiteral("http://127.0.0.1:9/appcast.xml"));
        // An X11 session unless a test says otherwise, whatever the machine's own session is.
        qputenv("XDG_SESSION_TYPE", QByteArrayLiteral("x11"));
        qunsetenv("WAYLAND_DISPLAY");
        m_platform = X11Platform::connect();
        ASSERT_NE(m_platform, nullptr);
        m_platform->install();
    }

    void TearDown() override {
        m_guide.reset();
        m_settings.reset();
        m_controller.reset();
        Platform::install({});
        m_platform.reset();
        for (const char* name :
             {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "LATTICA_APPCAST_URL", "XDG_SESSION_TYPE", "WAYLAND_DISPLAY"}) {
            qunsetenv(name);
        }
    }

    static bool hasWindowManager() { return qEnvironmentVariable("LATTICA_TEST_WM") != QLatin1String("none"); }

    static void simulateWaylandSession() {
        qputenv("XDG_SESSION_TYPE", QByteArrayLiteral("wayland"));
        qputenv("WAYLAND_DISPLAY", QByteArrayLiteral("wayland-lattica-test"));
    }

    // The guide and the settings' permission rows, built on a controller that read the session.
    void showViews() {
        m_controller = std::make_unique<AppController>();
        m_guide = std::make_unique<PermissionGuideView>(*m_controller);
        m_settings = std::make_unique<SettingsPermissionsSection>(*m_controller);
        m_guide->show();
        m_settings->show();
    }

    QString guideState(const char* step) const {
        return m_guide->findChild<QWidget*>(QLatin1String(step))
            ->findChild<QLabel*>(QStringLiteral("grantState"))
            ->text();
    }
    QLabel* guideExplanation(const char* step) const {
        return m_guide->findChild<QWidget*>(QLatin1String(step))->findChild<QLabel*>(QStringLiteral("explanation"));
    }
    QLabel* settingsLabel(const char* name) const { return m_settings->findChild<QLabel*>(QLatin1String(name)); }

    // Every text the two views show at the moment.
    QStringList shownTexts() const {
        QStringList texts;
        for (QWidget* root : {static_cast<QWidget*>(m_guide.get()), static_cast<QWidget*>(m_settings.get())}) {
            for (QLabel* label : root->findChildren<QLabel*>()) {
                if (label->isVisibleTo(root)) {
                    texts.append(label->text());
                }
            }
        }
        return texts;
    }

    QTemporaryDir m_home;
    std::unique_ptr<X11Platform> m_platform;
    std::unique_ptr<AppController> m_controller;
    std::unique_ptr<PermissionGuideView> m_guide;
    std::unique_ptr<SettingsPermissionsSection> m_settings;
};

TEST_F(SessionCheckDesktopTest, WithAWindowManagerBothWorkAndNothingNeedsExplaining) {
    if (!hasWindowManager()) {
        GTEST_SKIP() << "needs a window manager";
    }
    SessionCheck* check = Platform::services().sessionCheck;
    EXPECT_EQ(check->windowControl(), (CapabilityCheck{Availability::Available, {}}));
    EXPECT_EQ(check->screenCapture(), (CapabilityCheck{Availability::Available, {}}));

    showViews();
    EXPECT_TRUE(m_controller->permissionState().bothGranted());
    EXPECT_EQ(guideState("screenRecordingStep"), QStringLiteral("Granted"));
    EXPECT_EQ(guideState("accessibilityStep"), QStringLiteral("Granted"));
    EXPECT_FALSE(guideExplanation("screenRecordingStep")->isVisibleTo(m_guide.get()));
    EXPECT_FALSE(guideExplanation("accessibilityStep")->isVisibleTo(m_guide.get()));
    EXPECT_EQ(settingsLabel("badge.accessibility")->text(), QStringLiteral("Granted"));
    EXPECT_FALSE(settingsLabel("explanation.accessibility")->isVisibleTo(m_settings.get()));
}

TEST_F(SessionCheckDesktopTest, OnlyTheWindowControlCheckAsksTheServerForTheWindowManager) {
    xcb_connection_t* xcb = m_platform->connection().xcb();
    // Requests sent on the connection while the step runs, counted by the sequence numbers of a request
    // before and after it.
    const auto requestsOf = [xcb](const std::function<void()>& step) {
        const unsigned int before = xcb_get_input_focus(xcb).sequence;
        step();
        const unsigned int after = xcb_get_input_focus(xcb).sequence;
        std::free(xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
        return int(after - before) - 1;
    };
    SessionCheck* check = Platform::services().sessionCheck;
    EXPECT_EQ(requestsOf([check] { check->screenCapture(); }), 0);
    EXPECT_GE(requestsOf([check] { check->windowControl(); }), 1);
}

TEST_F(SessionCheckDesktopTest, WithoutAWindowManagerWindowControlIsMissingAndTheReasonIsShown) {
    if (hasWindowManager()) {
        GTEST_SKIP() << "needs a desktop without a window manager";
    }
    const CapabilityCheck windowControl = Platform::services().sessionCheck->windowControl();
    EXPECT_EQ(windowControl.availability, Availability::Unavailable);
    EXPECT_TRUE(windowControl.explanation.startsWith(QStringLiteral("No window manager is running.")));
    EXPECT_EQ(Platform::services().sessionCheck->screenCapture().availability, Availability::Available);

    showViews();
    EXPECT_FALSE(m_controller->permissionState().accessibilityGranted);
    EXPECT_EQ(guideState("accessibilityStep"), QStringLiteral("Missing"));
    EXPECT_EQ(guideExplanation("accessibilityStep")->text(), windowControl.explanation);
    EXPECT_TRUE(guideExplanation("accessibilityStep")->isVisibleTo(m_guide.get()));
    EXPECT_EQ(guideState("screenRecordingStep"), QStringLiteral("Granted"));
    EXPECT_EQ(settingsLabel("badge.accessibility")->text(), QStringLiteral("Missing"));
    EXPECT_EQ(settingsLabel("explanation.accessibility")->text(), windowControl.explanation);
    EXPECT_TRUE(settingsLabel("explanation.accessibility")->isVisibleTo(m_settings.get()));
}

TEST_F(SessionCheckDesktopTest, WaylandSessionSaysSoAndClaimsNothingMore) {
    simulateWaylandSession();
    SessionCheck* check = Platform::services().sessionCheck;
    const CapabilityCheck windowControl = check->windowControl();
    const CapabilityCheck capture = check->screenCapture();
    // Through Xwayland only X11 applications can be moved, and only if a window manager answers there.
    EXPECT_EQ(windowControl.availability, hasWindowManager() ? Availability::Limited : Availability::Unavailable);
    EXPECT_TRUE(windowControl.explanation.contains(QStringLiteral("Wayland session")));
    if (hasWindowManager()) {
        EXPECT_TRUE(windowControl.explanation.contains(QStringLiteral("only X11 applications")));
    }
    EXPECT_EQ(capture.availability, Availability::Unavailable);
    EXPECT_TRUE(capture.explanation.contains(QStringLiteral("Wayland session")));

    showViews();
    EXPECT_FALSE(m_controller->permissionState().bothGranted());
    EXPECT_EQ(guideState("screenRecordingStep"), QStringLiteral("Missing"));
    EXPECT_EQ(guideState("accessibilityStep"),
              hasWindowManager() ? QStringLiteral("Limited") : QStringLiteral("Missing"));
    EXPECT_EQ(guideExplanation("accessibilityStep")->text(), windowControl.explanation);
    EXPECT_EQ(guideExplanation("screenRecordingStep")->text(), capture.explanation);
    EXPECT_EQ(settingsLabel("explanation.accessibility")->text(), windowControl.explanation);
    EXPECT_EQ(settingsLabel("explanation.screenRecording")->text(), capture.explanation);
    const QStringList texts = shownTexts();
    EXPECT_TRUE(texts.contains(windowControl.explanation));
    EXPECT_TRUE(texts.contains(capture.explanation));
    EXPECT_FALSE(texts.contains(QStringLiteral("Granted"))) << texts.join(QLatin1Char('|')).toStdString();
}

TEST_F(SessionCheckDesktopTest, HelpPageExplainsTheCaseItIsOpenedFor) {
    SessionCheck* check = Platform::services().sessionCheck;
    const QUrl windowControl = check->helpPage(Capability::WindowControl);
    ASSERT_TRUE(windowControl.isLocalFile());
    EXPECT_TRUE(windowControl.toLocalFile().startsWith(m_home.path() + QStringLiteral("/cache/")));
    EXPECT_EQ(windowControl.fragment(), QStringLiteral("window-control"));
    QFile page(windowControl.toLocalFile());
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    EXPECT_TRUE(page.readAll().contains("id=\"window-control\""));
    EXPECT_EQ(check->helpPage(Capability::ScreenCapture).fragment(), QStringLiteral("screen-capture"));
    simulateWaylandSession();
    EXPECT_EQ(check->helpPage(Capability::ScreenCapture).fragment(), QStringLiteral("wayland"));
}

}  // namespace
