// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <variant>

// System-wide hot keys. A combination is given as it is stored: a Carbon virtual key code (a physical
// key position) and Carbon modifier bits.
class HotKeys : public QObject {
    Q_OBJECT
public:
    // Names one registration; never 0, and never handed out twice by one service.
    using RegistrationId = quint64;

    // Why a combination could not be registered.
    enum class Error {
        takenByAnotherClient,  // another client already holds it
        unsupportedKey,        // the key has no equivalent on this system
        unsupportedModifier,   // one of the modifiers has none (function)
        other,                 // any other refusal; Failure::code says which
    };
    struct Failure {
        Error error = Error::other;
        // The system's own error code when error is other (on X11 the X error code), else 0.
        int code = 0;
        bool operator==(const Failure&) const = default;
    };
    // A registration id, or why there is none.
    using Registration = std::variant<RegistrationId, Failure>;

    HotKeys() = default;
    ~HotKeys() override = default;
    HotKeys(const HotKeys&) = delete;
    HotKeys& operator=(const HotKeys&) = delete;

    // Registers the combination system-wide; its presses and releases are then reported under the id.
    virtual Registration registerHotKey(quint32 carbonKeyCode, quint32 carbonModifiers) = 0;
    // Releases a registration; unknown ids are ignored.
    virtual void unregisterHotKey(RegistrationId id) = 0;
    // Whether another client already holds this combination system-wide (the system's own shortcuts).
    virtual bool isHeldByAnotherClient(quint32 carbonKeyCode, quint32 carbonModifiers) = 0;
    // Whether option (alone or with shift) may not be a hot key's only modifier on this system.
    virtual bool restrictsOptionOnlyHotKeys() const { return false; }

Q_SIGNALS:
    // A registered hot key went down or came up (auto-repeat never produces extra presses or releases).
    void pressed(HotKeys::RegistrationId id);
    void released(HotKeys::RegistrationId id);
};
