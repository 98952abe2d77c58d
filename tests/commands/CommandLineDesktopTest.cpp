// SPDX-License-Identifier: MIT
// The real program's command line and bus interface on the virtual desktop (three monitors side by side),
// on a session bus of the test's own.
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "tests/support/FinishedProcess.h"
#include "tests/support/PrivateSessionBus.h"
#include "tests/support/VirtualDesktop.h"
#include "tests/testclient/TestClient.h"

namespace {

class CommandLineDesktop : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_FALSE(bus.address().isEmpty()) << "dbus-daemon did not start";
        ASSERT_TRUE(config.isValid() && runtime.isValid());
        environment = VirtualDesktop::programEnvironment(config.path());
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime.path());
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
        monitors = VirtualDesktop::layout();
        ASSERT_EQ(monitors.size(), 3);
    }
    void TearDown() override {
        if (program.state() != QProcess::NotRunning) {
            program.terminate();
            program.waitForFinished(10000);
        }
    }

    // Runs `lattica ARGS` to its end.
    FinishedProcess lattica(const QStringList& arguments) {
        return runToEnd(QStringLiteral(LATTICA_BINARY), arguments, environment, 30000);
    }
    // Starts the tray program and waits until it answers on the bus.
    bool startProgram() {
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral(LATTICA_BINARY), {});
        return program.waitForStarted(5000) &&
               VirtualDesktop::waitUntil(
                   [&] {
                       return bus.connection().interface()->isServiceRegistered(QStringLiteral("app.lattica.Lattica"));
                   },
                   10000);
    }
    QDBusMessage call(const QString& method, const QVariantList& arguments = {}) {
        QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("app.lattica.Lattica"),
                                                              QStringLiteral("/app/lattica/Lattica"),
                                                              QStringLiteral("app.lattica.Lattica1"), method);
        message.setArguments(arguments);
        return bus.connection().call(message, QDBus::Block, 30000);
    }
    // The monitor (0-based) that holds the window's top-left corner, or -1.
    int monitorOf(quint32 window) {
        const QString text = VirtualDesktop::output(QStringLiteral("xdotool"),
                                                    {QStringLiteral("getwindowgeometry"), QString::number(window)});
        const QRegularExpressionMatch match =
            QRegularExpression(QStringLiteral("Position: (-?\\d+),(-?\\d+)")).match(text);
        if (!match.hasMatch()) {
            return -1;
        }
        const QPoint corner(match.captured(1).toInt(), match.captured(2).toInt());
        for (int i = 0; i < monitors.size(); ++i) {
            if (monitors[i].contains(corner)) {
                return i;
            }
        }
        return -1;
    }
    // The window's centre as fractions of the monitor's width and height.
    static QPointF relativeCentre(quint32 window, const QRect& monitor) {
        const QString text = VirtualDesktop::output(QStringLiteral("xdotool"),
                                                    {QStringLiteral("getwindowgeometry"), QString::number(window)});
        const QRegularExpressionMatch position =
            QRegularExpression(QStringLiteral("Position: (-?\\d+),(-?\\d+)")).match(text);
        const QRegularExpressionMatch size = QRegularExpression(QStringLiteral("Geometry: (\\d+)x(\\d+)")).match(text);
        if (!position.hasMatch() || !size.hasMatch()) {
            return {-1, -1};
        }
        const QRectF frame(position.captured(1).toDouble(), position.captured(2).toDouble(),
                           size.captured(1).toDouble(), size.captured(2).toDouble());
        return {(frame.center().x() - monitor.x()) / monitor.width(),
                (frame.center().y() - monitor.y()) / monitor.height()};
    }
    bool focus(quint32 window) {
        return VirtualDesktop::run(QStringLiteral("xdotool"), {QStringLiteral("windowactivate"),
                                                               QStringLiteral("--sync"), QString::number(window)}) == 0;
    }
    static bool panelIsVisible() {
        return !VirtualDesktop::output(QStringLiteral("xdotool"),
                                       {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                        QStringLiteral("--name"), QStringLiteral("^Lattica$")})
                    .trimmed()
                    .isEmpty();
    }

    PrivateSessionBus bus;
    QTemporaryDir config;
    QTemporaryDir runtime;
    QProcessEnvironment environment;
    QList<QRect> monitors;
    QProcess program;
};

