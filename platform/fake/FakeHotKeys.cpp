#include "platform/fake/FakeHotKeys.h"

int FakeHotKeys::registerHotKey(quint32 carbonKeyCode, quint32 carbonModifiers, quint32 hotKeyId, HotKeyRef* ref) {
    if (m_taken.contains(combination(carbonKeyCode, carbonModifiers))) {
        return kEventHotKeyExistsErr;
    }
    *ref = m_nextRef++;
    m_registrations.insert(*ref, {carbonKeyCode, carbonModifiers, hotKeyId});
    return 0;
}

void FakeHotKeys::press(quint32 keyCode, quint32 modifiers) {
    for (const Registration& registration : m_registrations) {
        if (registration.keyCode == keyCode && registration.modifiers == modifiers) {
            Q_EMIT hotKeyPressed(registration.hotKeyId);
        }
    }
}

void FakeHotKeys::release(quint32 keyCode, quint32 modifiers) {
    for (const Registration& registration : m_registrations) {
        if (registration.keyCode == keyCode && registration.modifiers == modifiers) {
            Q_EMIT hotKeyReleased(registration.hotKeyId);
        }
    }
}
