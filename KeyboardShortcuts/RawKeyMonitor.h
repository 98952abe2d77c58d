// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <functional>

#include "KeyboardShortcuts/KeyEvents.h"

namespace KeyboardShortcuts {

// Watches the application's key events before any window or menu sees them, while started. The
// callback gets the Carbon key code, the Carbon modifiers and what happened, and answers true to swallow
// the event. Used while a menu holds the keyboard. Modifier keys that a hot key needs are kept from the
// menu too (a menu closes when Alt is pressed, which would end a Control+Alt shortcut half-way).
class RawKeyMonitor : public QObject {
    Q_OBJECT
public:
    using Callback = std::function<bool(int keyCode, int carbonModifiers, RawKeyEvent event)>;
    // Whether some hot key holds this Carbon modifier bit.
    using ModifierQuery = std::function<bool(int carbonModifier)>;

    RawKeyMonitor(Callback callback, ModifierQuery usesModifier);
    ~RawKeyMonitor() override;

    void start();
    void stop();
    bool isActive() const { return m_active; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Callback m_callback;
    ModifierQuery m_usesModifier;
    bool m_active = false;
};

}  // namespace KeyboardShortcuts