TEST_F(CommandLineDesktop, DisplaysJsonListsTheThreeMonitorsInProcessAndThroughTheInstance) {
    for (const bool running : {false, true}) {
        if (running) {
            ASSERT_TRUE(startProgram());
        }
        const FinishedProcess run = lattica({QStringLiteral("displays"), QStringLiteral("--json")});
        ASSERT_EQ(run.status, 0) << run.errors.toStdString();
        const QJsonArray displays = QJsonDocument::fromJson(run.output.toUtf8()).array();
        ASSERT_EQ(displays.size(), 3) << run.output.toStdString();
        for (int i = 0; i < 3; ++i) {
            const QJsonObject display = displays[i].toObject();
            const QJsonObject bounds = display[QStringLiteral("bounds")].toObject();
            EXPECT_EQ(display[QStringLiteral("index")].toInt(), i + 1);
            EXPECT_EQ(QRect(bounds[QStringLiteral("x")].toInt(), bounds[QStringLiteral("y")].toInt(),
                            bounds[QStringLiteral("width")].toInt(), bounds[QStringLiteral("height")].toInt()),
                      monitors[i]);
            EXPECT_FALSE(display[QStringLiteral("id")].toString().isEmpty());
        }
    }
}

TEST_F(CommandLineDesktop, MoveFocusedToNextWrapsFromTheLastMonitorToTheFirst) {
    TestClient client;
    ASSERT_TRUE(client.start());
    const QRect last = monitors[2];
    const quint32 window = client.open(QStringLiteral("w"),
                                       QStringLiteral("x=%1 y=%2 w=400 h=300").arg(last.x() + 100).arg(last.y() + 100));
    ASSERT_NE(window, 0u);
    ASSERT_TRUE(focus(window));
    ASSERT_EQ(monitorOf(window), 2);

    const FinishedProcess run =
        lattica({QStringLiteral("move-focused"), QStringLiteral("--to"), QStringLiteral("next")});
    EXPECT_EQ(run.status, 0) << run.errors.toStdString();
    EXPECT_TRUE(run.output.startsWith(QStringLiteral("Moved focused window to "))) << run.output.toStdString();
    EXPECT_EQ(monitorOf(window), 0);

    // Left of the first monitor there is none: a bad target, and the window stays.
    const FinishedProcess left =
        lattica({QStringLiteral("move-focused"), QStringLiteral("--to"), QStringLiteral("left")});
    EXPECT_EQ(left.status, 2);
    EXPECT_TRUE(left.errors.contains(QStringLiteral("There is no monitor to the left of")))
        << left.errors.toStdString();
    EXPECT_EQ(monitorOf(window), 0);

    const FinishedProcess right =
        lattica({QStringLiteral("move-focused"), QStringLiteral("--to"), QStringLiteral("right")});
    EXPECT_EQ(right.status, 0) << right.errors.toStdString();
    EXPECT_EQ(monitorOf(window), 1);
}

TEST_F(CommandLineDesktop, BadTargetsAndArgumentsExitWithTwo) {
    const FinishedProcess monitor = lattica({QStringLiteral("move-all"), QStringLiteral("--from"), QStringLiteral("1"),
                                             QStringLiteral("--to"), QStringLiteral("9")});
    EXPECT_EQ(monitor.status, 2);
    EXPECT_TRUE(monitor.errors.contains(QStringLiteral("There is no monitor 9"))) << monitor.errors.toStdString();
    const FinishedProcess command = lattica({QStringLiteral("teleport")});
    EXPECT_EQ(command.status, 2);
    EXPECT_TRUE(command.errors.contains(QStringLiteral("'teleport' is not a command")));
    const FinishedProcess help = lattica({QStringLiteral("--help")});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.output.contains(QStringLiteral("move-focused --to TARGET")));
}

