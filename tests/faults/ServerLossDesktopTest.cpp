// SPDX-License-Identifier: MIT
// The X server dies under the running program: it ends within a second with status 1 and one clear line,
// without a core, and its preferences file is as it was.
#include <signal.h>

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>

#include "tests/faults/LatticaProgram.h"
#include "tests/faults/PrivateDesktop.h"
#include "tests/support/VirtualDesktop.h"

namespace {

QByteArray contentsOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST(ServerLossDesktopTest, KilledServerEndsTheProgramWithinASecondWithStatusOneAndThePreferencesIntact) {
    PrivateDesktop desktop;
    ASSERT_TRUE(desktop.start());
    LatticaProgram lattica;
    lattica.environment().insert(QStringLiteral("DISPLAY"), desktop.display());
    ASSERT_TRUE(lattica.start()) << qPrintable(lattica.errorOutput());
    const QString defaults = lattica.configPath(QStringLiteral("lattica/defaults.json"));
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return contentsOf(defaults).contains("dockIconVisible"); }, 10000));
    // The panel open, with its pictures being taken, as it may well be when the server goes.
    const QDBusMessage opened = lattica.call(QStringLiteral("OpenPanel"));
    ASSERT_EQ(opened.type(), QDBusMessage::ReplyMessage) << qPrintable(opened.errorMessage());
    const QByteArray before = contentsOf(defaults);

    QElapsedTimer clock;
    clock.start();
    ASSERT_EQ(::kill(pid_t(desktop.serverPid()), SIGKILL), 0);
    ASSERT_TRUE(lattica.process().waitForFinished(10000)) << "the program did not end";
    const qint64 elapsed = clock.elapsed();
    std::printf("the program ended %lld ms after the server was killed\n", static_cast<long long>(elapsed));
    EXPECT_LT(elapsed, 1000);
    EXPECT_EQ(lattica.process().exitStatus(), QProcess::NormalExit) << "ended by a signal (a core?)";
    EXPECT_EQ(lattica.process().exitCode(), 1);
    const QString errors = lattica.errorOutput();
    QStringList ours;
    for (const QString& line : errors.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (line.startsWith(QLatin1String("Lattica: "))) {
            ours.append(line);
        }
    }
    ASSERT_EQ(ours.size(), 1) << qPrintable(errors);
    EXPECT_TRUE(ours.first().contains(desktop.display())) << qPrintable(ours.first());
    EXPECT_EQ(contentsOf(defaults), before) << "the preferences file changed";
}

}  // namespace
