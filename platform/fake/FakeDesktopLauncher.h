// SPDX-License-Identifier: MIT
#pragma once

#include <QList>

#include "platform/DesktopLauncher.h"

// Records every URL handed to the desktop.
class FakeDesktopLauncher : public DesktopLauncher {
public:
    QList<QUrl> openedURLs;
    bool openSucceeds = true;

    bool openUrl(const QUrl& url) override {
        openedURLs.append(url);
        return openSucceeds;
    }
};
