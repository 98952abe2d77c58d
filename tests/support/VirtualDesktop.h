// SPDX-License-Identifier: MIT
#pragma once

#include <QProcessEnvironment>
#include <QRect>
#include <QString>
#include <QStringList>
#include <functional>

// Helpers for tests that run on the virtual desktop (see scripts/virtual-desktop.sh).
namespace VirtualDesktop {

// The monitors the desktop was started with, left to right, in root coordinates.
QList<QRect> layout();
// Monitors of the sizes given as "WxH,WxH,...", side by side from the origin, their tops aligned: how the
// virtual desktops and sessions arrange them.
QList<QRect> sideBySide(const QString& sizes);
// The geometry argument of `xrandr --setmonitor` for a monitor rectangle (at about 96 dots per inch).
QString monitorGeometry(const QRect& rect);
// Runs a command to its end and returns its exit status; its output goes to the test log.
int run(const QString& program, const QStringList& arguments, int timeoutMs = 10000);
// Runs a command and returns its standard output.
QString output(const QString& program, const QStringList& arguments, int timeoutMs = 10000);
// Spins the Qt event loop until the predicate holds or the time limit passes.
bool waitUntil(const std::function<bool()>& predicate, int timeoutMs = 5000);
// The environment for running the real program in a test: the test's own environment, a configuration
// folder of its own, and an update feed on a closed port of this machine, so that the check at launch
// ends at once without the network.
QProcessEnvironment programEnvironment(const QString& configDirectory);
// The same for a program that keeps one instance per session, on an X desktop: a runtime folder of its own
// (where the lock of the running instance lies) and no session bus, so that tests running at the same
// time never find each other's instance running.
QProcessEnvironment soleInstanceEnvironment(const QString& configDirectory, const QString& runtimeDirectory);
// Path of a file in the source tree.
QString sourcePath(const QString& relative);

}  // namespace VirtualDesktop
