// SPDX-License-Identifier: MIT
#include "platform/kwin/KWinGlobalShortcuts.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QLoggingCategory>
#include <QVariant>

#include "platform/KeyboardLayout.h"
#include "platform/kwin/KWinKeyCodes.h"

Q_DECLARE_LOGGING_CATEGORY(lcKWinBridge)

namespace {

const QString kService = QStringLiteral("org.kde.kglobalaccel");
const QString kInterface = QStringLiteral("org.kde.KGlobalAccel");
const QString kComponentInterface = QStringLiteral("org.kde.kglobalaccel.Component");
const QString kComponent = QStringLiteral("lattica");
constexpr int kCallTimeoutMs = 2000;

// KGlobalAccel's setShortcut flags: the shortcut is present, and the given keys win over stored ones.
constexpr uint kSetPresent = 2;
constexpr uint kNoAutoloading = 4;

QDBusMessage call(const QDBusConnection& bus, const QString& path, const QString& method,
                  const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(kService, path, kInterface, method);
    message.setArguments(arguments);
    return bus.call(message, QDBus::Block, kCallTimeoutMs);
}

}  // namespace

KWinGlobalShortcuts::KWinGlobalShortcuts(QDBusConnection bus, KeyboardLayout* layout)
    : m_bus(std::move(bus)), m_layout(layout) {}

KWinGlobalShortcuts::~KWinGlobalShortcuts() {
    for (auto it = m_byAction.cbegin(); it != m_byAction.cend(); ++it) {
        call(m_bus, QStringLiteral("/kglobalaccel"), QStringLiteral("unregister"), {kComponent, it.key()});
    }
}

QStringList KWinGlobalShortcuts::actionId(RegistrationId id) const {
    const QString action = QStringLiteral("hotkey-%1").arg(id);
    return {kComponent, action, QStringLiteral("Lattica"), QStringLiteral("Lattica shortcut %1").arg(id)};
}

std::variant<int, HotKeys::Failure> KWinGlobalShortcuts::qtCombination(quint32 carbonKeyCode,
                                                                       quint32 carbonModifiers) const {
    const std::optional<int> modifiers = KWinKeyCodes::qtModifiers(carbonModifiers);
    if (!modifiers) {
        return Failure{Error::unsupportedModifier, 0};
    }
    const std::optional<int> key = KWinKeyCodes::qtKey(static_cast<int>(carbonKeyCode), [this](int code) {
        return m_layout != nullptr ? m_layout->characterForKeyCode(code) : std::nullopt;
    });
    if (!key) {
        return Failure{Error::unsupportedKey, 0};
    }
    return *key | *modifiers;
}

HotKeys::Registration KWinGlobalShortcuts::registerHotKey(quint32 carbonKeyCode, quint32 carbonModifiers) {
    const auto combination = qtCombination(carbonKeyCode, carbonModifiers);
    if (const auto* failure = std::get_if<Failure>(&combination)) {
        return *failure;
    }
    const int keys = std::get<int>(combination);
    if (isHeldByAnotherClient(carbonKeyCode, carbonModifiers)) {
        return Failure{Error::takenByAnotherClient, 0};
    }
    const RegistrationId id = m_nextId++;
    const QStringList action = actionId(id);
    const QDBusMessage registered =
        call(m_bus, QStringLiteral("/kglobalaccel"), QStringLiteral("doRegister"), {action});
    if (registered.type() != QDBusMessage::ReplyMessage) {
        qCWarning(lcKWinBridge) << "KGlobalAccel did not register a shortcut:" << registered.errorMessage();
        return Failure{Error::other, 0};
    }
    const QDBusMessage set = call(m_bus, QStringLiteral("/kglobalaccel"), QStringLiteral("setShortcut"),
                                  {action, QVariant::fromValue(QList<int>{keys}), kSetPresent | kNoAutoloading});
    const QList<int> given =
        set.arguments().isEmpty() ? QList<int>{} : qdbus_cast<QList<int>>(set.arguments().constFirst());
    if (set.type() != QDBusMessage::ReplyMessage || !given.contains(keys)) {
        call(m_bus, QStringLiteral("/kglobalaccel"), QStringLiteral("unregister"), {kComponent, action.at(1)});
        return Failure{Error::takenByAnotherClient, 0};
    }
    m_byAction.insert(action.at(1), id);
    listenToComponent();
    return id;
}

void KWinGlobalShortcuts::unregisterHotKey(RegistrationId id) {
    const QStringList action = actionId(id);
    if (m_byAction.remove(action.at(1)) == 0) {
        return;
    }
    call(m_bus, QStringLiteral("/kglobalaccel"), QStringLiteral("setInactive"), {action});
    call(m_bus, QStringLiteral("/kglobalaccel"), QStringLiteral("unregister"), {kComponent, action.at(1)});
}

bool KWinGlobalShortcuts::isHeldByAnotherClient(quint32 carbonKeyCode, quint32 carbonModifiers) {
    const auto combination = qtCombination(carbonKeyCode, carbonModifiers);
    if (!std::holds_alternative<int>(combination)) {
        return false;
    }
    const QDBusMessage reply = call(m_bus, QStringLiteral("/kglobalaccel"), QStringLiteral("isGlobalShortcutAvailable"),
                                    {std::get<int>(combination), kComponent});
    return reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty() &&
           !reply.arguments().constFirst().toBool();
}

void KWinGlobalShortcuts::listenToComponent() {
    if (m_listening) {
        return;
    }
    const QDBusMessage reply =
        call(m_bus, QStringLiteral("/kglobalaccel"), QStringLiteral("getComponent"), {kComponent});
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        qCWarning(lcKWinBridge) << "KGlobalAccel has no component for Lattica:" << reply.errorMessage();
        return;
    }
    const QString path = qdbus_cast<QDBusObjectPath>(reply.arguments().constFirst()).path();
    m_listening = m_bus.connect(kService, path, kComponentInterface, QStringLiteral("globalShortcutPressed"), this,
                                SLOT(onPressed(QString, QString, qlonglong))) &&
                  m_bus.connect(kService, path, kComponentInterface, QStringLiteral("globalShortcutReleased"), this,
                                SLOT(onReleased(QString, QString, qlonglong)));
}

void KWinGlobalShortcuts::onPressed(const QString& component, const QString& action, qlonglong) {
    if (component == kComponent && m_byAction.contains(action)) {
        Q_EMIT pressed(m_byAction.value(action));
    }
}

void KWinGlobalShortcuts::onReleased(const QString& component, const QString& action, qlonglong) {
    if (component == kComponent && m_byAction.contains(action)) {
        Q_EMIT released(m_byAction.value(action));
    }
}
