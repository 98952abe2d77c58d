#include "platform/x11/XdgDesktopLauncher.h"

#include <QDesktopServices>

bool XdgDesktopLauncher::openUrl(const QUrl& url) {
    if (!url.isValid()) {
        return false;
    }
    return QDesktopServices::openUrl(url);
}
