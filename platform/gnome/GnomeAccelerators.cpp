// SPDX-License-Identifier: MIT
#include "platform/gnome/GnomeAccelerators.h"

#include <algorithm>

#include "platform/gnome/GnomeShellBridge.h"
#include "platform/x11/CarbonKeyCodes.h"

namespace {

constexpr quint32 kCommand = 1U << 8;
constexpr quint32 kShift = 1U << 9;
constexpr quint32 kOption = 1U << 11;
constexpr quint32 kControl = 1U << 12;
constexpr quint32 kFunction = 1U << 17;

}  // namespace

GnomeAccelerators::GnomeAccelerators(GnomeShellBridge& bridge) : m_bridge(bridge) {
    connect(&m_bridge, &GnomeShellBridge::acceleratorPressed, this, [this](uint action) {
        if (m_byAction.contains(action)) {
            Q_EMIT pressed(m_byAction.value(action));
        }
    });
    connect(&m_bridge, &GnomeShellBridge::acceleratorReleased, this, [this](uint action) {
        if (m_byAction.contains(action)) {
            Q_EMIT released(m_byAction.value(action));
        }
    });
}

GnomeAccelerators::~GnomeAccelerators() {
    for (auto it = m_byAction.cbegin(); it != m_byAction.cend(); ++it) {
        m_bridge.ungrabAccelerator(it.key());
    }
}

std::variant<QString, HotKeys::Failure> GnomeAccelerators::accelerator(quint32 carbonKeyCode, quint32 carbonModifiers) {
    if ((carbonModifiers & kFunction) != 0) {
        return Failure{Error::unsupportedModifier, 0};
    }
    const std::optional<int> evdev = CarbonKeyCodes::evdevScanCode(static_cast<int>(carbonKeyCode));
    if (!evdev) {
        return Failure{Error::unsupportedKey, 0};
    }
    QString text;
    if ((carbonModifiers & kControl) != 0) {
        text += QStringLiteral("<Control>");
    }
    if ((carbonModifiers & kOption) != 0) {
        text += QStringLiteral("<Alt>");
    }
    if ((carbonModifiers & kShift) != 0) {
        text += QStringLiteral("<Shift>");
    }
    if ((carbonModifiers & kCommand) != 0) {
        text += QStringLiteral("<Super>");
    }
    return text + QStringLiteral("0x%1").arg(*evdev + 8, 2, 16, QLatin1Char('0'));
}

HotKeys::Registration GnomeAccelerators::registerHotKey(quint32 carbonKeyCode, quint32 carbonModifiers) {
    const auto text = accelerator(carbonKeyCode, carbonModifiers);
    if (const auto* failure = std::get_if<Failure>(&text)) {
        return *failure;
    }
    const QString& accelerator = std::get<QString>(text);
    const uint action = m_bridge.grabAccelerator(accelerator);
    if (action == 0) {
        // Mutter refuses a combination its own key bindings or another grab hold.
        return Failure{m_bridge.ping() ? Error::takenByAnotherClient : Error::other, 0};
    }
    const RegistrationId id = m_nextId++;
    m_byAction.insert(action, id);
    m_accelerators.insert(action, accelerator);
    return id;
}

void GnomeAccelerators::unregisterHotKey(RegistrationId id) {
    for (auto it = m_byAction.begin(); it != m_byAction.end(); ++it) {
        if (it.value() == id) {
            m_bridge.ungrabAccelerator(it.key());
            m_accelerators.remove(it.key());
            m_byAction.erase(it);
            return;
        }
    }
}

bool GnomeAccelerators::isHeldByAnotherClient(quint32 carbonKeyCode, quint32 carbonModifiers) {
    const auto text = accelerator(carbonKeyCode, carbonModifiers);
    if (!std::holds_alternative<QString>(text)) {
        return false;
    }
    if (std::find(m_accelerators.cbegin(), m_accelerators.cend(), std::get<QString>(text)) != m_accelerators.cend()) {
        return false;
    }
    return m_bridge.acceleratorFree(std::get<QString>(text)) == false;
}
