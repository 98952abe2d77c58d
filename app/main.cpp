#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QApplication>
#include <QDBusConnection>
#include <QSocketNotifier>
#include <QThreadPool>
#include <cstdio>
#include <cstdlib>

#include "BuildConfig.h"
#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/commands/CommandClient.h"
#include "app/commands/CommandLine.h"
#include "app/commands/CommandService.h"
#include "app/commands/LatticaBusService.h"
#include "app/commands/SingleInstance.h"
#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "app/ui/LatticaApp.h"
#include "app/ui/WindowPresenter.h"
#include "app/update/Updater.h"
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

int printed(const CommandLine::Printed& output) {
    std::fputs(output.standardOutput.toLocal8Bit().constData(), stdout);
    std::fputs(output.standardError.toLocal8Bit().constData(), stderr);
    return output.exitStatus;
}

// One command, by the running instance when there is one, else here.
int runCommand(int argc, char** argv, const CommandLine::Request& request) {
    SessionBusAutoLaunch::preventWhenNoBus();
    QCoreApplication application(argc, argv);
    const auto [method, arguments] = CommandLine::busCall(request);
    if (std::optional<CommandResult> answer = CommandClient::call(method, arguments)) {
        return printed(CommandLine::print(request, *answer));
    }
    if (request.command == QLatin1String("panel") || request.command == QLatin1String("settings") ||
        request.command == QLatin1String("quit")) {
        CommandResult notRunning = CommandResult::moves(0, 0, QStringLiteral("Lattica is not running."));
        return printed(CommandLine::print(request, notRunning));
    }
    if (!displayIsUsable()) {
        return 3;
    }
    std::unique_ptr<X11Platform> platform = X11Platform::connect();
    if (!platform) {
        std::fputs("Lattica: cannot connect to the X server.\n", stderr);
        return 3;
    }
    platform->install();
    const Preferences preferences(*platform->services().settings);
    const CommandService commands(preferences);
    CommandResult result;
    if (request.command == QLatin1String("displays")) {
        result = commands.displays();
    } else if (request.command == QLatin1String("windows")) {
        result = commands.windows();
    } else if (request.command == QLatin1String("move-focused")) {
        result = commands.moveFocused(request.to, request.size);
    } else if (request.command == QLatin1String("move-all")) {
        result = commands.moveAll(request.from, request.to, request.size);
    } else {
        result = commands.moveApplication(request.application, request.to, request.size);
    }
    return printed(CommandLine::print(request, result));
}

// The tray program; a second launch asks the first to open its panel instead.
int runProgram(int argc, char** argv) {
    if (!displayIsUsable()) {
        return 1;
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    SessionBusAutoLaunch::preventWhenNoBus();
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Lattica"));
    QApplication::setApplicationVersion(QString::fromLatin1(BuildConfig::kVersion));
    QApplication::setQuitOnLastWindowClosed(false);

    SingleInstance instance;
    if (instance.claim() == SingleInstance::Claim::AnotherIsRunning) {
        if (CommandClient::call(QStringLiteral("OpenPanel"), {})) {
            std::fputs("Lattica is already running; its panel is open.\n", stdout);
        } else {
            std::fputs("Lattica is already running.\n", stdout);
        }
        return 0;
    }

    std::unique_ptr<X11Platform> platform = X11Platform::connect();
    if (!platform) {
        std::fputs("Lattica: cannot connect to the X server.\n", stderr);
        return 1;
    }
    platform->install();
    quitOnTerminationSignals(application);
    g_display = &platform->connection();
    std::atexit(reportLostDisplay);

    // The global shortcuts outlive the controller that attaches its handlers to them.
    KeyboardShortcuts::ActionShortcuts shortcuts;
    Updater updater;
    AppController controller(shortcuts, updater);
    WindowPresenter windows(controller, &updater);
    LatticaApp app(controller, windows, platform->services().trayHost);
    const CommandService commands(controller.preferences());
    LatticaBusService bus(commands, {[&app] { app.openPanel(); }, [&windows] { windows.showSettingsWindow(); },
                                     [] { QCoreApplication::quit(); }});
    if (instance.ownsBusName()) {
        QDBusConnection::sessionBus().registerObject(LatticaBusService::objectPath, &bus,
                                                     QDBusConnection::ExportScriptableSlots);
    }
    app.start();
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
            std::fputs(CommandLine::helpText().toLocal8Bit().constData(), stdout);
            return 0;
        }
        case CommandLine::Request::Kind::Version:
            std::fputs(request.output.toLocal8Bit().constData(), stdout);
            return 0;
        case CommandLine::Request::Kind::BadArguments:
            std::fputs(request.output.toLocal8Bit().constData(), stderr);
            return 2;
        case CommandLine::Request::Kind::Command:
            return runCommand(argc, argv, request);
        case CommandLine::Request::Kind::StartProgram:
            break;
    }
    return runProgram(argc, argv);
}
