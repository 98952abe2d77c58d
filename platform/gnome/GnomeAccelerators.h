// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QString>

#include "platform/HotKeys.h"

class GnomeShellBridge;

// Hot keys as Mutter accelerators grabbed by Lattica's Shell extension. Mutter reports only an
// accelerator's press; the extension reports the release once the accelerator's modifiers are no longer
// all held (it looks at them every few milliseconds after the press). So a shortcut counts as released
// when its modifiers are let go, not when its key is: holding the modifiers and tapping the key again
// does nothing more until they are let go.
class GnomeAccelerators : public HotKeys {
    Q_OBJECT
public:
    explicit GnomeAccelerators(GnomeShellBridge& bridge);
    ~GnomeAccelerators() override;

    Registration registerHotKey(quint32 carbonKeyCode, quint32 carbonModifiers) override;
    void unregisterHotKey(RegistrationId id) override;
    bool isHeldByAnotherClient(quint32 carbonKeyCode, quint32 carbonModifiers) override;

    // Mutter's accelerator text for a stored combination: modifiers by name, the key by its keycode (the
    // evdev code + 8, in hex), so that the physical key is meant whatever the layout. A failure when the
    // key or a modifier has no equivalent.
    static std::variant<QString, Failure> accelerator(quint32 carbonKeyCode, quint32 carbonModifiers);

private:
    GnomeShellBridge& m_bridge;
    RegistrationId m_nextId = 1;
    QHash<uint, RegistrationId> m_byAction;
    QHash<uint, QString> m_accelerators;  // by action, so that our own grabs are not taken for others'
};
