// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QSet>
#include <functional>

// Barriers on the input Mutter has handled, through its idle monitor (org.gnome.Mutter.IdleMonitor),
// which lives in the Shell's process and sends its signals on the Shell's own bus connection. A signal
// the Shell sent before one of these barriers has therefore reached this process before the barrier.
class InputBarrier : public QObject {
    Q_OBJECT
public:
    InputBarrier();
    ~InputBarrier() override;

    // Runs send (one input event) and waits until Mutter has handled the event: the user is active again.
    bool afterHandled(const std::function<bool()>& send, int timeoutMs = 5000);
    // Waits until no input has come for milliseconds of the compositor's own time.
    bool afterIdle(int milliseconds, int timeoutMs = 5000);

private Q_SLOTS:
    void watchFired(uint id);

private:
    uint addWatch(const QString& method, const QVariantList& arguments);
    void removeWatch(uint id);
    bool waitFor(uint id, int timeoutMs);

    QSet<uint> m_fired;
};
