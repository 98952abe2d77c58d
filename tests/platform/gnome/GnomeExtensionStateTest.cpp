// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QProcess>
#include <QStandardPaths>

#include "platform/SessionCheck.h"
#include "platform/gnome/GnomePlatform.h"
#include "platform/gnome/GnomeSessionCheck.h"
#include "platform/gnome/GnomeShellBridge.h"
#include "tests/support/VirtualDesktop.h"

// What the permission guide learns about the extension on a shell where it is missing, installed but
// turned off, or turned on. ctest runs this in three sessions; LATTICA_GNOME_EXTENSION names which.
namespace {

using State = GnomeSessionCheck::ExtensionState;

class GnomeExtensionStateTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (qEnvironmentVariableIsEmpty("LATTICA_GNOME_LAYOUT")) {
            if (QStandardPaths::findExecutable(QStringLiteral("gnome-shell")).isEmpty()) {
                GTEST_SKIP() << "gnome-shell is not installed (scripts/install-deps.sh installs it)";
            }
            FAIL() << "run this test inside scripts/virtual-gnome.sh run -- (ctest does)";
        }
        ASSERT_TRUE(QDBusConnection::sessionBus().registerService(QStringLiteral("app.lattica.Lattica")));
        m_session = qEnvironmentVariable("LATTICA_GNOME_EXTENSION");
    }

    // The guide's check as the program makes it: through the platform when the extension answers,
    // else through the Shell's extension list alone.
    static CapabilityCheck windowControl(const GnomeShellBridge& bridge) {
        GnomeSessionCheck::Facts facts;
        facts.answering = bridge.ping();
        facts.state = GnomeSessionCheck::extensionState(bridge);
        return GnomeSessionCheck::windowControlFor(facts);
    }

    QString m_session;
};

TEST_F(GnomeExtensionStateTest, TheGuideSaysWhatTheExtensionNeeds) {
    const GnomeShellBridge bridge(QDBusConnection::sessionBus());
    if (m_session == QLatin1String("missing")) {
        EXPECT_EQ(GnomeSessionCheck::extensionState(bridge), State::Missing);
        QString problem;
        EXPECT_FALSE(GnomePlatform::connect(&problem));
        EXPECT_TRUE(problem.contains(QLatin1String("does not answer"))) << problem.toStdString();
        const CapabilityCheck check = windowControl(bridge);
        EXPECT_EQ(check.availability, Availability::Unavailable);
        EXPECT_TRUE(check.explanation.contains(QLatin1String("not installed"))) << check.explanation.toStdString();
        EXPECT_TRUE(check.explanation.contains(QLatin1String("log out and back in once")));
    } else if (m_session == QLatin1String("disabled")) {
        EXPECT_EQ(GnomeSessionCheck::extensionState(bridge), State::Disabled);
        EXPECT_FALSE(bridge.ping());
        const CapabilityCheck check = windowControl(bridge);
        EXPECT_EQ(check.availability, Availability::Unavailable);
        EXPECT_TRUE(check.explanation.contains(QLatin1String("gnome-extensions enable lattica@lattica.app")))
            << check.explanation.toStdString();
        // The command the guide offers turns it on, without logging out, since the Shell knows it already.
        QProcess enable;
        enable.start(QStringLiteral("gnome-extensions"),
                     {QStringLiteral("enable"), QStringLiteral("lattica@lattica.app")});
        ASSERT_TRUE(enable.waitForFinished(10000));
        ASSERT_EQ(enable.exitCode(), 0) << enable.readAllStandardError().toStdString();
        EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return bridge.ping(); }));
        EXPECT_EQ(GnomeSessionCheck::extensionState(bridge), State::Enabled);
        EXPECT_EQ(windowControl(bridge).availability, Availability::Available);
    } else if (m_session == QLatin1String("enabled")) {
        EXPECT_EQ(GnomeSessionCheck::extensionState(bridge), State::Enabled);
        std::unique_ptr<GnomePlatform> platform = GnomePlatform::connect();
        ASSERT_TRUE(platform);
        EXPECT_EQ(platform->services().sessionCheck->windowControl().availability, Availability::Available);
    } else {
        FAIL() << "LATTICA_GNOME_EXTENSION is missing, disabled or enabled, not " << m_session.toStdString();
    }
}

}  // namespace
