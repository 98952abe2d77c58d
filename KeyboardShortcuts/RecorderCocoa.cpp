#include "KeyboardShortcuts/RecorderCocoa.h"

#include <QAction>
#include <QApplication>
#include <QFocusEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QStyle>
#include <QTimer>

#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"
#include "KeyboardShortcuts/HandlerTables.h"
#include "KeyboardShortcuts/InputEvent.h"
#include "KeyboardShortcuts/KeyboardShortcuts.h"
#include "KeyboardShortcuts/LocalEventMonitor.h"
#include "KeyboardShortcuts/Localization.h"
#include "KeyboardShortcuts/MenuItemShortcut.h"
#include "KeyboardShortcuts/Notifications.h"
#include "KeyboardShortcuts/Utilities.h"
#include "platform/HotKeys.h"
#include "platform/Platform.h"

namespace KeyboardShortcuts {

namespace {

// Modifier flags that count as "a modifier is held": everything but caps lock and the numeric pad.
constexpr unsigned int kAnyModifierMask = 0xFFDE0000;
// Control, option, command (and help): shift, caps lock, numeric pad and fn alone are not enough.
constexpr unsigned int kCommandLikeModifierMask = 0xFF5C0000;
// fn, command, option, control and caps lock.
constexpr unsigned int kOptionRuleMask = 0x9D0000;

bool isTab(const InputEvent& event) {
    return event.keyCode() == Key::tab.rawValue() || event.qtKey() == Qt::Key_Tab || event.qtKey() == Qt::Key_Backtab;
}

bool isDeleteKey(const InputEvent& event) {
    return event.keyCode() == Key::delete_.rawValue() || event.keyCode() == Key::deleteForward.rawValue() ||
           event.qtKey() == Qt::Key_Backspace || event.qtKey() == Qt::Key_Delete;
}

bool isFunctionKey(const InputEvent& event) {
    if (event.qtKey() >= Qt::Key_F1 && event.qtKey() <= Qt::Key_F35) {
        return true;
    }
    static const QList<Key> functionKeys = {Key::f1,  Key::f2,  Key::f3,  Key::f4,  Key::f5,  Key::f6,  Key::f7,
                                            Key::f8,  Key::f9,  Key::f10, Key::f11, Key::f12, Key::f13, Key::f14,
                                            Key::f15, Key::f16, Key::f17, Key::f18, Key::f19, Key::f20};
    return event.keyCode() && functionKeys.contains(Key(*event.keyCode()));
}

QString withoutMnemonic(QString text) {
    text.replace(QLatin1String("&&"), QLatin1String("\x01"));
    text.remove(QLatin1Char('&'));
    text.replace(QLatin1String("\x01"), QLatin1String("&"));
    return text;
}

}  // namespace

RecorderCocoa::RecorderCocoa(const Name& name, OnChange onChange, QWidget* parent)
    : QLineEdit(parent), m_onChange(std::move(onChange)), m_shortcutName(name) {
    // Typing never edits the text, and a read-only field draws no caret.
    setReadOnly(true);
    setPlaceholderText(localized("record_shortcut"));
    setAlignment(Qt::AlignCenter);
    setFocusPolicy(Qt::StrongFocus);
    setContextMenuPolicy(Qt::NoContextMenu);
    setAttribute(Qt::WA_InputMethodEnabled, false);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_cancelButton = addAction(style()->standardIcon(QStyle::SP_LineEditClearButton), QLineEdit::TrailingPosition);
    m_cancelButton->setObjectName(QStringLiteral("cancelButton"));
    connect(m_cancelButton, &QAction::triggered, this, [this] { clearShortcut(); });
    setStringValue(m_shortcutName);
    m_shortcutsNameChangeObserver =
        connect(&Notifications::shared(), &Notifications::shortcutByNameDidChange, this, [this](const Name& changed) {
            if (changed == m_shortcutName) {
                setStringValue(m_shortcutName);
            }
        });
}

RecorderCocoa::~RecorderCocoa() {
    endRecording();
}

void RecorderCocoa::setShortcutName(const Name& name) {
    const bool changed = !(name == m_shortcutName);
    m_shortcutName = name;
    if (changed) {
        setStringValue(m_shortcutName);
    }
}

bool RecorderCocoa::isRecording() const {
    return m_eventMonitor != nullptr;
}

QSize RecorderCocoa::sizeHint() const {
    return QSize(static_cast<int>(minimumWidth), QLineEdit::sizeHint().height());
}

QSize RecorderCocoa::minimumSizeHint() const {
    return sizeHint();
}

void RecorderCocoa::setStringValue(const Name& name) {
    const std::optional<Shortcut> shortcut = getShortcut(name);
    setText(shortcut ? shortcut->presentableDescription() : QString());
    updateCancelButton();
}

void RecorderCocoa::updateCancelButton() {
    m_cancelButton->setVisible(!text().isEmpty());
}

void RecorderCocoa::startRecording() {
    if (isRecording()) {
        return;
    }
    setPlaceholderText(localized("press_shortcut"));
    updateCancelButton();
    setPaused(true);
    Notifications::shared().postRecorderActiveStatusDidChange(true);
    QPointer<RecorderCocoa> self(this);
    m_eventMonitor = std::make_unique<LocalEventMonitor>(
        InputEvent::mask(InputEvent::keyDown) | InputEvent::mask(InputEvent::leftMouseUp) |
            InputEvent::mask(InputEvent::rightMouseUp),
        [self](const InputEvent& event) { return self.isNull() ? true : self->handleEvent(event); });
    m_eventMonitor->start();
}

void RecorderCocoa::endRecording() {
    if (!isRecording()) {
        return;
    }
    m_eventMonitor.reset();
    setPlaceholderText(localized("record_shortcut"));
    updateCancelButton();
    setPaused(false);
    Notifications::shared().postRecorderActiveStatusDidChange(false);
}

void RecorderCocoa::giveUpFocus() {
    m_resuming = false;
    endRecording();
    if (hasFocus() || window()->focusWidget() == this) {
        clearFocus();
    }
}

void RecorderCocoa::resumeRecording() {
    // The next focus, whatever brings it, starts recording again.
    m_resuming = true;
    if (isVisible() && !window()->isActiveWindow()) {
        // The alert's window had the focus; give it back to ours.
        window()->activateWindow();
    }
    setFocus(Qt::OtherFocusReason);
    if (hasFocus() && !isRecording()) {
        m_resuming = false;
        startRecording();
    }
}

void RecorderCocoa::preventBecomingKey() {
    m_canBecomeKey = false;
    QTimer::singleShot(0, this, [this] { m_canBecomeKey = true; });
}

void RecorderCocoa::clearShortcut() {
    setText(QString());
    setShortcut(std::nullopt, m_shortcutName);
    if (m_onChange) {
        m_onChange(std::nullopt);
    }
    updateCancelButton();
    resumeRecording();
}

bool RecorderCocoa::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::Show:
        case QEvent::WindowActivate:
            // The window opened or came back: do not start recording just because focus lands here.
            preventBecomingKey();
            break;
        case QEvent::WindowDeactivate:
            endRecording();
            QTimer::singleShot(0, this, [this] {
                if (hasFocus() && !isRecording()) {
                    clearFocus();
                }
            });
            break;
        case QEvent::Hide:
            endRecording();
            break;
        default:
            break;
    }
    return QLineEdit::event(event);
}

