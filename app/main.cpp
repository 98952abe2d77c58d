// SPDX-License-Identifier: MIT
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QSocketNotifier>
#include <QThreadPool>
#include <cstdio>
#include <cstdlib>

#include "BuildConfig.h"
#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/commands/CommandClient.h"
#include "app/commands/CommandLine.h"
#include "app/commands/CommandService.h"
#include "app/commands/CommandTable.h"
#include "app/commands/LatticaBusService.h"
#include "app/commands/MoveShortcuts.h"
#include "app/commands/SingleInstance.h"
#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "app/ui/LatticaApp.h"
#include "app/ui/WindowPresenter.h"
#include "app/ui/common/Translations.h"
#include "app/update/Updater.h"
#include "platform/BackendChoice.h"
#include "platform/gnome/GnomePlatform.h"
#include "platform/kwin/KWinPlatform.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11DisplayProbe.h"
#include "platform/x11/X11Platform.h"
#include "platform/xdg/SessionBusAutoLaunch.h"

namespace {

int g_signalPipe[2] = {-1, -1};

void onTerminationSignal(int) {
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(g_signalPipe[1], &byte, 1);
}

// SIGTERM and SIGINT end the program through the event loop, so that everything is torn down in order.
void quitOnTerminationSignals(QCoreApplication& application) {
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, g_signalPipe) != 0) {
        return;
    }
    auto* notifier = new QSocketNotifier(g_signalPipe[0], QSocketNotifier::Read, &application);
    QObject::connect(notifier, &QSocketNotifier::activated, &application, [] {
        char byte = 0;
        [[maybe_unused]] const ssize_t read = ::read(g_signalPipe[0], &byte, 1);
        QCoreApplication::quit();
    });
    struct sigaction action {};
    action.sa_handler = onTerminationSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
}

// The running program's display connection, while there is one. The toolkit ends the program with exit(1)
// when its own connection to the display breaks; this says why in the program's words, and ends it at
// once: the preferences are written at every change, so nothing is left to save, and the teardown of a
// program whose display is gone could only fail.
const X11Connection* g_display = nullptr;

void reportLostDisplay() {
    if (g_display == nullptr) {
        return;
    }
    xcb_connection_t* connection = g_display->xcb();
    // A round trip tells a dead server from a live one even when nothing has been read since it went.
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    if (xcb_connection_has_error(connection) != 0) {
        std::fprintf(stderr, "Lattica: the connection to the X display %s was lost; Lattica ends.\n",
                     g_display->displayName().constData());
        std::fflush(stdout);
        std::fflush(stderr);
        ::_exit(1);
    }
}

// How long the display server may take to accept the connection before start-up gives up.
constexpr int kDisplayAnswerTimeoutMs = 5000;

// The toolkit aborts when it cannot open its display, and hangs on one that never answers: the display
// is checked first, so that the program can end with a message instead.
bool displayIsUsable() {
    const QByteArray name = qgetenv("DISPLAY");
    if (name.isEmpty()) {
        std::fputs("Lattica needs an X11 display: DISPLAY is not set. scripts/run.sh starts a virtual desktop.\n",
                   stderr);
        return false;
    }
    if (const std::optional<QString> problem = X11DisplayProbe::problem(name, kDisplayAnswerTimeoutMs)) {
        QByteArray shown = name;  // kept on one line whatever the variable holds
        for (char& byte : shown) {
            if (static_cast<unsigned char>(byte) < 0x20 || byte == 0x7f) {
                byte = '?';
            }
        }
        std::fprintf(stderr, "Lattica: cannot open the X display \"%s\": %s.\n", shown.constData(),
                     qPrintable(*problem));
        return false;
    }
    return true;
}

// Whether a name is owned on the session bus. Asked before the toolkit starts, on a connection that is
// closed again at once.
bool nameOnSessionBus(const QString& name) {
    const QString connectionName = QStringLiteral("lattica-backend-choice");
    bool owned = false;
    {
        const QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName);
        owned = bus.isConnected() && bus.interface()->isServiceRegistered(name);
    }
    QDBusConnection::disconnectFromBus(connectionName);
    return owned;
}

