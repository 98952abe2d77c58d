#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"

#include <QHash>
#include <QLoggingCategory>
#include <QPointer>
#include <QTextStream>
#include <cstdio>
#include <limits>
#include <map>
#include <memory>
#include <variant>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "KeyboardShortcuts/RawKeyMonitor.h"
#include "platform/HotKeys.h"
#include "platform/Platform.h"

Q_LOGGING_CATEGORY(lcHotKeys, "lattica.shortcuts.hotkeys", QtInfoMsg)

namespace KeyboardShortcuts::CarbonKeyboardShortcuts {

namespace {

struct HotKey {
    Shortcut shortcut;
    int carbonHotKeyId = 0;
    std::optional<HotKeys::RegistrationId> registration;  // empty while suspended
    Handler onKeyDown;
    Handler onKeyUp;
};

// The process-wide hot-key table, in id order.
struct Tables {
    std::map<int, HotKey> hotKeys;
    int hotKeyId = 0;
    // The platform service the event handler listens to; null until the first registration succeeds.
    QPointer<HotKeys> eventHandler;
    bool hotKeyEventsEnabled = false;
    std::unique_ptr<RawKeyMonitor> keyEventMonitor;
    // The hot-key service the table's references belong to.
    QPointer<HotKeys> boundService;
    bool hasBoundService = false;
};

Tables& tables() {
    static Tables instance;
    return instance;
}

HotKeys* service() {
    return Platform::services().hotKeys;
}

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

void printRegistrationError(const Shortcut& shortcut, const HotKeys::Failure& failure) {
    // Always printed, on standard output: the user's only trace of a shortcut that cannot work.
    const QByteArray line = QByteArrayLiteral("Error registering hotkey ") +
                            shortcut.presentableDescription().toUtf8() + ": " +
                            QByteArray::number(statusNumber(failure)) + '\n';
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stdout);
    std::fflush(stdout);
}

bool fitsUnsigned32(int value) {
    return value >= 0;
}

RawKeyMonitor& keyEventMonitor() {
    Tables& t = tables();
    if (!t.keyEventMonitor) {
        t.keyEventMonitor = std::make_unique<RawKeyMonitor>(
            [](int keyCode, int modifiers, RawKeyEvent event) { return handleRawKeyEvent(keyCode, modifiers, event); },
            [](int modifier) {
                for (const auto& [id, hotKey] : tables().hotKeys) {
                    if ((hotKey.shortcut.carbonModifiers() & modifier) != 0) {
                        return true;
                    }
                }
                return false;
            });
    }
    return *t.keyEventMonitor;
}

// The table entry that holds a live registration, or 0.
int hotKeyIdForRegistration(HotKeys::RegistrationId registration) {
    for (const auto& [id, hotKey] : tables().hotKeys) {
        if (hotKey.registration == registration) {
            return id;
        }
    }
    return 0;
}

void dispatchServiceEvent(HotKeys::RegistrationId registration, HotKeyEvent event) {
    if (!tables().hotKeyEventsEnabled) {
        return;
    }
    if (const int id = hotKeyIdForRegistration(registration); id != 0) {
        handleHotKeyEvent(id, event);
    }
}

void installEventHandler(HotKeys* hotKeys) {
    Tables& t = tables();
    t.eventHandler = hotKeys;
    t.hotKeyEventsEnabled = false;
    QObject::connect(hotKeys, &HotKeys::pressed, hotKeys, [](HotKeys::RegistrationId registration) {
        dispatchServiceEvent(registration, HotKeyEvent::pressed);
    });
    QObject::connect(hotKeys, &HotKeys::released, hotKeys, [](HotKeys::RegistrationId registration) {
        dispatchServiceEvent(registration, HotKeyEvent::released);
    });
}

void suspendAll() {
    HotKeys* hotKeys = service();
    for (auto& [id, hotKey] : tables().hotKeys) {
        if (hotKey.registration && hotKeys != nullptr) {
            hotKeys->unregisterHotKey(*hotKey.registration);
        }
        hotKey.registration.reset();
    }
}

}  // namespace

void register_(const Shortcut& shortcut, Handler onKeyDown, Handler onKeyUp) {
    Tables& t = tables();
    if (t.hotKeyId == std::numeric_limits<int>::max()) {
        qFatal("CarbonKeyboardShortcuts: hot-key ids exhausted");
    }
    const int id = ++t.hotKeyId;
    if (!fitsUnsigned32(shortcut.carbonKeyCode()) || !fitsUnsigned32(shortcut.carbonModifiers())) {
        return;
    }
    HotKeys* hotKeys = service();
    if (hotKeys == nullptr) {
        return;
    }
    const HotKeys::Registration registration = hotKeys->registerHotKey(
        static_cast<quint32>(shortcut.carbonKeyCode()), static_cast<quint32>(shortcut.carbonModifiers()));
    if (const auto* failure = std::get_if<HotKeys::Failure>(&registration)) {
        printRegistrationError(shortcut, *failure);
        return;
    }
    qCDebug(lcHotKeys) << "registered" << shortcut.presentableDescription() << "as" << id;
    t.hotKeys.insert_or_assign(id, HotKey{shortcut, id, std::get<HotKeys::RegistrationId>(registration),
                                          std::move(onKeyDown), std::move(onKeyUp)});
    if (t.eventHandler.isNull() || t.eventHandler.data() != hotKeys) {
        installEventHandler(hotKeys);
        updateEventHandler();
    }
}

