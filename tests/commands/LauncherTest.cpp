// SPDX-License-Identifier: MIT
// The `lattica` launcher against a stand-in for the running instance on a session bus of the test's own:
// it answers moves itself without loading the toolkit, prints what the program prints for the same answer,
// and leaves everything else to the program.
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include "tests/support/PrivateSessionBus.h"

namespace {

const QString kLauncher = QStringLiteral(LATTICA_LAUNCHER_BINARY);
const QString kProgram = QStringLiteral(LATTICA_PROGRAM_BINARY);

// Stands in for the running instance: answers every call of its object as told, and notes which Qt
// libraries the caller had loaded while it waited for the answer.
class StandInInstance : public QDBusVirtualObject {
public:
    std::function<QDBusMessage(const QDBusMessage&)> answer;
    QStringList methods;
    QList<QVariantList> arguments;
    // For each call: the caller's memory map could be read, and the Qt libraries in it.
    QList<bool> callerMapRead;
    QList<QStringList> callerQtLibraries;

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        methods.append(message.member());
        arguments.append(message.arguments());
        const uint pid = connection.interface()->servicePid(message.service()).value();
        QFile maps(QStringLiteral("/proc/%1/maps").arg(pid));
        const bool read = pid != 0 && maps.open(QIODevice::ReadOnly);
        QStringList qt;
        for (const QByteArray& line : read ? maps.readAll().split('\n') : QList<QByteArray>{}) {
            const qsizetype at = line.indexOf("libQt6");
            if (at >= 0) {
                const QString library = QString::fromUtf8(line.mid(at));
                if (!qt.contains(library)) {
                    qt.append(library);
                }
            }
        }
        callerMapRead.append(read);
        callerQtLibraries.append(qt);
        connection.send(answer(message));
        return true;
    }
};

struct Outcome {
    int status = -1;
    QByteArray out;
    QByteArray err;

    bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    return stream << "status " << outcome.status << ", out \"" << outcome.out.toStdString() << "\", err \""
                  << outcome.err.toStdString() << "\"";
}

class Launcher : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_FALSE(bus.address().isEmpty()) << "dbus-daemon did not start";
        ASSERT_TRUE(home.isValid() && runtime.isValid());
        environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime.path());
        environment.insert(QStringLiteral("HOME"), home.path());
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path() + QStringLiteral("/config"));
        environment.remove(QStringLiteral("LATTICA_LAUNCHER"));
        // What the commands print is compared; Qt's own warnings, which the program's bus connection
        // sometimes writes as it ends, are not part of it.
        environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("default.warning=false"));
    }
    void TearDown() override {
        if (registered) {
            QDBusConnection connection = bus.connection();
            connection.unregisterObject(QStringLiteral("/app/lattica/Lattica"));
            connection.unregisterService(QStringLiteral("app.lattica.Lattica"));
        }
    }

    // Puts the stand-in on the bus under the instance's name.
    bool startStandIn() {
        QDBusConnection connection = bus.connection();
        registered = connection.isConnected() &&
                     connection.registerVirtualObject(QStringLiteral("/app/lattica/Lattica"), &instance) &&
                     connection.registerService(QStringLiteral("app.lattica.Lattica"));
        return registered;
    }

    // Runs a binary to its end while the stand-in answers.
    Outcome run(const QString& binary, const QStringList& words) {
        QProcess process;
        process.setProcessEnvironment(environment);
        QEventLoop loop;
        QObject::connect(&process, &QProcess::finished, &loop, &QEventLoop::quit);
        QObject::connect(&process, &QProcess::errorOccurred, &loop, &QEventLoop::quit);
        QTimer::singleShot(30000, &loop, &QEventLoop::quit);
        process.start(binary, words);
        loop.exec();
        Outcome outcome;
        if (process.state() == QProcess::NotRunning && process.exitStatus() == QProcess::NormalExit) {
            outcome.status = process.exitCode();
        } else {
            process.kill();
            process.waitForFinished(5000);
        }
        outcome.out = process.readAllStandardOutput();
        outcome.err = process.readAllStandardError();
        return outcome;
    }

    PrivateSessionBus bus;
    QTemporaryDir home;
    QTemporaryDir runtime;
    QProcessEnvironment environment;
    StandInInstance instance;
    bool registered = false;
};

QDBusMessage moves(const QDBusMessage& call, int moved, int attempted, const QString& status) {
    return call.createReply({moved, attempted, status});
}

