// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QUrl>

#include "platform/SessionCheck.h"

// The local page that explains what Lattica needs from an X11 session, and what a Wayland session
// allows through Xwayland. A browser opens it from a file.
namespace X11SessionHelpPage {

// The page's HTML; its sections carry the ids "window-control", "screen-capture" and "wayland".
QByteArray html();
// Where the page is written: the user's cache directory.
QString standardDirectory();
// Writes the page into the directory and returns its address, pointing at the section about the
// capability (the Wayland section on a Wayland session); an empty URL when it cannot be written.
QUrl write(const QString& directory, Capability capability, bool waylandSession);

}  // namespace X11SessionHelpPage
