// SPDX-License-Identifier: MIT
#include "platform/gnome/GnomeOwnWindows.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QEvent>
#include <QWindow>

#include "platform/gnome/GnomeShellBridge.h"

GnomeOwnWindows::GnomeOwnWindows(GnomeShellBridge& bridge) : m_bridge(bridge) {
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->installEventFilter(this);
    }
}

GnomeOwnWindows::~GnomeOwnWindows() {
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->removeEventFilter(this);
    }
}

bool GnomeOwnWindows::activatedWhenShown(const QWindow& window) {
    return window.type() == Qt::Popup && window.transientParent() == nullptr;
}

bool GnomeOwnWindows::eventFilter(QObject* watched, QEvent* event) {
    // A window gets its Show event before the toolkit creates its surface: the Shell waits for it.
    if (event->type() == QEvent::Show && watched->isWindowType()) {
        const auto* window = static_cast<QWindow*>(watched);
        if (activatedWhenShown(*window)) {
            // The title the Shell sees: the toolkit gives an untitled window the application's name.
            const QString title = window->title().isEmpty() ? QCoreApplication::applicationName() : window->title();
            m_bridge.activateWhenShown(static_cast<quint32>(::getpid()), title);
        }
    }
    return QObject::eventFilter(watched, event);
}

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
