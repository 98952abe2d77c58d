// SPDX-License-Identifier: MIT
#pragma once

#include "platform/DesktopLauncher.h"

// Opens addresses through the freedesktop handlers (xdg-open and the desktop's own portal or tools), as
// Qt's desktop services find them.
class XdgDesktopLauncher : public DesktopLauncher {
public:
    bool openUrl(const QUrl& url) override;
};
