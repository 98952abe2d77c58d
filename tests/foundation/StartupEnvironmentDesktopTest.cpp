#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>

#include "tests/support/VirtualDesktop.h"

namespace {

// A generous bound for start-up to give up on a display; the program's own limit is well below it.
constexpr int kGiveUpWithinMs = 30000;

struct Outcome {
    bool finished = false;
    QProcess::ExitStatus status = QProcess::CrashExit;
    int code = -1;
    QStringList errorLines;
};

// Runs the program with the given DISPLAY until it ends (or kills it after kGiveUpWithinMs).
Outcome runWithDisplay(const QString& display) {
    QTemporaryDir config;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), display);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), config.path());
    environment.insert(QStringLiteral("LATTICA_APPCAST_URL"), QStringLiteral("http://127.0.0.1:9/appcast.xml"));
    QProcess lattica;
    lattica.setProcessEnvironment(environment);
    lattica.setProcessChannelMode(QProcess::SeparateChannels);
    lattica.start(QStringLiteral(LATTICA_BINARY), {});
    Outcome outcome;
    if (!lattica.waitForStarted(5000)) {
        return outcome;
    }
    outcome.finished = lattica.waitForFinished(kGiveUpWithinMs);
    if (!outcome.finished) {
        lattica.kill();
        lattica.waitForFinished();
    }
    outcome.status = lattica.exitStatus();
    outcome.code = lattica.exitCode();
    const QString errors = QString::fromUtf8(lattica.readAllStandardError());
    for (const QString& line : errors.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        // The toolkit's own note about the runtime folder is not about the display.
        if (!line.startsWith(QLatin1String("QStandardPaths:"))) {
            outcome.errorLines.append(line);
        }
    }
    return outcome;
}

void expectCleanRefusal(const Outcome& outcome, const QString& display) {
    ASSERT_TRUE(outcome.finished) << "start-up did not give up on " << qPrintable(display);
    EXPECT_EQ(outcome.status, QProcess::NormalExit) << "the program crashed";
    EXPECT_EQ(outcome.code, 1);
    ASSERT_EQ(outcome.errorLines.size(), 1) << qPrintable(outcome.errorLines.join(QLatin1Char('\n')));
    EXPECT_TRUE(outcome.errorLines.first().startsWith(QLatin1String("Lattica: ")));
    EXPECT_TRUE(outcome.errorLines.first().contains(display)) << qPrintable(outcome.errorLines.first());
}

// A display number that no server on this machine uses.
QString unusedDisplay() {
    for (int number = 4000; number < 5000; ++number) {
        if (!QFile::exists(QStringLiteral("/tmp/.X%1-lock").arg(number)) &&
            !QFile::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(number))) {
            return QStringLiteral(":%1").arg(number);
        }
    }
    return {};
}

TEST(StartupEnvironmentDesktopTest, DisplayWithoutServerEndsWithStatusOneAndOneLine) {
    const QString display = unusedDisplay();
    ASSERT_FALSE(display.isEmpty());
    expectCleanRefusal(runWithDisplay(display), display);
}

TEST(StartupEnvironmentDesktopTest, MalformedDisplayNameEndsWithStatusOneAndOneLine) {
    const QString display = QStringLiteral("no display here");
    expectCleanRefusal(runWithDisplay(display), display);
}

TEST(StartupEnvironmentDesktopTest, ServerThatNeverAnswersEndsStartupWithStatusOne) {
    // A listening socket on an X port: the connection is accepted by the system, nothing ever answers.
    QTcpServer silent;
    int number = 0;
    for (number = 400; number < 1000 && !silent.listen(QHostAddress::LocalHost, quint16(6000 + number)); ++number) {
    }
    ASSERT_TRUE(silent.isListening());
    const QString display = QStringLiteral("127.0.0.1:%1").arg(number);
    expectCleanRefusal(runWithDisplay(display), display);
}

}  // namespace
