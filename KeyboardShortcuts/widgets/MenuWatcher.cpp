// SPDX-License-Identifier: MIT
#include "KeyboardShortcuts/widgets/MenuWatcher.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>

#include "KeyboardShortcuts/ActionShortcuts.h"

namespace KeyboardShortcuts {

MenuWatcher::MenuWatcher(ActionShortcuts& shortcuts) : m_shortcuts(shortcuts) {
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->installEventFilter(this);
    }
}

MenuWatcher::~MenuWatcher() {
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->removeEventFilter(this);
    }
}

bool MenuWatcher::isAnyMenuOpen() const {
    for (const QPointer<QWidget>& popup : m_openPopups) {
        if (popup && popup->isVisible()) {
            return true;
        }
    }
    return false;
}

bool MenuWatcher::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Show && event->type() != QEvent::Hide) {
        return false;
    }
    // Menus are popups too.
    auto* popup = qobject_cast<QWidget*>(watched);
    if (popup == nullptr || !popup->isWindow() || popup->windowType() != Qt::Popup) {
        return false;
    }
    const bool wasOpen = !m_openPopups.isEmpty();
    m_openPopups.removeIf([](const QPointer<QWidget>& entry) { return entry.isNull(); });
    if (event->type() == QEvent::Show) {
        if (!m_openPopups.contains(popup)) {
            m_openPopups.append(popup);
        }
    } else {
        m_openPopups.removeAll(popup);
    }
    const bool isOpen = !m_openPopups.isEmpty();
    if (isOpen != wasOpen) {
        m_shortcuts.setMenuOpen(isOpen);
    }
    return false;
}

}  // namespace KeyboardShortcuts
