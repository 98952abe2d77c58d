#pragma once

#include <QObject>
#include <functional>

namespace KeyboardShortcuts {

// Watches the application's key events before any window or menu sees them, while started. The
// callback gets (Carbon key code, Carbon modifiers, kind 1 down / 3 up) and answers 0 to swallow
// the event. Used while a menu holds the keyboard.
class RawKeyMonitor : public QObject {
    Q_OBJECT
public:
    using Callback = std::function<int(int keyCode, int carbonModifiers, int kind)>;

    explicit RawKeyMonitor(Callback callback);
    ~RawKeyMonitor() override;

    void start();
    void stop();
    bool isActive() const { return m_active; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Callback m_callback;
    bool m_active = false;
};

}  // namespace KeyboardShortcuts
