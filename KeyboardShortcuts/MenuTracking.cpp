#include "KeyboardShortcuts/MenuTracking.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMenu>
#include <QPointer>

namespace KeyboardShortcuts::MenuTracking {

namespace {

// Sees every Show and Hide of a QMenu in the application.
class MenuObserver : public QObject {
public:
    explicit MenuObserver(std::function<void(bool)> onChange) : m_onChange(std::move(onChange)) {}

    bool anyOpen() const {
        for (const QPointer<QMenu>& menu : m_openMenus) {
            if (menu && menu->isVisible()) {
                return true;
            }
        }
        return false;
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
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

private:
    std::function<void(bool)> m_onChange;
    QList<QPointer<QMenu>> m_openMenus;
};

MenuObserver* g_observer = nullptr;

}  // namespace

void startObserving(std::function<void(bool isOpen)> onChange) {
    if (g_observer != nullptr || QCoreApplication::instance() == nullptr) {
        return;
    }
    // Lives as long as the application object.
    g_observer = new MenuObserver(std::move(onChange));
    g_observer->setParent(QCoreApplication::instance());
    QCoreApplication::instance()->installEventFilter(g_observer);
    QObject::connect(g_observer, &QObject::destroyed, [] { g_observer = nullptr; });
}

bool isAnyMenuOpen() {
    return g_observer != nullptr && g_observer->anyOpen();
}

}  // namespace KeyboardShortcuts::MenuTracking