TEST_F(Launcher, LinksNeitherTheToolkitNorItsWidgets) {
    QProcess ldd;
    ldd.start(QStringLiteral("ldd"), {kLauncher});
    ASSERT_TRUE(ldd.waitForFinished(30000));
    const QString libraries = QString::fromUtf8(ldd.readAllStandardOutput());
    EXPECT_TRUE(libraries.contains(QStringLiteral("libdbus-1"))) << libraries.toStdString();
    EXPECT_FALSE(libraries.contains(QStringLiteral("libQt6"))) << libraries.toStdString();
}

TEST_F(Launcher, AMoveIsAskedOfTheInstanceWithoutLoadingTheToolkit) {
    ASSERT_TRUE(startStandIn());
    instance.answer = [](const QDBusMessage& call) {
        return moves(call, 1, 1, QStringLiteral("Moved 1 of 1 windows."));
    };
    const Outcome outcome =
        run(kLauncher, {QStringLiteral("move-focused"), QStringLiteral("--to"), QStringLiteral("next")});
    EXPECT_EQ(outcome, (Outcome{0, "Moved 1 of 1 windows.\n", ""}));
    ASSERT_EQ(instance.methods, QStringList{QStringLiteral("MoveFocused")});
    EXPECT_EQ(instance.arguments.value(0), (QVariantList{QStringLiteral("next"), QString()}));
    ASSERT_TRUE(instance.callerMapRead.value(0));
    EXPECT_EQ(instance.callerQtLibraries.value(0), QStringList())
        << instance.callerQtLibraries.value(0).join(u' ').toStdString();
}

// The same answers, printed by the launcher and by the program: byte for byte the same, with the same
// exit status; the program's own call shows it is a different process (one with the toolkit).
TEST_F(Launcher, PrintsWhatTheProgramPrintsForEveryKindOfAnswer) {
    ASSERT_TRUE(startStandIn());
    struct Case {
        QStringList words;
        std::function<QDBusMessage(const QDBusMessage&)> answer;
        int status;
    };
    const QList<Case> cases = {
        {{QStringLiteral("move-focused"), QStringLiteral("--to"), QStringLiteral("next")},
         [](const QDBusMessage& call) { return moves(call, 1, 1, QStringLiteral("Moved 1 of 1 windows.")); },
         0},
        {{QStringLiteral("move-all"), QStringLiteral("--from"), QStringLiteral("1"), QStringLiteral("--to=2")},
         [](const QDBusMessage& call) { return moves(call, 0, 0, QStringLiteral("No windows to move.")); },
         1},
        {{QStringLiteral("swap"), QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("--keep-size")},
         [](const QDBusMessage& call) { return moves(call, 1, 2, QStringLiteral("Moved 1 of 2 windows.")); },
         1},
        {{QStringLiteral("move-app"), QStringLiteral("Editor"), QStringLiteral("--to"), QStringLiteral("9")},
         [](const QDBusMessage& call) {
             return call.createErrorReply(QStringLiteral("app.lattica.Error.NoSuchMonitor"),
                                          QStringLiteral("There is no monitor 9 — über."));
         },
         2},
        {{QStringLiteral("move-focused"), QStringLiteral("--to"), QStringLiteral("left")},
         [](const QDBusMessage& call) {
             return call.createErrorReply(QStringLiteral("app.lattica.Error.NotAvailable"),
                                          QStringLiteral("The session does not allow it."));
         },
         3},
        {{QStringLiteral("move-focused"), QStringLiteral("--to"), QStringLiteral("right")},
         [](const QDBusMessage& call) {
             return call.createErrorReply(QStringLiteral("app.lattica.Error.Failed"), QStringLiteral("It broke."));
         },
         1},
        {{QStringLiteral("move-focused"), QStringLiteral("--to"), QStringLiteral("next"), QStringLiteral("--json")},
         [](const QDBusMessage& call) {
             return moves(call, 1, 1, QStringLiteral("Moved \"1\" of 1 \\ windows\tto\nüber\x01."));
         },
         0},
        {{QStringLiteral("--json"), QStringLiteral("move-all"), QStringLiteral("--from=1"), QStringLiteral("--to=2")},
         [](const QDBusMessage& call) { return moves(call, 0, 3, QStringLiteral("Moved 0 of 3 windows.")); },
         1},
        {{QStringLiteral("swap"), QStringLiteral("1"), QStringLiteral("7"), QStringLiteral("--json")},
         [](const QDBusMessage& call) {
             return call.createErrorReply(QStringLiteral("app.lattica.Error.NoSuchMonitor"),
                                          QStringLiteral("There is no monitor \"7\"."));
         },
         2},
        {{QStringLiteral("settings"), QStringLiteral("--json")},
         [](const QDBusMessage& call) { return call.createReply(); },
         0},
        {{QStringLiteral("panel")}, [](const QDBusMessage& call) { return call.createReply(); }, 0},
        {{QStringLiteral("quit")}, [](const QDBusMessage& call) { return call.createReply(); }, 0},
    };
    for (const Case& example : cases) {
        const std::string shown = example.words.join(u' ').toStdString();
        instance.answer = example.answer;
        const qsizetype before = instance.methods.size();
        const Outcome launcher = run(kLauncher, example.words);
        const Outcome program = run(kProgram, example.words);
        EXPECT_EQ(launcher.status, example.status) << shown << ": " << launcher;
        EXPECT_EQ(launcher, program) << shown;
        ASSERT_EQ(instance.methods.size(), before + 2) << shown;
        EXPECT_EQ(instance.arguments[before], instance.arguments[before + 1]) << shown;
        EXPECT_TRUE(instance.callerQtLibraries[before].isEmpty()) << shown;
        EXPECT_FALSE(instance.callerQtLibraries[before + 1].isEmpty()) << shown;
    }
}