TEST_F(CommandLineDesktop, MoveAppBringsEveryWindowIncludingMinimisedOnesThroughTheInstance) {
    ASSERT_TRUE(startProgram());
    TestClient client;
    ASSERT_TRUE(client.start());
    const quint32 first = client.open(QStringLiteral("a"), QStringLiteral("x=100 y=100 w=400 h=300"));
    const QRect middle = monitors[1];
    const quint32 second =
        client.open(QStringLiteral("b"), QStringLiteral("x=%1 y=100 w=400 h=300").arg(middle.x() + 100));
    ASSERT_NE(first, 0u);
    ASSERT_NE(second, 0u);
    ASSERT_EQ(VirtualDesktop::run(QStringLiteral("xdotool"), {QStringLiteral("windowminimize"),
                                                              QStringLiteral("--sync"), QString::number(second)}),
              0);

    const FinishedProcess run = lattica({QStringLiteral("move-app"), QString::number(client.pid()),
                                         QStringLiteral("--to"), QStringLiteral("3"), QStringLiteral("--json")});
    ASSERT_EQ(run.status, 0) << run.errors.toStdString() << run.output.toStdString();
    const QJsonObject result = QJsonDocument::fromJson(run.output.toUtf8()).object();
    EXPECT_EQ(result[QStringLiteral("moved")].toInt(), 2);
    EXPECT_EQ(monitorOf(first), 2);
    // The minimised window is shown again after its move; the window manager maps it in its own time.
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return monitorOf(second) == 2; })) << "on " << monitorOf(second);
    const QString state = VirtualDesktop::output(
        QStringLiteral("xprop"), {QStringLiteral("-id"), QString::number(second), QStringLiteral("_NET_WM_STATE")});
    EXPECT_FALSE(state.contains(QStringLiteral("_NET_WM_STATE_HIDDEN"))) << "shown again: " << state.toStdString();
}

TEST_F(CommandLineDesktop, SecondLaunchOpensTheFirstsPanelAndWritesNoPreferences) {
    ASSERT_TRUE(startProgram());
    const QString preferences = config.path() + QStringLiteral("/lattica/defaults.json");
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return QFile::exists(preferences); }, 10000));
    // A call answered on the bus comes after the launch sequence, which writes the preferences it starts with.
    ASSERT_EQ(call(QStringLiteral("Displays")).type(), QDBusMessage::ReplyMessage);
    QFile file(preferences);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();
    const QDateTime modified = QFileInfo(preferences).lastModified();
    file.close();

    const FinishedProcess second = lattica({});
    EXPECT_EQ(second.status, 0) << second.errors.toStdString();
    EXPECT_TRUE(second.output.contains(QStringLiteral("already running"))) << second.output.toStdString();
    EXPECT_TRUE(VirtualDesktop::waitUntil([] { return panelIsVisible(); }, 10000));
    EXPECT_EQ(program.state(), QProcess::Running);

    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), before);
    EXPECT_EQ(QFileInfo(preferences).lastModified(), modified);
}

