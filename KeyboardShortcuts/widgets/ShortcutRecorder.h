// SPDX-License-Identifier: MIT
#pragma once

#include <QLineEdit>
#include <functional>
#include <memory>
#include <optional>

#include "KeyboardShortcuts/Name.h"
#include "KeyboardShortcuts/Shortcut.h"

class QAction;

namespace KeyboardShortcuts {

class ActionShortcuts;
class InputEvent;
class LocalEventMonitor;

// The control that records a global shortcut for a name: it shows the stored shortcut, starts
// recording when it receives focus, turns the next accepted key combination into the name's shortcut
// and stops. Global hot keys are paused while it records. A Tab, Escape or a click elsewhere ends
// recording; Delete or Backspace clears the shortcut.
class ShortcutRecorder : public QLineEdit {
    Q_OBJECT
public:
    using OnChange = std::function<void(std::optional<Shortcut>)>;
    static constexpr double minimumWidth = 130.0;
    // The response of the system-conflict alert's second button.
    static constexpr int forceUseResponse = 1001;

    ShortcutRecorder(ActionShortcuts& shortcuts, const Name& name, OnChange onChange = {}, QWidget* parent = nullptr);
    ~ShortcutRecorder() override;

    const Name& shortcutName() const { return m_shortcutName; }
    // Switching to another name shows that name's shortcut.
    void setShortcutName(const Name& name);
    bool isRecording() const;
    // Whether the control may take focus now (false just after its window opened or was activated).
    bool canBecomeKey() const { return m_canBecomeKey; }
    // The clear button; visible only when there is a shortcut to clear.
    QAction* cancelButton() const { return m_cancelButton; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool event(QEvent* event) override;

private:
    void setStringValue(const Name& name);
    void updateCancelButton();
    void startRecording();
    void endRecording();
    void giveUpFocus();
    void resumeRecording();
    bool handleEvent(const InputEvent& event);
    void preventBecomingKey();
    void clearShortcut();
    int runAlert(const QString& message, const QString& informativeText, bool offerForce);

    ActionShortcuts& m_shortcuts;
    OnChange m_onChange;
    bool m_canBecomeKey = false;
    std::unique_ptr<LocalEventMonitor> m_eventMonitor;
    Name m_shortcutName;
    QAction* m_cancelButton = nullptr;
    bool m_resuming = false;
};

}  // namespace KeyboardShortcuts
