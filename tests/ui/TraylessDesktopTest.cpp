// SPDX-License-Identifier: MIT
// The real program on a desktop without a tray host: it says so and shows its panel as an ordinary window.
#include <gtest/gtest.h>

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "tests/support/VirtualDesktop.h"

namespace {

// Visible windows titled exactly "Lattica", as decimal ids.
QStringList latticaWindows() {
    return VirtualDesktop::output(QStringLiteral("xdotool"), {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                                              QStringLiteral("--name"), QStringLiteral("^Lattica$")})
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QSize windowSize(const QString& window) {
    const QString text =
        VirtualDesktop::output(QStringLiteral("xdotool"), {QStringLiteral("getwindowgeometry"), window});
    const QRegularExpressionMatch match = QRegularExpression(QStringLiteral("Geometry: (\\d+)x(\\d+)")).match(text);
    return match.hasMatch() ? QSize(match.captured(1).toInt(), match.captured(2).toInt()) : QSize();
}

// Whether the window manager manages the window (a popup would not be in its client list).
bool isManaged(const QString& window) {
    const QString list =
        VirtualDesktop::output(QStringLiteral("xprop"), {QStringLiteral("-root"), QStringLiteral("_NET_CLIENT_LIST")});
    const QString hex = QStringLiteral("0x") + QString::number(window.toULongLong(), 16);
    return list.contains(hex);
}

// Starts the program with a configuration and a runtime folder of its own and no update check over the
// network. With the user's runtime folder it would find the instance of another test running at the same time.
void startLattica(QProcess& lattica, const QTemporaryDir& config, const QTemporaryDir& runtime) {
    lattica.setProcessEnvironment(VirtualDesktop::soleInstanceEnvironment(config.path(), runtime.path()));
    lattica.setProcessChannelMode(QProcess::SeparateChannels);
    lattica.start(QStringLiteral(LATTICA_BINARY), {});
}

TEST(ProgramWithoutTrayHost, SaysSoAndShowsThePanelAsAnOrdinaryWindow) {
    QTemporaryDir config;
    QTemporaryDir runtime;
    ASSERT_TRUE(config.isValid() && runtime.isValid());
    QProcess lattica;
    startLattica(lattica, config, runtime);
    ASSERT_TRUE(lattica.waitForStarted(5000));

    QByteArray output;
    EXPECT_TRUE(VirtualDesktop::waitUntil(
        [&] {
            output += lattica.readAllStandardOutput();
            return output.contains("no system tray is available");
        },
        10000))
        << output.constData();

    QStringList windows;
    ASSERT_TRUE(VirtualDesktop::waitUntil(
        [&] {
            windows = latticaWindows();
            return !windows.isEmpty() && windowSize(windows.first()) == QSize(640, 412);
        },
        10000));
    EXPECT_TRUE(isManaged(windows.first()));

    lattica.terminate();
    ASSERT_TRUE(lattica.waitForFinished(10000));
    EXPECT_EQ(lattica.exitCode(), 0);
}

// Whether the tray host holds one of the program's windows (its icon) somewhere below its own window.
bool trayHoldsAWindowOf(qint64 pid) {
    const QStringList trays =
        VirtualDesktop::output(QStringLiteral("xdotool"),
                               {QStringLiteral("search"), QStringLiteral("--classname"), QStringLiteral("^panel$")})
            .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    const QStringList ours =
        VirtualDesktop::output(QStringLiteral("xdotool"),
                               {QStringLiteral("search"), QStringLiteral("--pid"), QString::number(pid)})
            .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& tray : trays) {
        const QString tree =
            VirtualDesktop::output(QStringLiteral("xwininfo"), {QStringLiteral("-tree"), QStringLiteral("-id"), tray});
        for (const QString& window : ours) {
            if (tree.contains(QStringLiteral("0x") + QString::number(window.toULongLong(), 16) + QLatin1Char(' '))) {
                return true;
            }
        }
    }
    return false;
}

TEST(ProgramWithoutTrayHost, MovesIntoATrayHostThatStartsLater) {
    QTemporaryDir config;
    QTemporaryDir runtime;
    ASSERT_TRUE(config.isValid() && runtime.isValid());
    QProcess lattica;
    startLattica(lattica, config, runtime);
    ASSERT_TRUE(lattica.waitForStarted(5000));
    QByteArray output;
    ASSERT_TRUE(VirtualDesktop::waitUntil(
        [&] {
            output += lattica.readAllStandardOutput();
            return output.contains("no system tray is available") && !latticaWindows().isEmpty();
        },
        10000))
        << output.constData();

    // The tray host of a session that finishes logging in after us.
    QProcess tray;
    tray.start(QStringLiteral("trayer"),
               {QStringLiteral("--edge"), QStringLiteral("bottom"), QStringLiteral("--align"), QStringLiteral("right"),
                QStringLiteral("--widthtype"), QStringLiteral("request"), QStringLiteral("--height"),
                QStringLiteral("24"), QStringLiteral("--SetDockType"), QStringLiteral("true")});
    ASSERT_TRUE(tray.waitForStarted(5000));

    EXPECT_TRUE(VirtualDesktop::waitUntil(
        [&] {
            output += lattica.readAllStandardOutput();
            return output.contains("a system tray is available now");
        },
        10000))
        << output.constData();
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return latticaWindows().isEmpty(); }, 10000))
        << "the ordinary panel window is gone";
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return trayHoldsAWindowOf(lattica.processId()); }, 10000))
        << "the tray host embeds the icon";

    lattica.terminate();
    ASSERT_TRUE(lattica.waitForFinished(10000));
    EXPECT_EQ(lattica.exitCode(), 0);
    tray.terminate();
    tray.waitForFinished(5000);
}

}  // namespace
