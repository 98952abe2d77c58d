// SPDX-License-Identifier: MIT
#include "platform/x11/X11SessionHelpPage.h"

#include <QDir>
#include <QSaveFile>
#include <QStandardPaths>

namespace {

constexpr const char* kHelpPage = R"(<!doctype html>
<html><head><meta charset="utf-8"><title>Lattica: what your session needs</title>
<style>body{font-family:sans-serif;max-width:40em;margin:3em auto;line-height:1.5}</style></head>
<body><h1>What Lattica needs from your session</h1>
<h2 id="window-control">Window control (moving windows)</h2>
<p>Lattica reads and moves windows through your window manager, which must follow the EWMH standard
(Openbox, Xfwm4, KWin, Mutter, IceWM, Fluxbox and most others do). If no such window manager is running, start one
and press <em>Re-check Permissions</em> in Lattica's permission guide.</p>
<h2 id="screen-capture">Screen capture (display previews)</h2>
<p>Lattica captures the previews of your monitors through the X server. Any X11 session allows this; there is
nothing to grant.</p>
<h2 id="wayland">Wayland sessions</h2>
<p>On a Wayland session Lattica runs through Xwayland. There it sees and moves only X11 applications; Wayland
applications are not listed and stay where they are. Xwayland cannot capture what your monitors show, so the panel
shows no previews. To use every feature, log out and choose an X11 (Xorg) session on the login screen.</p>
</body></html>
)";

}  // namespace

QByteArray X11SessionHelpPage::html() {
    return QByteArray(kHelpPage);
}

QString X11SessionHelpPage::standardDirectory() {
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation))
        .filePath(QStringLiteral("lattica"));
}

QUrl X11SessionHelpPage::write(const QString& directory, Capability capability, bool waylandSession) {
    if (!QDir().mkpath(directory)) {
        return {};
    }
    const QString path = QDir(directory).filePath(QStringLiteral("session-help.html"));
    QSaveFile page(path);
    if (!page.open(QIODevice::WriteOnly) || page.write(html()) < 0 || !page.commit()) {
        return {};
    }
    QUrl url = QUrl::fromLocalFile(path);
    if (waylandSession) {
        url.setFragment(QStringLiteral("wayland"));
    } else {
        url.setFragment(capability == Capability::WindowControl ? QStringLiteral("window-control")
                                                                : QStringLiteral("screen-capture"));
    }
    return url;
}
