#include "KeyboardShortcuts/MenuWatcher.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMenu>

namespace KeyboardShortcuts {

MenuWatcher::MenuWatcher(std::function<void(bool isOpen)> onChange) : m_onChange(std::move(onChange)) {
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
    for (const QPointer<QMenu>& menu : m_openMenus) {
        if (menu && menu->isVisible()) {
            return true;
        }
    }
    return false;
}

bool MenuWatcher::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Show && event->type() != QEvent::Hide) {
        return false;
    }
    auto* menu = qobject_cast<QMenu*>(watched);
    if (menu == nullptr || !menu->isWindow()) {
        return false;
    }
    const bool wasOpen = !m_openMenus.isEmpty();
    m_openMenus.removeIf([](const QPointer<QMenu>& entry) { return entry.isNull(); });
    if (event->type() == QEvent::Show) {
        if (!m_openMenus.contains(menu)) {
            m_openMenus.append(menu);
        }
    } else {
        m_openMenus.removeAll(menu);
    }
    const bool isOpen = !m_openMenus.isEmpty();
    if (isOpen != wasOpen) {
        m_onChange(isOpen);
    }
    return false;
}

}  // namespace KeyboardShortcuts