void RecorderCocoa::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    if (isRecording()) {
        return;
    }
    const bool automatic = event->reason() == Qt::ActiveWindowFocusReason || event->reason() == Qt::PopupFocusReason;
    if (!m_resuming && (!m_canBecomeKey || automatic)) {
        // Refuse: the window's first responder becomes nothing.
        QTimer::singleShot(0, this, [this] {
            if (hasFocus() && !isRecording()) {
                clearFocus();
            }
        });
        return;
    }
    m_resuming = false;
    startRecording();
}

void RecorderCocoa::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    endRecording();
}

void RecorderCocoa::keyPressEvent(QKeyEvent* event) {
    // Keys are read by the event monitor while recording; otherwise they belong to the window.
    event->ignore();
}

void RecorderCocoa::mousePressEvent(QMouseEvent* event) {
    QLineEdit::mousePressEvent(event);
    if (hasFocus() && !isRecording()) {
        startRecording();
    }
}

int RecorderCocoa::runAlert(const QString& message, const QString& informativeText, bool offerForce) {
    QWidget* host = window();
    QMessageBox alert(QMessageBox::Warning, QString(), message, QMessageBox::NoButton, host);
    alert.setObjectName(QStringLiteral("KeyboardShortcutsAlert"));
    alert.setInformativeText(informativeText);
    QPushButton* ok = alert.addButton(localized("ok"), QMessageBox::AcceptRole);
    QPushButton* force =
        offerForce ? alert.addButton(localized("force_use_shortcut"), QMessageBox::DestructiveRole) : nullptr;
    alert.setDefaultButton(ok);
    alert.setWindowModality(host != nullptr ? Qt::WindowModal : Qt::ApplicationModal);
    alert.exec();
    return force != nullptr && alert.clickedButton() == force ? forceUseResponse : forceUseResponse - 1;
}