// The backend for the session the program starts in; LATTICA_BACKEND forces one.
BackendChoice chooseBackend() {
    BackendSignals session;
    session.sessionType = qEnvironmentVariable("XDG_SESSION_TYPE");
    session.waylandDisplay = !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    session.x11Display = !qEnvironmentVariableIsEmpty("DISPLAY");
    session.forced = qEnvironmentVariable("LATTICA_BACKEND");
    if (BackendChooser::isWayland(session) && session.forced.isEmpty()) {
        session.kwinOnBus = nameOnSessionBus(QStringLiteral("org.kde.KWin"));
        session.gnomeShellOnBus = !session.kwinOnBus && nameOnSessionBus(QStringLiteral("org.gnome.Shell"));
    }
    const BackendChoice choice = BackendChooser::choose(session);
    if (!choice.note.isEmpty()) {
        std::fprintf(stderr, "Lattica: %s\n", qPrintable(choice.note));
    }
    return choice;
}

// The services of the chosen backend, once connected.
struct StartedPlatform {
    std::unique_ptr<X11Platform> x11;
    std::unique_ptr<KWinPlatform> kwin;
    std::unique_ptr<GnomePlatform> gnome;

    const PlatformServices& services() const {
        return x11 ? x11->services() : kwin ? kwin->services() : gnome->services();
    }
    void install() { x11 ? x11->install() : kwin ? kwin->install() : gnome->install(); }
};

// Whether the backend can start before the toolkit does; says why not on standard error.
bool backendCanStart(const BackendChoice& choice) {
    switch (choice.backend) {
        case Backend::KWin:
        case Backend::Gnome:
            return true;
        case Backend::X11:
        case Backend::Xwayland:
        case Backend::None:
            break;
    }
    return displayIsUsable();
}

// Connects the chosen backend once the toolkit runs; nothing, with the reason on standard error, when it
// cannot.
std::optional<StartedPlatform> startPlatform(const BackendChoice& choice) {
    StartedPlatform started;
    if (choice.backend == Backend::KWin) {
        QString problem;
        started.kwin = KWinPlatform::connect(&problem);
        if (!started.kwin) {
            std::fprintf(stderr, "Lattica: cannot reach KWin: %s.\n", qPrintable(problem));
            return std::nullopt;
        }
        return started;
    }
    if (choice.backend == Backend::Gnome) {
        QString problem;
        started.gnome = GnomePlatform::connect(&problem);
        if (!started.gnome) {
            std::fprintf(stderr, "Lattica: cannot reach GNOME Shell: %s.\n", qPrintable(problem));
            return std::nullopt;
        }
        return started;
    }
    started.x11 = X11Platform::connect();
    if (!started.x11) {
        std::fputs("Lattica: cannot connect to the X server.\n", stderr);
        return std::nullopt;
    }
    return started;
}

void printLine(const QString& line) {
    std::fputs(qPrintable(line + QLatin1Char('\n')), stdout);
}

int printed(const CommandLine::Printed& output) {
    std::fputs(output.standardOutput.toLocal8Bit().constData(), stdout);
    std::fputs(output.standardError.toLocal8Bit().constData(), stderr);
    return output.exitStatus;
}

// One command, by the running instance when there is one, else here.
int runCommand(int argc, char** argv, const CommandLine::Request& request) {
    SessionBusAutoLaunch::preventWhenNoBus();
    QCoreApplication application(argc, argv);
    Translations::install();
    const auto [method, arguments] = CommandLine::busCall(request);
    if (std::optional<CommandResult> answer = CommandClient::call(method, arguments)) {
        return printed(CommandLine::print(request, *answer));
    }
    const CommandTable::Command* command = CommandTable::withWord(request.command);
    if (!command || !command->run) {
        CommandResult notRunning =
            CommandResult::moves(0, 0, QCoreApplication::translate("main", "Lattica is not running."));
        return printed(CommandLine::print(request, notRunning));
    }
    const BackendChoice backend = chooseBackend();
    if (!backendCanStart(backend)) {
        return 3;
    }
    std::optional<StartedPlatform> platform = startPlatform(backend);
    if (!platform) {
        return 3;
    }
    platform->install();
    const Preferences preferences(*platform->services().settings);
    const CommandService commands(preferences);
    const CommandResult result = command->run(commands, request);
    return printed(CommandLine::print(request, result));
}

