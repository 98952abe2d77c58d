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

TEST(ProgramWithoutTrayHost, SaysSoAndShowsThePanelAsAnOrdinaryWindow) {
    QTemporaryDir config;
    ASSERT_TRUE(config.isValid());
    QProcess lattica;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), config.path());
    // A closed port on this machine: the update check at launch ends at once, without the network.
    environment.insert(QStringLiteral("LATTICA_APPCAST_URL"), QStringLiteral("http://127.0.0.1:9/appcast.xml"));
    lattica.setProcessEnvironment(environment);
    lattica.setProcessChannelMode(QProcess::SeparateChannels);
    lattica.start(QStringLiteral(LATTICA_BINARY), {});
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

}  // namespace
