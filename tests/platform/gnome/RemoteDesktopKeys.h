// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

// Presses keys as a keyboard would, through a session of Mutter's org.gnome.Mutter.RemoteDesktop.
class RemoteDesktopKeys {
public:
    static constexpr int kEvdevLeftControl = 29;
    static constexpr int kEvdevLeftAlt = 56;
    static constexpr int kEvdevTwo = 3;

    ~RemoteDesktopKeys();
    // Creates and starts the session; false with Mutter's error in error() when it refuses.
    bool start();
    // Sends one key's press or release; true once Mutter has taken it.
    bool send(int evdevCode, bool pressed);
    QString error() const { return m_error; }

private:
    QString m_session;
    QString m_error;
};
