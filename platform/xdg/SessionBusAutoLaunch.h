// SPDX-License-Identifier: MIT
#pragma once

// Without a session bus, the D-Bus library starts one of its own on first use (an "autolaunch"): the
// toolkit's first look for a tray watcher, a theme or accessibility then waits seconds for it, and the
// bus daemon stays behind after the program ends.
namespace SessionBusAutoLaunch {

// When no session bus is announced (DBUS_SESSION_BUS_ADDRESS empty and no socket at
// $XDG_RUNTIME_DIR/bus), points the address at one that can never be reached, so that nothing is
// started. Call before the toolkit starts. True when it did so.
bool preventWhenNoBus();

}  // namespace SessionBusAutoLaunch
