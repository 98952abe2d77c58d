// SPDX-License-Identifier: MIT
#include "platform/xdg/XdgDesktopLauncher.h"

#include <QDesktopServices>

bool XdgDesktopLauncher::openUrl(const QUrl& url) {
    if (!url.isValid()) {
        return false;
    }
    return QDesktopServices::openUrl(url);
}
