#pragma once

#include <QObject>
#include <QPointer>
#include <functional>

#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "KeyboardShortcuts/Name.h"

class QAbstractButton;
class QAction;

namespace KeyboardShortcuts {

// Gives a button or action the keyboard shortcut stored for a name, follows changes of it, and drops
// it while any recorder records (so that the recorder receives the keys). It belongs to its target.
class GlobalKeyboardShortcutViewModifier : public QObject {
    Q_OBJECT
public:
    GlobalKeyboardShortcutViewModifier(QAction* target, const Name& name);
    GlobalKeyboardShortcutViewModifier(QAbstractButton* target, const Name& name);

    const Name& name() const { return m_name; }
    bool isRecorderActive() const { return m_isRecorderActive; }

private:
    void observe();
    void apply();

    Name m_name;
    bool m_isRecorderActive = false;
    QPointer<QAction> m_action;
    QPointer<QAbstractButton> m_button;
};

// Attaches the modifier to a target; returns it (owned by the target).
GlobalKeyboardShortcutViewModifier* globalKeyboardShortcut(QAction* target, const Name& name);
GlobalKeyboardShortcutViewModifier* globalKeyboardShortcut(QAbstractButton* target, const Name& name);

// Calls perform for each key event of the name for as long as the owner lives (only events of one type
// when a type is given). Returns the subscription, owned by the owner.
EventStream* onKeyboardShortcut(QObject* owner, const Name& name, std::function<void(EventType)> perform);
EventStream* onKeyboardShortcut(QObject* owner, const Name& name, EventType type,
                                std::function<void(EventType)> perform);

}  // namespace KeyboardShortcuts
