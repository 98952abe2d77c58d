// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "tests/support/FinishedProcess.h"
#include "tests/support/VirtualDesktop.h"

namespace {

FinishedProcess runLattica(const QStringList& arguments, const QString& forcedBackend = {}) {
    QTemporaryDir config;
    QProcessEnvironment environment = VirtualDesktop::programEnvironment(config.path());
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    if (!forcedBackend.isEmpty()) {
        environment.insert(QStringLiteral("LATTICA_BACKEND"), forcedBackend);
    }
    return runToEnd(QStringLiteral(LATTICA_BINARY), arguments, environment);
}

class KWinProgramTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (qEnvironmentVariableIsEmpty("LATTICA_KWIN_LAYOUT")) {
            if (QStandardPaths::findExecutable(QStringLiteral("kwin_wayland")).isEmpty()) {
                GTEST_SKIP() << "kwin_wayland is not installed (scripts/install-deps.sh installs it)";
            }
            FAIL() << "run this test inside scripts/virtual-kwin.sh run -- (ctest does)";
        }
    }
};

TEST_F(KWinProgramTest, OnPlasmaWaylandTheProgramUsesKWinAndNamesItsOutputs) {
    const FinishedProcess finished = runLattica({QStringLiteral("displays")});
    EXPECT_EQ(finished.status, 0) << finished.errors.toStdString();
    EXPECT_TRUE(finished.output.contains(QStringLiteral("Virtual-0"))) << finished.output.toStdString();
    EXPECT_TRUE(finished.output.contains(QStringLiteral("2560x1440+1920+0"))) << finished.output.toStdString();
}

TEST_F(KWinProgramTest, ForcingX11ReachesOnlyXwayland) {
    const FinishedProcess finished = runLattica({QStringLiteral("displays")}, QStringLiteral("x11"));
    // Xwayland's outputs, not KWin's.
    EXPECT_EQ(finished.status, 0) << finished.errors.toStdString();
    EXPECT_TRUE(finished.output.contains(QStringLiteral("XWAYLAND0"))) << finished.output.toStdString();
    EXPECT_FALSE(finished.output.contains(QStringLiteral("Virtual-0"))) << finished.output.toStdString();
}

TEST_F(KWinProgramTest, ForcingGnomeOnPlasmaSaysTheShellCannotBeReached) {
    const FinishedProcess finished = runLattica({QStringLiteral("displays")}, QStringLiteral("gnome"));
    EXPECT_EQ(finished.status, 3);
    EXPECT_TRUE(finished.errors.contains(QStringLiteral("cannot reach GNOME Shell"))) << finished.errors.toStdString();
}

}  // namespace