bool RecorderCocoa::handleEvent(const InputEvent& event) {
    // 1. A click that ends outside the control (grown by 3 on every side) ends recording.
    if (event.type() == InputEvent::leftMouseUp || event.type() == InputEvent::rightMouseUp) {
        const QRectF bounds = QRectF(rect()).adjusted(-3, -3, 3, 3);
        if (!bounds.contains(mapFromGlobal(event.globalPosition()))) {
            giveUpFocus();
        }
        return true;
    }
    // 2. Only keys from here on.
    if (!event.isKey()) {
        return true;
    }
    const unsigned int flags = event.modifierFlags().toInt();
    const bool noModifier = (flags & kAnyModifierMask) == 0;
    // 3. Tab moves on and records nothing.
    if (noModifier && isTab(event)) {
        endRecording();
        return true;
    }
    // 4. Escape stops.
    if (noModifier && event.keyCode() == Key::escape.rawValue()) {
        giveUpFocus();
        return false;
    }
    // 5. Delete or backspace clears the shortcut.
    if (noModifier && isDeleteKey(event)) {
        clearShortcut();
        return false;
    }
    // 6. Without control, option or command only function keys are accepted.
    if ((flags & kCommandLikeModifierMask) == 0 && !isFunctionKey(event)) {
        beep();
        return false;
    }
    // 7.
    const std::optional<Shortcut> shortcut = Shortcut::fromEvent(event);
    if (!shortcut) {
        return false;
    }
    // 8. One of the application's own menu items or actions already uses it.
    const QList<QAction*> items = applicationMenuItems();
    if (!items.isEmpty()) {
        if (QAction* item = menuItemWithMatchingShortcut(items, *shortcut)) {
            giveUpFocus();
            runAlert(localized("keyboard_shortcut_used_by_menu_item").arg(withoutMnemonic(item->text())), QString(),
                     false);
            resumeRecording();
            return false;
        }
    }
    // 9. Systems that refuse option-only hot keys.
    HotKeys* hotKeys = Platform::services().hotKeys;
    if (hotKeys != nullptr && hotKeys->restrictsOptionOnlyHotKeys() &&
        (shortcut->modifiers().toInt() & kOptionRuleMask) == static_cast<unsigned int>(ModifierFlag::option)) {
        giveUpFocus();
        runAlert(localized("keyboard_shortcut_disallowed"), QString(), false);
        resumeRecording();
        return false;
    }
    // 10. The system (or another program) holds it; F12 alone is exempt.
    const bool isPlainF12 = shortcut->carbonKeyCode() == Key::f12.rawValue() && shortcut->carbonModifiers() == 0;
    if (!isPlainF12 && !CarbonKeyboardShortcuts::system({*shortcut}).isEmpty()) {
        giveUpFocus();
        const int response = runAlert(localized("keyboard_shortcut_used_by_system"),
                                      localized("keyboard_shortcuts_can_be_changed"), true);
        resumeRecording();
        if (response != forceUseResponse) {
            return false;
        }
    }
    // 11. Accept.
    setText(shortcut->presentableDescription());
    updateCancelButton();
    userDefaultsSet(m_shortcutName, *shortcut);
    if (m_onChange) {
        m_onChange(*shortcut);
    }
    giveUpFocus();
    return false;
}

}  // namespace KeyboardShortcuts