TEST_F(Launcher, WithNoInstanceTheProgramRunsTheCommandAsItWould) {
    // Nobody owns the name on the bus.
    const Outcome panel = run(kLauncher, {QStringLiteral("panel")});
    EXPECT_EQ(panel.status, 1);
    EXPECT_TRUE(panel.err.contains("Lattica is not running.")) << panel;
    EXPECT_EQ(panel, run(kProgram, {QStringLiteral("panel")}));

    // No display either: the program, now doing the move in its own process, says so.
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    const QStringList move{QStringLiteral("move-focused"), QStringLiteral("--to"), QStringLiteral("next")};
    const Outcome launcher = run(kLauncher, move);
    EXPECT_EQ(launcher.status, 3) << launcher;
    EXPECT_TRUE(launcher.err.contains("DISPLAY is not set")) << launcher;
    EXPECT_EQ(launcher, run(kProgram, move));

    // No session bus at all.
    environment.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
    const Outcome withoutBus = run(kLauncher, {QStringLiteral("panel")});
    EXPECT_EQ(withoutBus.status, 1) << withoutBus;
    EXPECT_EQ(withoutBus, run(kProgram, {QStringLiteral("panel")}));
    EXPECT_TRUE(instance.methods.isEmpty());
}

TEST_F(Launcher, VersionHelpAndMistakesAreTheProgramsOwn) {
    ASSERT_TRUE(startStandIn());
    instance.answer = [](const QDBusMessage& call) { return call.createReply(); };
    const Outcome version = run(kLauncher, {QStringLiteral("--version")});
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(version.out.startsWith("Lattica ")) << version;
    EXPECT_EQ(version, run(kProgram, {QStringLiteral("--version")}));

    for (const QStringList& words : QList<QStringList>{{QStringLiteral("move-focused")},
                                                       {QStringLiteral("move-focused"), QStringLiteral("--to")},
                                                       {QStringLiteral("nonsense")},
                                                       {QStringLiteral("--unknown")}}) {
        const Outcome launcher = run(kLauncher, words);
        EXPECT_EQ(launcher.status, 2) << words.join(u' ').toStdString() << ": " << launcher;
        EXPECT_EQ(launcher, run(kProgram, words)) << words.join(u' ').toStdString();
    }

    // The usage line names the binary that was started; the rest is the program's text.
    Outcome help = run(kLauncher, {QStringLiteral("--help")});
    Outcome programHelp = run(kProgram, {QStringLiteral("--help")});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.contains("move-focused --to TARGET")) << help;
    EXPECT_TRUE(help.out.contains(kLauncher.toUtf8())) << help;
    help.out.replace(kLauncher.toUtf8(), "BINARY");
    programHelp.out.replace(kProgram.toUtf8(), "BINARY");
    EXPECT_EQ(help, programHelp);
    EXPECT_TRUE(instance.methods.isEmpty());
}

}  // namespace
