// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "tests/platform/kwin/KWinSessionFixture.h"
#include "tests/support/VirtualDesktop.h"

namespace {

struct Finished {
    int status = -1;
    QString output;
    QString errors;
};

QProcessEnvironment programEnvironment(const QString& config) {
    QProcessEnvironment environment = VirtualDesktop::programEnvironment(config);
    // The program chooses its toolkit backend itself: Wayland on GNOME Shell.
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    return environment;
}

Finished runLattica(const QString& config, const QStringList& arguments) {
    QProcess process;
    process.setProcessEnvironment(programEnvironment(config));
    process.start(QStringLiteral(LATTICA_BINARY), arguments);
    if (!process.waitForFinished(20000)) {
        process.kill();
        process.waitForFinished();
    }
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()), QString::fromUtf8(process.readAllStandardError())};
}

// The line of `lattica windows` for the window with the title: id, monitor, frame, pid, app, title.
QStringList windowLine(const QString& windows, const QString& title) {
    for (const QString& line : windows.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QStringList fields = line.split(QStringLiteral("  "));
        if (fields.size() >= 6 && fields.at(5) == title) {
            return fields;
        }
    }
    return {};
}

class GnomeProgramTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (qEnvironmentVariableIsEmpty("LATTICA_GNOME_LAYOUT")) {
            if (QStandardPaths::findExecutable(QStringLiteral("gnome-shell")).isEmpty()) {
                GTEST_SKIP() << "gnome-shell is not installed (scripts/install-deps.sh installs it)";
            }
            FAIL() << "run this test inside scripts/virtual-gnome.sh run -- (ctest does)";
        }
    }

    void TearDown() override {
        if (m_program.state() != QProcess::NotRunning) {
            m_program.terminate();
            if (!m_program.waitForFinished(10000)) {
                m_program.kill();
                m_program.waitForFinished();
            }
        }
    }

    // Starts the tray program and waits until it says where its panel is.
    bool startProgram(const QString& config) {
        m_program.setProcessEnvironment(programEnvironment(config));
        m_program.start(QStringLiteral(LATTICA_BINARY), {});
        return VirtualDesktop::waitUntil(
                   [&] {
                       m_program.waitForReadyRead(50);
                       m_output += QString::fromUtf8(m_program.readAllStandardOutput());
                       return m_output.contains(QLatin1String("the panel opens")) ||
                              m_program.state() == QProcess::NotRunning;
                   },
                   20000) &&
               m_program.state() == QProcess::Running;
    }

    QProcess m_program;
    QString m_output;
};

TEST_F(GnomeProgramTest, OnGnomeWaylandACommandReachesTheShellThroughTheExtension) {
    QTemporaryDir config;
    const Finished finished = runLattica(config.path(), {QStringLiteral("displays")});
    EXPECT_EQ(finished.status, 0) << finished.errors.toStdString();
    EXPECT_TRUE(finished.output.contains(QLatin1String("Meta-"))) << finished.output.toStdString();
    EXPECT_TRUE(finished.output.contains(QLatin1String("1280x720+1920+0"))) << finished.output.toStdString();
}

TEST_F(GnomeProgramTest, TheTrayProgramRunsAsAWaylandClientAndMovesWindows) {
    QTemporaryDir config;
    // The session has no X server: the program can only be a Wayland client here.
    ASSERT_TRUE(qEnvironmentVariableIsEmpty("DISPLAY"));
    ASSERT_TRUE(startProgram(config.path()))
        << m_output.toStdString() << QString::fromUtf8(m_program.readAllStandardError()).toStdString();
    // GNOME Shell hosts no tray icons without an extension for them: the panel is an ordinary window,
    // which the running program lists among the desktop's windows with its own process id.
    EXPECT_TRUE(m_output.contains(QLatin1String("no system tray is available"))) << m_output.toStdString();
    QStringList panel;
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        panel = windowLine(runLattica(config.path(), {QStringLiteral("windows")}).output, QStringLiteral("Lattica"));
        return !panel.isEmpty();
    }));
    EXPECT_EQ(panel.at(3).toLongLong(), m_program.processId());

    // A move asked of the running program goes through its own connection to the extension.
    WaylandClient client;
    ASSERT_TRUE(client.start());
    ASSERT_TRUE(client.open(QStringLiteral("moved"), QStringLiteral("title=moved-window w=400 h=300")));
    QStringList before;
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] {
        before =
            windowLine(runLattica(config.path(), {QStringLiteral("windows")}).output, QStringLiteral("moved-window"));
        return !before.isEmpty();
    }));
    // The frame reads WxH+X+Y; the second monitor starts at x 1920, and the Shell opens windows on the first.
    const QRegularExpression left(QStringLiteral(R"(\+(\d+)\+\d+$)"));
    ASSERT_TRUE(left.match(before.at(2)).hasMatch()) << before.at(2).toStdString();
    ASSERT_LT(left.match(before.at(2)).captured(1).toInt(), 1920) << before.join(QLatin1Char(' ')).toStdString();
    const Finished moved = runLattica(config.path(), {QStringLiteral("move-app"), QString::number(client.pid()),
                                                      QStringLiteral("--to"), QStringLiteral("2")});
    EXPECT_EQ(moved.status, 0) << moved.output.toStdString() << moved.errors.toStdString();
    const QStringList after =
        windowLine(runLattica(config.path(), {QStringLiteral("windows")}).output, QStringLiteral("moved-window"));
    ASSERT_FALSE(after.isEmpty());
    const QRegularExpressionMatch frame = left.match(after.at(2));
    ASSERT_TRUE(frame.hasMatch()) << after.at(2).toStdString();
    EXPECT_GE(frame.captured(1).toInt(), 1920) << after.join(QLatin1Char(' ')).toStdString();
}

}  // namespace