// The tray program; a second launch asks the first to open its panel instead.
int runProgram(int argc, char** argv) {
    SessionBusAutoLaunch::preventWhenNoBus();
    const BackendChoice backend = chooseBackend();
    if (!backendCanStart(backend)) {
        return 1;
    }
    // Through KWin and GNOME Shell the program is a native Wayland client; X11 backends draw through the X
    // server they move windows on.
    if (backend.backend != Backend::KWin && backend.backend != Backend::Gnome) {
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Lattica"));
    QApplication::setApplicationVersion(QString::fromLatin1(BuildConfig::kVersion));
    Translations::install();
    // Ties the windows to the installed desktop entry (its name and icon in taskbars and switchers).
    QGuiApplication::setDesktopFileName(QStringLiteral("app.lattica.Lattica"));
    QApplication::setWindowIcon(LatticaApp::programIcon());
    QApplication::setQuitOnLastWindowClosed(false);

    SingleInstance instance;
    if (instance.claim() == SingleInstance::Claim::AnotherIsRunning) {
        if (CommandClient::call(QStringLiteral("OpenPanel"), {})) {
            printLine(QCoreApplication::translate("main", "Lattica is already running; its panel is open."));
        } else {
            printLine(QCoreApplication::translate("main", "Lattica is already running."));
        }
        return 0;
    }

    std::optional<StartedPlatform> platform = startPlatform(backend);
    if (!platform) {
        return 1;
    }
    platform->install();
    quitOnTerminationSignals(application);
    // On KWin and GNOME Shell the toolkit speaks Wayland; a lost compositor is the bridge's to report.
    g_display = platform->x11 ? &platform->x11->connection() : nullptr;
    std::atexit(reportLostDisplay);

    // The global shortcuts outlive the controller that attaches its handlers to them.
    KeyboardShortcuts::ActionShortcuts shortcuts;
    // Builds for distributions that update by package leave the update check out.
    std::unique_ptr<Updater> updater = BuildConfig::kUpdateCheck ? std::make_unique<Updater>() : nullptr;
    AppController controller(shortcuts, updater.get());
    WindowPresenter windows(controller, updater.get());
    LatticaApp app(controller, windows, platform->services().trayHost);
    const CommandService commands(controller.preferences());
    LatticaBusService bus(commands, {[&app] { app.openPanel(); }, [&windows] { windows.showSettingsWindow(); },
                                     [] { QCoreApplication::quit(); }});
    if (instance.ownsBusName()) {
        bus.exportOn(QDBusConnection::sessionBus());
    }
    // The moves' own shortcuts; their status shows in the panel like every other move's.
    MoveShortcuts moveShortcuts(shortcuts, commands, [&app] { app.openPanel(); });
    QObject::connect(&moveShortcuts, &MoveShortcuts::moveFinished, &controller,
                     [&controller](const CommandResult& result) { controller.setStatusMessage(result.message); });
    QObject::connect(&controller, &AppController::connectedShortcutDisplaysChanged, &moveShortcuts,
                     [&] { moveShortcuts.refresh(controller.connectedShortcutDisplays()); });
    moveShortcuts.refresh(controller.connectedShortcutDisplays());
    app.start();
    // The background thread waits for the next capture instead of ending after half a minute without work:
    // its end would wake the program while nothing changes.
    QThreadPool::globalInstance()->setExpiryTimeout(-1);
    // The windows of the desktop are read once in the background now, so that the first opening of the
    // panel only has to ask about what changed since.
    QThreadPool::globalInstance()->start([] { ScreenSnapshotService::qualifyingWindows(); });
    const int status = QApplication::exec();
    // Background reads use the platform's connections: let them end before the platform goes.
    QThreadPool::globalInstance()->waitForDone();
    g_display = nullptr;
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }
    const CommandLine::Request request = CommandLine::parse(arguments);
    switch (request.kind) {
        case CommandLine::Request::Kind::Help: {
            const QCoreApplication application(argc, argv);
            Translations::install();
            std::fputs(CommandLine::helpText().toLocal8Bit().constData(), stdout);
            return 0;
        }
        case CommandLine::Request::Kind::Version:
            std::fputs(request.output.toLocal8Bit().constData(), stdout);
            return 0;
        case CommandLine::Request::Kind::BadArguments: {
            // Parsed again once the translations are in, so that the message is in the user's language.
            const QCoreApplication application(argc, argv);
            Translations::install();
            std::fputs(CommandLine::parse(arguments).output.toLocal8Bit().constData(), stderr);
            return 2;
        }
        case CommandLine::Request::Kind::Command:
            return runCommand(argc, argv, request);
        case CommandLine::Request::Kind::StartProgram:
            break;
    }
    return runProgram(argc, argv);
}
