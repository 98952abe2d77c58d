// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <QList>
#include <QRectF>
#include <QString>
#include <optional>

// One window as the bridge script inside KWin describes it. Geometry is in KWin's global logical space.
struct KWinWindow {
    QString uuid;  // KWin's internal id; the bridge gives each one a number of its own
    pid_t pid = 0;
    QString resourceClass;
    QString resourceName;
    QString desktopFile;
    QString caption;
    QRectF frame;
    bool minimized = false;
    bool fullScreen = false;
    bool maximizedHorizontally = false;
    bool maximizedVertically = false;
    bool normal = false;
    bool dialog = false;
    bool utility = false;
    bool dock = false;
    bool desktopWindow = false;
    bool special = false;
    bool popup = false;
    bool skipTaskbar = false;
    bool skipSwitcher = false;  // left out of Alt+Tab
    bool keepAbove = false;
    bool managed = true;
    bool onCurrentDesktop = true;
    bool hidden = false;
    bool moveable = false;
    bool resizeable = false;
    bool transient = false;
    bool modal = false;
    double opacity = 1;
    int stacking = 0;  // higher is nearer the front
    int screen = -1;   // index into KWinState::screens
    bool x11 = false;  // an Xwayland window

    bool operator==(const KWinWindow&) const = default;
};

struct KWinScreen {
    QString name;  // empty where KWin's scripts do not tell it (Plasma 5.27)
    QRectF geometry;
    QRectF workArea;  // the geometry less the panels

    bool operator==(const KWinScreen&) const = default;
};

// The desktop as the bridge script last reported it.
struct KWinState {
    int api = 0;  // 5 for Plasma 5.27's scripting API, 6 for Plasma 6's
    QList<KWinScreen> screens;
    QList<KWinWindow> windows;  // in KWin's order; stacking says which is in front
    QString activeUuid;

    const KWinWindow* window(const QString& uuid) const;

    // The state in the script's JSON; nothing when the text is not such a state.
    static std::optional<KWinState> parse(const QByteArray& json);
};
