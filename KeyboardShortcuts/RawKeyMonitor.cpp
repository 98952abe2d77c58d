// SPDX-License-Identifier: MIT
#include "KeyboardShortcuts/RawKeyMonitor.h"

#include <QCoreApplication>
#include <QKeyEvent>

#include "KeyboardShortcuts/InputEvent.h"

namespace KeyboardShortcuts {

RawKeyMonitor::RawKeyMonitor(Callback callback, ModifierQuery usesModifier)
    : m_callback(std::move(callback)), m_usesModifier(std::move(usesModifier)) {}

namespace {
// The Carbon modifier bit a modifier key sets, or 0.
int carbonModifierOfKey(int qtKey) {
    switch (qtKey) {
        case Qt::Key_Control:
            return CarbonModifier::controlKey;
        case Qt::Key_Alt:
            return CarbonModifier::optionKey;
        case Qt::Key_Shift:
            return CarbonModifier::shiftKey;
        case Qt::Key_Meta:
        case Qt::Key_Super_L:
        case Qt::Key_Super_R:
            return CarbonModifier::cmdKey;
        default:
            return 0;
    }
}
}  // namespace

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
    if (const int modifier = carbonModifierOfKey(keyEvent->key()); modifier != 0) {
        return type != QEvent::ShortcutOverride && watched->isWindowType() && m_usesModifier(modifier);
    }
    const std::optional<int> keyCode = InputEvent::carbonKeyCode(*keyEvent);
    if (!keyCode) {
        return false;
    }
    const int modifiers = carbon(modifierFlagsFromQt(keyEvent->modifiers()));
    if (type == QEvent::ShortcutOverride) {
        // Claim the key so that no action of the open menu's window triggers on it; the press that
        // follows is matched below.
        if (m_callback(*keyCode, modifiers, RawKeyEvent::probe)) {
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
        return m_callback(*keyCode, modifiers, RawKeyEvent::probe);
    }
    return m_callback(*keyCode, modifiers, type == QEvent::KeyPress ? RawKeyEvent::keyDown : RawKeyEvent::keyUp);
}

}  // namespace KeyboardShortcuts
