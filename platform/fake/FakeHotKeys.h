#pragma once

#include <QHash>
#include <QSet>

#include "platform/HotKeys.h"

// Hot keys in memory: tests press and release them and can mark combinations as taken.
class FakeHotKeys : public HotKeys {
    Q_OBJECT
public:
    struct Registration {
        quint32 keyCode = 0;
        quint32 modifiers = 0;
        quint32 hotKeyId = 0;
    };

    int registerHotKey(quint32 carbonKeyCode, quint32 carbonModifiers, quint32 hotKeyId, HotKeyRef* ref) override;
    void unregisterHotKey(HotKeyRef ref) override { m_registrations.remove(ref); }
    bool isHeldByAnotherClient(quint32 carbonKeyCode, quint32 carbonModifiers) override {
        return m_taken.contains(combination(carbonKeyCode, carbonModifiers));
    }
    bool restrictsOptionOnlyHotKeys() const override { return optionOnlyRestricted; }

    // Models a system that refuses option-only hot keys.
    bool optionOnlyRestricted = false;

    // Another client holds this combination: registering it fails with kEventHotKeyExistsErr.
    void markTaken(quint32 keyCode, quint32 modifiers) { m_taken.insert(combination(keyCode, modifiers)); }
    void markFree(quint32 keyCode, quint32 modifiers) { m_taken.remove(combination(keyCode, modifiers)); }
    // Presses and releases a combination the way a user would; only registered keys fire.
    void press(quint32 keyCode, quint32 modifiers);
    void release(quint32 keyCode, quint32 modifiers);
    QList<Registration> registrations() const { return m_registrations.values(); }

private:
    static quint64 combination(quint32 keyCode, quint32 modifiers) { return (quint64(keyCode) << 32) | modifiers; }

    QHash<HotKeyRef, Registration> m_registrations;
    QSet<quint64> m_taken;
    HotKeyRef m_nextRef = 1;
};
