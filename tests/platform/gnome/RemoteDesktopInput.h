// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QString>

// Presses keys and moves and clicks the pointer as a keyboard and a mouse would, through a session of
// Mutter's org.gnome.Mutter.RemoteDesktop.
class RemoteDesktopInput {
public:
    static constexpr int kEvdevLeftControl = 29;
    static constexpr int kEvdevLeftAlt = 56;
    static constexpr int kEvdevTwo = 3;
    static constexpr int kEvdevLeftShift = 42;

    ~RemoteDesktopInput();
    // Creates and starts the session; false with Mutter's error in error() when it refuses.
    bool start();
    // Sends one key's press or release; true once Mutter has taken it.
    bool send(int evdevCode, bool pressed);
    // Puts the pointer on a point of the desktop, in the Shell's logical coordinates (without a screen
    // cast, Mutter takes relative motion only): the first time in the process pushed against the top
    // left corner and moved from there, later moved from the point it was put on last. Only these
    // objects may move the pointer meanwhile.
    bool movePointerTo(QPoint point);
    // Presses and releases the left button where the pointer is.
    bool click();
    QString error() const { return m_error; }

private:
    bool notify(const QString& method, const QVariantList& arguments);

    QString m_session;
    QString m_error;
};
