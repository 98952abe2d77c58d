// SPDX-License-Identifier: MIT
#include "platform/gnome/GnomeSessionCheck.h"

#include <QCoreApplication>

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>

#include "platform/gnome/GnomeMonitors.h"
#include "platform/gnome/GnomeShellBridge.h"

namespace {

constexpr int kCallTimeoutMs = 3000;

// GNOME Shell's numbering of an extension's state.
constexpr int kShellEnabled = 1;
constexpr int kShellDisabled = 2;
constexpr int kShellError = 3;
constexpr int kShellOutOfDate = 4;
constexpr int kShellInitialized = 6;

QString extensionName() {
    return QString::fromLatin1(GnomeShellBridge::kExtensionUuid);
}

}  // namespace

GnomeSessionCheck::ExtensionState GnomeSessionCheck::extensionState(const GnomeShellBridge& bridge) {
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.gnome.Shell"), QStringLiteral("/org/gnome/Shell"),
        QStringLiteral("org.gnome.Shell.Extensions"), QStringLiteral("GetExtensionInfo"));
    message.setArguments({extensionName()});
    const QDBusMessage reply = bridge.bus().call(message, QDBus::Block, kCallTimeoutMs);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        return ExtensionState::Unknown;
    }
    const QVariantMap info = qdbus_cast<QVariantMap>(reply.arguments().constFirst());
    if (info.isEmpty()) {
        return ExtensionState::Missing;
    }
    switch (static_cast<int>(info.value(QStringLiteral("state")).toDouble())) {
        case kShellEnabled:
            return ExtensionState::Enabled;
        case kShellDisabled:
        case kShellInitialized:
            return ExtensionState::Disabled;
        case kShellError:
        case kShellOutOfDate:
            return ExtensionState::Failed;
        default:
            return ExtensionState::Unknown;
    }
}

CapabilityCheck GnomeSessionCheck::windowControlFor(const Facts& facts) {
    if (facts.answering && facts.refused) {
        return {Availability::Unavailable,
                QCoreApplication::translate(
                    "GnomeSessionCheck",
                    "Lattica's GNOME Shell extension answers only the running Lattica, and this copy is "
                    "not it. Quit the other copy of Lattica, then start Lattica again.")};
    }
    if (facts.answering) {
        return {Availability::Available, {}};
    }
    switch (facts.state) {
        case ExtensionState::Missing:
            return {Availability::Unavailable,
                    QCoreApplication::translate(
                        "GnomeSessionCheck",
                        "Lattica's GNOME Shell extension (%1) is not installed. GNOME lets only a Shell "
                        "extension move other applications' windows: install Lattica's package, log out "
                        "and back in once, then start Lattica again.")
                        .arg(extensionName())};
        case ExtensionState::Disabled:
            return {Availability::Unavailable,
                    QCoreApplication::translate(
                        "GnomeSessionCheck",
                        "Lattica's GNOME Shell extension is installed but turned off. Turn it on in the "
                        "Extensions application, or run: gnome-extensions enable %1")
                        .arg(extensionName())};
        case ExtensionState::Failed:
            return {Availability::Unavailable,
                    QCoreApplication::translate(
                        "GnomeSessionCheck",
                        "GNOME Shell could not start Lattica's extension (%1). Check that the installed "
                        "extension matches this version of GNOME, then log out and back in.")
                        .arg(extensionName())};
        case ExtensionState::Enabled:
        case ExtensionState::Unknown:
            break;
    }
    return {Availability::Unavailable,
            QCoreApplication::translate(
                "GnomeSessionCheck",
                "Lattica's GNOME Shell extension (%1) does not answer. Log out and back in, then start "
                "Lattica again.")
                .arg(extensionName())};
}

CapabilityCheck GnomeSessionCheck::screenCaptureFor(const Facts& facts) {
    if (!facts.answering || facts.refused) {
        return windowControlFor(facts);
    }
    if (facts.captured) {
        return {Availability::Available, {}};
    }
    return {Availability::Unavailable,
            QCoreApplication::translate("GnomeSessionCheck",
                                        "GNOME Shell did not take a picture of the monitors (%1): the panel shows "
                                        "each monitor without a preview. Log out and back in if Lattica's "
                                        "extension was updated since.")
                .arg(facts.captureProblem.isEmpty()
                         ? QCoreApplication::translate("GnomeSessionCheck", "no picture came back")
                         : facts.captureProblem)};
}

GnomeSessionCheck::Facts GnomeSessionCheck::facts() const {
    Facts facts;
    facts.answering = m_bridge.ping();
    if (!facts.answering) {
        facts.state = extensionState(m_bridge);
    } else {
        facts.state = ExtensionState::Enabled;
        facts.refused = !m_bridge.focusedWindow().has_value();
    }
    return facts;
}

CapabilityCheck GnomeSessionCheck::windowControl() {
    return windowControlFor(facts());
}

CapabilityCheck GnomeSessionCheck::screenCapture() {
    Facts facts = this->facts();
    if (facts.answering && !facts.refused) {
        const QList<Monitor> monitors = m_monitors.monitors();
        facts.captured = !monitors.isEmpty() && !m_monitors.capture(monitors.constFirst().id).isNull();
        facts.captureProblem = m_monitors.lastCaptureProblem();
    }
    return screenCaptureFor(facts);
}

QUrl GnomeSessionCheck::helpPage(Capability) {
    return {};
}
