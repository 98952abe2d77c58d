// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinOwnWindows.h"

#include <unistd.h>

#include <QJsonObject>

#include "platform/kwin/KWinBridge.h"

void KWinOwnWindows::setShownInTaskbar(bool shown) {
    m_shown = shown;
    m_bridge.command({{QStringLiteral("op"), QStringLiteral("ownWindows")},
                      {QStringLiteral("pid"), static_cast<int>(::getpid())},
                      {QStringLiteral("skipTaskbar"), !shown}});
}

void KWinOwnWindows::bringToFront() {
    QJsonObject command{{QStringLiteral("op"), QStringLiteral("ownWindows")},
                        {QStringLiteral("pid"), static_cast<int>(::getpid())},
                        {QStringLiteral("activate"), true}};
    if (!m_shown) {
        command.insert(QStringLiteral("skipTaskbar"), true);
    }
    m_bridge.command(command);
}