TEST_F(CommandLineDesktop, BusMethodsAnswerAndNameTheirErrors) {
    ASSERT_TRUE(startProgram());
    const QDBusMessage displays = call(QStringLiteral("Displays"));
    ASSERT_EQ(displays.type(), QDBusMessage::ReplyMessage) << displays.errorMessage().toStdString();
    EXPECT_EQ(QJsonDocument::fromJson(displays.arguments().value(0).toString().toUtf8()).array().size(), 3);

    const QDBusMessage windows = call(QStringLiteral("Windows"));
    EXPECT_EQ(windows.type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(QJsonDocument::fromJson(windows.arguments().value(0).toString().toUtf8()).isArray());

    const QDBusMessage noMonitor =
        call(QStringLiteral("MoveAll"), {QStringLiteral("1"), QStringLiteral("7"), QString()});
    EXPECT_EQ(noMonitor.errorName(), QStringLiteral("app.lattica.Error.NoSuchMonitor"));
    const QDBusMessage noApp =
        call(QStringLiteral("MoveApplication"), {QStringLiteral("No Such App"), QStringLiteral("1"), QString()});
    EXPECT_EQ(noApp.errorName(), QStringLiteral("app.lattica.Error.NoSuchApplication"));
    const QDBusMessage badSize = call(QStringLiteral("MoveFocused"), {QStringLiteral("1"), QStringLiteral("huge")});
    EXPECT_EQ(badSize.errorName(), QStringLiteral("app.lattica.Error.InvalidArgument"));

    const QDBusMessage nothing = call(QStringLiteral("MoveAll"), {QStringLiteral("3"), QStringLiteral("1"), QString()});
    ASSERT_EQ(nothing.type(), QDBusMessage::ReplyMessage) << nothing.errorMessage().toStdString();
    EXPECT_EQ(nothing.arguments().value(2).toString(), QStringLiteral("Moved 0 of 0 windows."));

    EXPECT_EQ(call(QStringLiteral("OpenPanel")).type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(VirtualDesktop::waitUntil([] { return panelIsVisible(); }, 10000));

    // The interface on the bus is the one kept in dbus/.
    const QDBusMessage introspection = bus.connection().call(QDBusMessage::createMethodCall(
        QStringLiteral("app.lattica.Lattica"), QStringLiteral("/app/lattica/Lattica"),
        QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect")));
    const QString live = introspection.arguments().value(0).toString();
    QFile kept(VirtualDesktop::sourcePath(QStringLiteral("dbus/app.lattica.Lattica1.xml")));
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    const QString xml = QString::fromUtf8(kept.readAll());
    const QRegularExpression methods(QStringLiteral("<method name=\"(\\w+)\""));
    QStringList keptMethods;
    for (auto it = methods.globalMatch(xml); it.hasNext();) {
        keptMethods.append(it.next().captured(1));
    }
    ASSERT_EQ(keptMethods.size(), 9);
    for (const QString& method : keptMethods) {
        EXPECT_TRUE(live.contains(QStringLiteral("<method name=\"%1\">").arg(method))) << method.toStdString();
    }

    EXPECT_EQ(call(QStringLiteral("Quit")).type(), QDBusMessage::ReplyMessage);
    ASSERT_TRUE(program.waitForFinished(10000));
    EXPECT_EQ(program.exitCode(), 0);
}

TEST_F(CommandLineDesktop, SwapExchangesTheWindowsOfTwoMonitorsOfDifferentSizesEachInItsRelativePlace) {
    TestClient client;
    ASSERT_TRUE(client.start());
    const QRect first = monitors[0];
    const QRect second = monitors[1];
    ASSERT_NE(first.size(), second.size());
    const quint32 a = client.open(
        QStringLiteral("a"),
        QStringLiteral("x=%1 y=%2 w=400 h=300").arg(first.x() + first.width() / 8).arg(first.y() + first.height() / 4));
    const quint32 b = client.open(QStringLiteral("b"), QStringLiteral("x=%1 y=%2 w=500 h=400")
                                                           .arg(second.x() + second.width() / 2)
                                                           .arg(second.y() + second.height() / 2));
    ASSERT_NE(a, 0u);
    ASSERT_NE(b, 0u);
    ASSERT_TRUE(VirtualDesktop::waitUntil([&] { return monitorOf(a) == 0 && monitorOf(b) == 1; }));
    const QPointF placeOfA = relativeCentre(a, first);
    const QPointF placeOfB = relativeCentre(b, second);

    const FinishedProcess run =
        lattica({QStringLiteral("swap"), QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("--keep-size")});
    EXPECT_EQ(run.status, 0) << run.errors.toStdString();
    // Run in this process, the mover's diagnostic lines come first.
    EXPECT_TRUE(run.output.endsWith(QStringLiteral("\nMoved 2 of 2 windows.\n"))) << run.output.toStdString();
    // The window manager confirms the moves in its own time.
    EXPECT_TRUE(VirtualDesktop::waitUntil([&] { return monitorOf(a) == 1 && monitorOf(b) == 0; }))
        << monitorOf(a) << " " << monitorOf(b);
    const QPointF nowA = relativeCentre(a, second);
    const QPointF nowB = relativeCentre(b, first);
    EXPECT_NEAR(nowA.x(), placeOfA.x(), 0.02);
    EXPECT_NEAR(nowA.y(), placeOfA.y(), 0.03);
    EXPECT_NEAR(nowB.x(), placeOfB.x(), 0.02);
    EXPECT_NEAR(nowB.y(), placeOfB.y(), 0.03);
}

TEST_F(CommandLineDesktop, PanelWithoutARunningInstanceSaysSo) {
    const FinishedProcess run = lattica({QStringLiteral("panel")});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.errors.contains(QStringLiteral("Lattica is not running."))) << run.errors.toStdString();
}

}  // namespace
