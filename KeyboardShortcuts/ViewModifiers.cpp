#include "KeyboardShortcuts/ViewModifiers.h"

#include <QAbstractButton>
#include <QAction>

#include "KeyboardShortcuts/Notifications.h"

namespace KeyboardShortcuts {

GlobalKeyboardShortcutViewModifier::GlobalKeyboardShortcutViewModifier(QAction* target, const Name& name)
    : QObject(target), m_name(name), m_action(target) {
    observe();
    apply();
}

GlobalKeyboardShortcutViewModifier::GlobalKeyboardShortcutViewModifier(QAbstractButton* target, const Name& name)
    : QObject(target), m_name(name), m_button(target) {
    observe();
    apply();
}

void GlobalKeyboardShortcutViewModifier::observe() {
    connect(&Notifications::shared(), &Notifications::shortcutByNameDidChange, this, [this](const Name&) {
        // Any change re-reads the stored shortcut.
        apply();
    });
    connect(&Notifications::shared(), &Notifications::recorderActiveStatusDidChange, this, [this](bool isActive) {
        m_isRecorderActive = isActive;
        apply();
    });
}

void GlobalKeyboardShortcutViewModifier::apply() {
    QKeySequence sequence;
    if (!m_isRecorderActive) {
        if (const std::optional<Shortcut> shortcut = getShortcut(m_name)) {
            sequence = shortcut->toSwiftUI().value_or(QKeySequence());
        }
    }
    if (m_action) {
        m_action->setShortcut(sequence);
    }
    if (m_button) {
        m_button->setShortcut(sequence);
    }
}

GlobalKeyboardShortcutViewModifier* globalKeyboardShortcut(QAction* target, const Name& name) {
    return new GlobalKeyboardShortcutViewModifier(target, name);
}

GlobalKeyboardShortcutViewModifier* globalKeyboardShortcut(QAbstractButton* target, const Name& name) {
    return new GlobalKeyboardShortcutViewModifier(target, name);
}

EventStream* onKeyboardShortcut(QObject* owner, const Name& name, std::function<void(EventType)> perform) {
    EventStream* stream = events(name, owner);
    QObject::connect(stream, &EventStream::event, stream, std::move(perform));
    return stream;
}

EventStream* onKeyboardShortcut(QObject* owner, const Name& name, EventType type,
                                std::function<void(EventType)> perform) {
    EventStream* stream = events(type, name, owner);
    QObject::connect(stream, &EventStream::event, stream, std::move(perform));
    return stream;
}

}  // namespace KeyboardShortcuts
