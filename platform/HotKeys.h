#pragma once

#include <QObject>

// System-wide hot keys, addressed by Carbon virtual key codes and Carbon modifier bits.
class HotKeys : public QObject {
    Q_OBJECT
public:
    // Opaque handle of a registration; 0 means none.
    using HotKeyRef = quint64;
    // Status of a hot key that another client already holds.
    static constexpr int kEventHotKeyExistsErr = -9878;
    // Status of a key or modifier the platform cannot register at all.
    static constexpr int kEventHotKeyInvalidErr = -9879;

    HotKeys() = default;
    ~HotKeys() override = default;
    HotKeys(const HotKeys&) = delete;
    HotKeys& operator=(const HotKeys&) = delete;

    // Registers the key system-wide under hotKeyId. Returns 0 and fills ref on success, otherwise a
    // status: kEventHotKeyExistsErr when another client holds the combination.
    virtual int registerHotKey(quint32 carbonKeyCode, quint32 carbonModifiers, quint32 hotKeyId, HotKeyRef* ref) = 0;
    // Releases a registration made by registerHotKey.
    virtual void unregisterHotKey(HotKeyRef ref) = 0;
    // Whether another client already holds this combination system-wide (the system's own shortcuts).
    virtual bool isHeldByAnotherClient(quint32 carbonKeyCode, quint32 carbonModifiers) = 0;
    // Whether option (alone or with shift) may not be a hot key's only modifier on this system.
    virtual bool restrictsOptionOnlyHotKeys() const { return false; }

Q_SIGNALS:
    // A registered hot key went down or up (auto-repeat never produces extra presses or releases).
    void hotKeyPressed(quint32 hotKeyId);
    void hotKeyReleased(quint32 hotKeyId);
};
