// SPDX-License-Identifier: MIT
#include "KeyboardShortcuts/HotKeyRegistry.h"

#include <cstdio>
#include <limits>
#include <variant>

#include "KeyboardShortcuts/RawKeyMonitor.h"
#include "KeyboardShortcuts/ShortcutsLog.h"

Q_LOGGING_CATEGORY(lcShortcuts, "lattica.shortcuts", QtInfoMsg)

namespace KeyboardShortcuts {

namespace {

// The number the error line gives each refusal: the hot-key manager's own statuses for a combination
// that is taken (-9878) or cannot be a hot key (-9879), the system's error code for anything else.
int statusNumber(const HotKeys::Failure& failure) {
    switch (failure.error) {
        case HotKeys::Error::takenByAnotherClient:
            return -9878;
        case HotKeys::Error::unsupportedKey:
        case HotKeys::Error::unsupportedModifier:
            return -9879;
        case HotKeys::Error::other:
            break;
    }
    return failure.code;
}

// The user's only trace of a shortcut that cannot work: on standard output, where it always was, and
// through the logging category so that it reaches the journal with the program's other messages.
void reportRefusal(const Shortcut& shortcut, const HotKeys::Failure& failure) {
    const QByteArray line = QByteArrayLiteral("Error registering hotkey ") +
                            shortcut.presentableDescription().toUtf8() + ": " +
                            QByteArray::number(statusNumber(failure));
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
    qCWarning(lcShortcuts).noquote() << line;
}

bool fitsUnsigned32(int value) {
    return value >= 0;
}

}  // namespace

HotKeyRegistry::HotKeyRegistry(HotKeys* service) : m_service(service) {
    if (service == nullptr) {
        return;
    }
    m_connections.append(QObject::connect(
        service, &HotKeys::pressed, service,
        [this](HotKeys::RegistrationId registration) { dispatchServiceEvent(registration, HotKeyEvent::pressed); }));
    m_connections.append(QObject::connect(
        service, &HotKeys::released, service,
        [this](HotKeys::RegistrationId registration) { dispatchServiceEvent(registration, HotKeyEvent::released); }));
}

HotKeyRegistry::~HotKeyRegistry() {
    for (const QMetaObject::Connection& connection : m_connections) {
        QObject::disconnect(connection);
    }
    releaseAll();
}

void HotKeyRegistry::add(const Shortcut& shortcut, Handler onKeyDown, Handler onKeyUp) {
    if (m_lastId == std::numeric_limits<int>::max()) {
        qFatal("HotKeyRegistry: hot-key ids exhausted");
    }
    const int id = ++m_lastId;
    if (!fitsUnsigned32(shortcut.carbonKeyCode()) || !fitsUnsigned32(shortcut.carbonModifiers()) ||
        m_service.isNull()) {
        return;
    }
    HotKey hotKey{shortcut, std::nullopt, std::move(onKeyDown), std::move(onKeyUp), std::nullopt};
    // While suspended or while a menu holds the keyboard the key waits, unregistered, until that ends.
    if (m_mode == ListenMode::hotKeys) {
        const HotKeys::Registration registration = m_service->registerHotKey(
            static_cast<quint32>(shortcut.carbonKeyCode()), static_cast<quint32>(shortcut.carbonModifiers()));
        if (const auto* failure = std::get_if<HotKeys::Failure>(&registration)) {
            reportRefusal(shortcut, *failure);
            return;
        }
        hotKey.registration = std::get<HotKeys::RegistrationId>(registration);
    }
    qCDebug(lcShortcuts) << "registered" << shortcut.presentableDescription() << "as" << id;
    m_hotKeys.insert_or_assign(id, std::move(hotKey));
}

void HotKeyRegistry::remove(const Shortcut& shortcut) {
    for (auto it = m_hotKeys.begin(); it != m_hotKeys.end();) {
        if (it->second.shortcut == shortcut) {
            if (it->second.registration && !m_service.isNull()) {
                m_service->unregisterHotKey(*it->second.registration);
            }
            qCDebug(lcShortcuts) << "unregistered" << it->first;
            it = m_hotKeys.erase(it);
        } else {
            ++it;
        }
    }
}

void HotKeyRegistry::registerAll() {
    if (m_service.isNull()) {
        return;
    }
    for (auto& [id, hotKey] : m_hotKeys) {
        if (hotKey.registration) {
            continue;
        }
        const HotKeys::Registration registration =
            m_service->registerHotKey(static_cast<quint32>(hotKey.shortcut.carbonKeyCode()),
                                      static_cast<quint32>(hotKey.shortcut.carbonModifiers()));
        if (const auto* failure = std::get_if<HotKeys::Failure>(&registration)) {
            if (hotKey.reportedRefusal != *failure) {
                reportRefusal(hotKey.shortcut, *failure);
                hotKey.reportedRefusal = *failure;
            }
            continue;
        }
        hotKey.registration = std::get<HotKeys::RegistrationId>(registration);
        hotKey.reportedRefusal.reset();
    }
}

void HotKeyRegistry::releaseAll() {
    for (auto& [id, hotKey] : m_hotKeys) {
        if (hotKey.registration && !m_service.isNull()) {
            m_service->unregisterHotKey(*hotKey.registration);
        }
        hotKey.registration.reset();
    }
}

void HotKeyRegistry::setListenMode(ListenMode mode) {
    m_mode = mode;
    switch (mode) {
        case ListenMode::suspended:
            // Also while a recorder records: the keys must reach it, including those of our own hot keys.
            releaseAll();
            if (m_rawKeyMonitor) {
                m_rawKeyMonitor->stop();
            }
            break;
        case ListenMode::hotKeys:
            registerAll();
            if (m_rawKeyMonitor) {
                m_rawKeyMonitor->stop();
            }
            break;
        case ListenMode::rawKeys:
            releaseAll();
            rawKeyMonitor().start();
            break;
    }
}

QList<Shortcut> HotKeyRegistry::heldByOthers(const QList<Shortcut>& candidates) const {
    QList<Shortcut> held;
    if (m_service.isNull()) {
        return held;
    }
    for (const Shortcut& candidate : candidates) {
        if (!fitsUnsigned32(candidate.carbonKeyCode())) {
            continue;
        }
        if (m_service->isHeldByAnotherClient(static_cast<quint32>(candidate.carbonKeyCode()),
                                             static_cast<quint32>(candidate.carbonModifiers()))) {
            held.append(candidate);
        }
    }
    return held;
}

bool HotKeyRegistry::restrictsOptionOnlyHotKeys() const {
    return !m_service.isNull() && m_service->restrictsOptionOnlyHotKeys();
}

RawKeyMonitor& HotKeyRegistry::rawKeyMonitor() {
    if (!m_rawKeyMonitor) {
        m_rawKeyMonitor = std::make_unique<RawKeyMonitor>(
            [this](int keyCode, int modifiers, RawKeyEvent event) {
                return handleRawKeyEvent(keyCode, modifiers, event);
            },
            [this](int modifier) { return usesModifier(modifier); });
    }
    return *m_rawKeyMonitor;
}

bool HotKeyRegistry::usesModifier(int carbonModifier) const {
    for (const auto& [id, hotKey] : m_hotKeys) {
        if ((hotKey.shortcut.carbonModifiers() & carbonModifier) != 0) {
            return true;
        }
    }
    return false;
}

void HotKeyRegistry::dispatchServiceEvent(HotKeys::RegistrationId registration, HotKeyEvent event) {
    if (m_mode != ListenMode::hotKeys) {
        return;
    }
    for (const auto& [id, hotKey] : m_hotKeys) {
        if (hotKey.registration == registration) {
            handleHotKeyEvent(id, event);
            return;
        }
    }
}

bool HotKeyRegistry::handleRawKeyEvent(int keyCode, int carbonModifiers, RawKeyEvent event) {
    for (const auto& [id, hotKey] : m_hotKeys) {
        if (hotKey.shortcut.carbonKeyCode() != keyCode || hotKey.shortcut.carbonModifiers() != carbonModifiers) {
            continue;
        }
        // Copies: a handler may change the table.
        const Shortcut shortcut = hotKey.shortcut;
        switch (event) {
            case RawKeyEvent::keyDown: {
                const Handler handler = hotKey.onKeyDown;
                handler(shortcut);
                break;
            }
            case RawKeyEvent::keyUp: {
                const Handler handler = hotKey.onKeyUp;
                handler(shortcut);
                break;
            }
            case RawKeyEvent::probe:
                break;
        }
        return true;
    }
    return false;
}

bool HotKeyRegistry::handleHotKeyEvent(int hotKeyId, HotKeyEvent event) {
    const auto found = m_hotKeys.find(hotKeyId);
    if (found == m_hotKeys.end()) {
        return false;
    }
    // Copies: a handler may change the table.
    const Shortcut shortcut = found->second.shortcut;
    const Handler handler = event == HotKeyEvent::pressed ? found->second.onKeyDown : found->second.onKeyUp;
    handler(shortcut);
    return true;
}

QList<int> HotKeyRegistry::hotKeyIds() const {
    QList<int> ids;
    for (const auto& [id, hotKey] : m_hotKeys) {
        ids.append(id);
    }
    return ids;
}

bool HotKeyRegistry::isActive(int hotKeyId) const {
    const auto found = m_hotKeys.find(hotKeyId);
    return found != m_hotKeys.end() && found->second.registration.has_value();
}

std::optional<Shortcut> HotKeyRegistry::shortcutForHotKey(int hotKeyId) const {
    const auto found = m_hotKeys.find(hotKeyId);
    if (found == m_hotKeys.end()) {
        return std::nullopt;
    }
    return found->second.shortcut;
}

bool HotKeyRegistry::isRawKeyMonitorActive() const {
    return m_rawKeyMonitor && m_rawKeyMonitor->isActive();
}

}  // namespace KeyboardShortcuts
