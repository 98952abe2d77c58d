// SPDX-License-Identifier: MIT
#include "platform/fake/FakeHotKeys.h"

#include <algorithm>

HotKeys::Registration FakeHotKeys::registerHotKey(quint32 carbonKeyCode, quint32 carbonModifiers) {
    const auto refusal = m_refusals.constFind(combination(carbonKeyCode, carbonModifiers));
    if (refusal != m_refusals.constEnd()) {
        return *refusal;
    }
    const RegistrationId id = m_nextId++;
    m_registrations.insert(id, {carbonKeyCode, carbonModifiers});
    return id;
}

QList<FakeHotKeys::Registration> FakeHotKeys::registrations() const {
    QList<RegistrationId> ids = m_registrations.keys();
    std::sort(ids.begin(), ids.end());
    QList<Registration> result;
    for (const RegistrationId id : ids) {
        result.append(m_registrations.value(id));
    }
    return result;
}

QList<HotKeys::RegistrationId> FakeHotKeys::registered(quint32 keyCode, quint32 modifiers) const {
    QList<RegistrationId> ids;
    for (auto it = m_registrations.cbegin(); it != m_registrations.cend(); ++it) {
        if (it->keyCode == keyCode && it->modifiers == modifiers) {
            ids.append(it.key());
        }
    }
    return ids;
}

void FakeHotKeys::press(quint32 keyCode, quint32 modifiers) {
    for (const RegistrationId id : registered(keyCode, modifiers)) {
        Q_EMIT pressed(id);
    }
}

void FakeHotKeys::release(quint32 keyCode, quint32 modifiers) {
    for (const RegistrationId id : registered(keyCode, modifiers)) {
        Q_EMIT released(id);
    }
}
