// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <functional>

#include "KeyboardShortcuts/InputEvent.h"

namespace KeyboardShortcuts {

// Sees the application's own keyboard and mouse events of the chosen types before any window or
// widget does, while started. The callback answers true to let an event through, false to swallow it.
class LocalEventMonitor {
public:
    using Callback = std::function<bool(const InputEvent& event)>;

    // events: a mask of InputEvent::mask(type) bits.
    LocalEventMonitor(quint64 events, Callback callback);
    // Releasing the monitor removes it if it is still installed.
    ~LocalEventMonitor();
    LocalEventMonitor(const LocalEventMonitor&) = delete;
    LocalEventMonitor& operator=(const LocalEventMonitor&) = delete;

    void start();
    void stop();
    bool isStarted() const { return !m_monitor.isNull(); }
    quint64 events() const { return m_events; }

private:
    quint64 m_events;
    Callback m_callback;
    // The installed application event filter; it belongs to the application object.
    QPointer<QObject> m_monitor;
};

}  // namespace KeyboardShortcuts
