#include "KeyboardShortcuts/RawKeyMonitor.h"

#include <QCoreApplication>
#include <QKeyEvent>

#include "KeyboardShortcuts/InputEvent.h"

namespace KeyboardShortcuts {

RawKeyMonitor::RawKeyMonitor(Callback callback) : m_callback(std::move(callback)) {}

RawKeyMonitor::~RawKeyMonitor() {
    stop();
}

void RawKeyMonitor::start() {
    if (m_active || QCoreApplication::instance() == nullptr) {
        return;
    }
    QCoreApplication::instance()->installEventFilter(this);
    m_active = true;
}

void RawKeyMonitor::stop() {
    if (!m_active) {
        return;
    }
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->removeEventFilter(this);
    }
    m_active = false;
}

bool RawKeyMonitor::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type != QEvent::KeyPress && type != QEvent::KeyRelease && type != QEvent::ShortcutOverride) {
        return false;
    }
    const auto* keyEvent = static_cast<QKeyEvent*>(event);
    const std::optional<int> keyCode = InputEvent::carbonKeyCode(*keyEvent);
    if (!keyCode) {
        return false;
    }
    const int modifiers = carbon(modifierFlagsFromQt(keyEvent->modifiers()));
    if (type == QEvent::ShortcutOverride) {
        // Claim the key so that no action of the open menu's window triggers on it; the press that
        // follows is matched below.
        if (m_callback(*keyCode, modifiers, 0) == 0) {
            event->accept();
            return true;
        }
        return false;
    }
    // Each key event reaches the window first and then its widgets: look at it once, at the window.
    if (!watched->isWindowType()) {
        return false;
    }
    if (keyEvent->isAutoRepeat()) {
        // A held hot key fires once; its repeats are swallowed when it is one of ours.
        return m_callback(*keyCode, modifiers, 0) == 0;
    }
    return m_callback(*keyCode, modifiers, type == QEvent::KeyPress ? 1 : 3) == 0;
}

}  // namespace KeyboardShortcuts
