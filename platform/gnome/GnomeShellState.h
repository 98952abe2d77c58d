// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <QList>
#include <QRectF>
#include <QString>
#include <optional>

// One monitor as the Shell extension reports it: the Shell's index and the rectangle windows are placed
// in (logical pixels, origin at the top-left corner of the layout).
struct GnomeShellMonitor {
    int index = 0;
    QRectF geometry;
    double scale = 1.0;
    bool primary = false;

    bool operator==(const GnomeShellMonitor&) const = default;
};

// Mutter's kinds of window, in its own numbering.
enum class GnomeWindowType { Normal = 0, Desktop = 1, Dock = 2, Dialog = 3, ModalDialog = 4, Utility = 7 };

// One window as the Shell extension reports it.
struct GnomeShellWindow {
    quint64 id = 0;
    pid_t pid = 0;
    QString title;
    QString wmClass;
    std::optional<QString> application;  // the name of the application the Shell matched it to
    std::optional<QString> desktopId;
    QRectF frame;
    int monitor = -1;
    int stackLayer = 2;  // Mutter's stack layer: 0 desktop, 1 below, 2 normal, 4 above and docks
    int type = 0;        // GnomeWindowType's numbering, and Mutter's others
    bool minimized = false;
    bool maximized = false;
    bool fullscreen = false;
    bool skipTaskbar = false;
    bool onCurrentWorkspace = true;
    double opacity = 1.0;
    bool wayland = true;  // a native Wayland client, else an Xwayland one

    bool operator==(const GnomeShellWindow&) const = default;
};

// What the extension answered to a change of a window.
struct GnomeChangeAnswer {
    enum class Outcome { Ok, Gone, Failure } outcome = Outcome::Failure;
    std::optional<GnomeShellWindow> window;  // the window after the change, when it went through
    QString error;
};

// Reads the extension's JSON answers; nothing when an answer is not what the extension sends.
namespace GnomeShellState {
std::optional<QList<GnomeShellMonitor>> parseMonitors(const QByteArray& json);
std::optional<QList<GnomeShellWindow>> parseWindows(const QByteArray& json);
GnomeChangeAnswer parseChange(const QByteArray& json);
}  // namespace GnomeShellState
