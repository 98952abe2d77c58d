#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QApplication>
#include <QSocketNotifier>
#include <QThreadPool>
#include <cstdio>

#include "BuildConfig.h"
#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/AppController.h"
#include "app/LatticaApp.h"
#include "app/ScreenSnapshotService.h"
#include "platform/x11/X11Platform.h"

namespace {

int g_signalPipe[2] = {-1, -1};

void onTerminationSignal(int) {
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(g_signalPipe[1], &byte, 1);
}

// SIGTERM and SIGINT end the program through the event loop, so that everything is torn down in order.
void quitOnTerminationSignals(QApplication& application) {
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

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        std::fputs("Lattica needs an X11 display: DISPLAY is not set. scripts/run.sh starts a virtual desktop.\n",
                   stderr);
        return 1;
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Lattica"));
    QApplication::setApplicationVersion(QString::fromLatin1(BuildConfig::kVersion));
    QApplication::setQuitOnLastWindowClosed(false);

    std::unique_ptr<X11Platform> platform = X11Platform::connect();
    if (!platform) {
        std::fputs("Lattica: cannot connect to the X server.\n", stderr);
        return 1;
    }
    platform->install();
    quitOnTerminationSignals(application);

    // The global shortcuts outlive the controller that attaches its handlers to them.
    KeyboardShortcuts::ActionShortcuts shortcuts;
    AppController controller(shortcuts);
    LatticaApp app(controller);
    app.start();
    // The windows of the desktop are read once in the background now, so that the first opening of the
    // panel only has to ask about what changed since.
    QThreadPool::globalInstance()->start([] { ScreenSnapshotService::qualifyingWindows(); });
    const int status = QApplication::exec();
    // Background reads use the platform's connections: let them end before the platform goes.
    QThreadPool::globalInstance()->waitForDone();
    return status;
}