void unregister(const Shortcut& shortcut) {
    Tables& t = tables();
    HotKeys* hotKeys = service();
    for (auto it = t.hotKeys.begin(); it != t.hotKeys.end();) {
        if (it->second.shortcut == shortcut) {
            if (it->second.registration && hotKeys != nullptr) {
                hotKeys->unregisterHotKey(*it->second.registration);
            }
            qCDebug(lcHotKeys) << "unregistered" << it->first;
            it = t.hotKeys.erase(it);
        } else {
            ++it;
        }
    }
}

void softRegisterAll() {
    HotKeys* hotKeys = service();
    if (hotKeys == nullptr) {
        return;
    }
    for (auto& [id, hotKey] : tables().hotKeys) {
        if (hotKey.registration) {
            continue;
        }
        const HotKeys::Registration registration =
            hotKeys->registerHotKey(static_cast<quint32>(hotKey.shortcut.carbonKeyCode()),
                                    static_cast<quint32>(hotKey.shortcut.carbonModifiers()));
        if (const auto* failure = std::get_if<HotKeys::Failure>(&registration)) {
            printRegistrationError(hotKey.shortcut, *failure);
            continue;
        }
        hotKey.registration = std::get<HotKeys::RegistrationId>(registration);
    }
}

void updateEventHandler() {
    Tables& t = tables();
    if (t.eventHandler.isNull()) {
        return;
    }
    if (!KeyboardShortcuts::isEnabled()) {
        suspendAll();
        t.hotKeyEventsEnabled = false;
        keyEventMonitor().stop();
        return;
    }
    if (KeyboardShortcuts::isPaused()) {
        // A recorder is recording: the keys must reach it, including those of our own hot keys.
        suspendAll();
        t.hotKeyEventsEnabled = false;
        keyEventMonitor().stop();
        return;
    }
    if (!KeyboardShortcuts::isMenuOpen()) {
        softRegisterAll();
        keyEventMonitor().stop();
        t.hotKeyEventsEnabled = true;
        return;
    }
    suspendAll();
    t.hotKeyEventsEnabled = false;
    keyEventMonitor().start();
}

QList<Shortcut> system(const QList<Shortcut>& candidates) {
    QList<Shortcut> held;
    HotKeys* hotKeys = service();
    if (hotKeys == nullptr) {
        return held;
    }
    for (const Shortcut& candidate : candidates) {
        if (!fitsUnsigned32(candidate.carbonKeyCode())) {
            continue;
        }
        if (hotKeys->isHeldByAnotherClient(static_cast<quint32>(candidate.carbonKeyCode()),
                                           static_cast<quint32>(candidate.carbonModifiers()))) {
            held.append(candidate);
        }
    }
    return held;
}

bool handleRawKeyEvent(int keyCode, int carbonModifiers, RawKeyEvent event) {
    for (const auto& [id, hotKey] : tables().hotKeys) {
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

bool handleHotKeyEvent(int hotKeyId, HotKeyEvent event) {
    const auto found = tables().hotKeys.find(hotKeyId);
    if (found == tables().hotKeys.end()) {
        return false;
    }
    // Copies: a handler may change the table.
    const Shortcut shortcut = found->second.shortcut;
    const Handler handler = event == HotKeyEvent::pressed ? found->second.onKeyDown : found->second.onKeyUp;
    handler(shortcut);
    return true;
}

bool rebindIfServiceChanged() {
    Tables& t = tables();
    HotKeys* current = service();
    if (t.hasBoundService && !t.boundService.isNull() && t.boundService.data() == current) {
        return false;
    }
    const bool hadState = t.hasBoundService || !t.hotKeys.empty();
    if (!t.boundService.isNull()) {
        for (const auto& [id, hotKey] : t.hotKeys) {
            if (hotKey.registration) {
                t.boundService->unregisterHotKey(*hotKey.registration);
            }
        }
    }
    t.hotKeys.clear();
    t.eventHandler = nullptr;
    t.hotKeyEventsEnabled = false;
    t.boundService = current;
    t.hasBoundService = current != nullptr;
    return hadState;
}

int lastHotKeyId() {
    return tables().hotKeyId;
}

QList<int> hotKeyIds() {
    QList<int> ids;
    for (const auto& [id, hotKey] : tables().hotKeys) {
        ids.append(id);
    }
    return ids;
}

bool isActive(int hotKeyId) {
    const auto found = tables().hotKeys.find(hotKeyId);
    return found != tables().hotKeys.end() && found->second.registration.has_value();
}

std::optional<Shortcut> shortcutForHotKey(int hotKeyId) {
    const auto found = tables().hotKeys.find(hotKeyId);
    if (found == tables().hotKeys.end()) {
        return std::nullopt;
    }
    return found->second.shortcut;
}

bool isEventHandlerInstalled() {
    return !tables().eventHandler.isNull();
}

bool isRawKeyMonitorActive() {
    return tables().keyEventMonitor && tables().keyEventMonitor->isActive();
}

void resetForTesting() {
    Tables& t = tables();
    suspendAll();
    t.hotKeys.clear();
    t.hotKeyId = 0;
    if (t.eventHandler) {
        QObject::disconnect(t.eventHandler, nullptr, t.eventHandler, nullptr);
    }
    t.eventHandler = nullptr;
    t.hotKeyEventsEnabled = false;
    t.keyEventMonitor.reset();
    t.boundService = nullptr;
    t.hasBoundService = false;
}

}  // namespace KeyboardShortcuts::CarbonKeyboardShortcuts
