// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QProcess>
#include <QTemporaryDir>

#include "tests/platform/kwin/KWinSessionFixture.h"
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

class KWinProgramTest : public KWinSessionTest {};

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
