// SPDX-License-Identifier: MIT
#include "platform/xdg/SessionBusAutoLaunch.h"

#include <sys/stat.h>

#include <QByteArray>
#include <QtGlobal>

namespace {

// Where a per-user session bus listens, the place the D-Bus library looks when the address is unset.
bool userBusSocketExists() {
    const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    if (runtime.isEmpty()) {
        return false;
    }
    const QByteArray socketPath = runtime + "/bus";
    struct stat info {};
    return ::stat(socketPath.constData(), &info) == 0 && S_ISSOCK(info.st_mode);
}

}  // namespace

bool SessionBusAutoLaunch::preventWhenNoBus() {
    if (!qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") || userBusSocketExists()) {
        return false;
    }
    // An address of an unknown kind fails at once, where an unset one means "start a bus".
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    return true;
}
