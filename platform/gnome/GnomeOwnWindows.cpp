// SPDX-License-Identifier: MIT
#include "platform/gnome/GnomeOwnWindows.h"

#include <unistd.h>

#include "platform/gnome/GnomeShellBridge.h"

void GnomeOwnWindows::bringToFront() {
    const pid_t self = ::getpid();
    quint64 newest = 0;
    // Mutter numbers windows in the order it manages them.
    for (const GnomeShellWindow& window : m_bridge.windows().value_or(QList<GnomeShellWindow>{})) {
        if (window.pid == self && !window.minimized && window.id > newest) {
            newest = window.id;
        }
    }
    if (newest != 0) {
        m_bridge.activate(newest);
    }
}
