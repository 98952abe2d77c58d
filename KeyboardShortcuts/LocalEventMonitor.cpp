// SPDX-License-Identifier: MIT
#include "KeyboardShortcuts/LocalEventMonitor.h"

#include <QCoreApplication>
#include <QEvent>

namespace KeyboardShortcuts {

namespace {

// The application event filter behind a started monitor.
class EventFilter : public QObject {
public:
    EventFilter(quint64 events, LocalEventMonitor::Callback callback)
        : m_events(events), m_callback(std::move(callback)) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool wantsKeys =
            (m_events & (InputEvent::mask(InputEvent::keyDown) | InputEvent::mask(InputEvent::keyUp)));
        if (event->type() == QEvent::ShortcutOverride && wantsKeys) {
            // Claim the key for the focused widget so that no application shortcut acts on it; the
            // key press that follows reaches the callback.
            event->accept();
            return true;
        }
        // Input events reach their window first and are then handed to widgets: look at them once.
        if (!watched->isWindowType()) {
            return false;
        }
        const std::optional<InputEvent> input = InputEvent::fromQEvent(event);
        if (!input || (m_events & InputEvent::mask(input->type())) == 0) {
            return false;
        }
        // Copy: the callback may stop and release the monitor.
        const LocalEventMonitor::Callback callback = m_callback;
        return !callback(*input);
    }

private:
    quint64 m_events;
    LocalEventMonitor::Callback m_callback;
};

}  // namespace

LocalEventMonitor::LocalEventMonitor(quint64 events, Callback callback)
    : m_events(events), m_callback(std::move(callback)) {}

LocalEventMonitor::~LocalEventMonitor() {
    stop();
}

void LocalEventMonitor::start() {
    QCoreApplication* application = QCoreApplication::instance();
    if (application == nullptr || m_monitor) {
        return;
    }
    auto* filter = new EventFilter(m_events, m_callback);
    filter->setParent(application);
    application->installEventFilter(filter);
    m_monitor = filter;
}

void LocalEventMonitor::stop() {
    if (m_monitor) {
        QCoreApplication::instance()->removeEventFilter(m_monitor);
        // Deleted later: stop() may run inside the filter's own callback.
        m_monitor->deleteLater();
        m_monitor = nullptr;
    }
}

}  // namespace KeyboardShortcuts
