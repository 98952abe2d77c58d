// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QList>
#include <QSet>

#include "platform/HotKeys.h"

// Hot keys in memory: tests press and release them and can mark combinations as taken or unsupported.
class FakeHotKeys : public HotKeys {
    Q_OBJECT
public:
    struct Registration {
        quint32 keyCode = 0;
        quint32 modifiers = 0;
    };

    HotKeys::Registration registerHotKey(quint32 carbonKeyCode, quint32 carbonModifiers) override;
    void unregisterHotKey(RegistrationId id) override { m_registrations.remove(id); }
    bool isHeldByAnotherClient(quint32 carbonKeyCode, quint32 carbonModifiers) override {
        return m_refusals.value(combination(carbonKeyCode, carbonModifiers)).error == Error::takenByAnotherClient;
    }
    bool restrictsOptionOnlyHotKeys() const override { return optionOnlyRestricted; }

    // Models a system that refuses option-only hot keys.
    bool optionOnlyRestricted = false;

    // Another client holds this combination: registering it fails with takenByAnotherClient.
    void markTaken(quint32 keyCode, quint32 modifiers) { refuse(keyCode, modifiers, {Error::takenByAnotherClient}); }
    // Registering this combination fails with the given failure.
    void refuse(quint32 keyCode, quint32 modifiers, Failure failure) {
        m_refusals.insert(combination(keyCode, modifiers), failure);
    }
    void markFree(quint32 keyCode, quint32 modifiers) { m_refusals.remove(combination(keyCode, modifiers)); }
    // Presses and releases a combination the way a user would; only registered keys fire.
    void press(quint32 keyCode, quint32 modifiers);
    void release(quint32 keyCode, quint32 modifiers);
    // The live registrations, oldest first.
    QList<Registration> registrations() const;

private:
    static quint64 combination(quint32 keyCode, quint32 modifiers) { return (quint64(keyCode) << 32) | modifiers; }
    QList<RegistrationId> registered(quint32 keyCode, quint32 modifiers) const;

    QHash<RegistrationId, Registration> m_registrations;
    QHash<quint64, Failure> m_refusals;
    RegistrationId m_nextId = 1;
};
