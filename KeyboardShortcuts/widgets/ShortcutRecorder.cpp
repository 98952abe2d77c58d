// SPDX-License-Identifier: MIT
#include "KeyboardShortcuts/widgets/ShortcutRecorder.h"

#include <QAction>
#include <QApplication>
#include <QFocusEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QStyle>
#include <QTimer>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "KeyboardShortcuts/InputEvent.h"
#include "KeyboardShortcuts/LocalEventMonitor.h"
#include "KeyboardShortcuts/ShortcutRules.h"
#include "KeyboardShortcuts/widgets/Beep.h"
#include "KeyboardShortcuts/widgets/MenuItemShortcut.h"

namespace KeyboardShortcuts {

namespace {

// Modifier flags that count as "a modifier is held": everything but caps lock and the numeric pad.
constexpr unsigned int kAnyModifierMask = 0xFFDE0000;
// Control, option, command (and help): shift, caps lock, numeric pad and fn alone are not enough.
constexpr unsigned int kCommandLikeModifierMask = 0xFF5C0000;

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
    return event.keyCode() && ShortcutRules::isFunctionKey(Key(*event.keyCode()));
}

QString withoutMnemonic(QString text) {
    text.replace(QLatin1String("&&"), QLatin1String("\x01"));
    text.remove(QLatin1Char('&'));
    text.replace(QLatin1String("\x01"), QLatin1String("&"));
    return text;
}

}  // namespace

ShortcutRecorder::ShortcutRecorder(ActionShortcuts& shortcuts, const Name& name, OnChange onChange, QWidget* parent)
    : QLineEdit(parent), m_shortcuts(shortcuts), m_onChange(std::move(onChange)), m_shortcutName(name) {
    // Typing never edits the text, and a read-only field draws no caret.
    setReadOnly(true);
    setPlaceholderText(tr("Record Shortcut"));
    setAlignment(Qt::AlignCenter);
    setFocusPolicy(Qt::StrongFocus);
    setContextMenuPolicy(Qt::NoContextMenu);
    setAttribute(Qt::WA_InputMethodEnabled, false);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_cancelButton = addAction(style()->standardIcon(QStyle::SP_LineEditClearButton), QLineEdit::TrailingPosition);
    m_cancelButton->setObjectName(QStringLiteral("cancelButton"));
    connect(m_cancelButton, &QAction::triggered, this, [this] { clearShortcut(); });
    setStringValue(m_shortcutName);
    connect(&m_shortcuts, &ActionShortcuts::shortcutChanged, this, [this](const Name& changed) {
        if (changed == m_shortcutName) {
            setStringValue(m_shortcutName);
        }
    });
}

ShortcutRecorder::~ShortcutRecorder() {
    endRecording();
}

void ShortcutRecorder::setShortcutName(const Name& name) {
    const bool changed = !(name == m_shortcutName);
    m_shortcutName = name;
    if (changed) {
        setStringValue(m_shortcutName);
    }
}

bool ShortcutRecorder::isRecording() const {
    return m_eventMonitor != nullptr;
}

QSize ShortcutRecorder::sizeHint() const {
    // Wide enough for the longer prompt in the user's language, and never narrower than the usual field.
    const QFontMetrics metrics = fontMetrics();
    const int prompt =
        std::max(metrics.horizontalAdvance(tr("Record Shortcut")), metrics.horizontalAdvance(tr("Press Shortcut")));
    const int frame = 2 * style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, this);
    constexpr int kTextPadding = 12;
    return QSize(std::max(static_cast<int>(minimumWidth), prompt + frame + kTextPadding),
                 QLineEdit::sizeHint().height());
}

QSize ShortcutRecorder::minimumSizeHint() const {
    return sizeHint();
}

void ShortcutRecorder::setStringValue(const Name& name) {
    const std::optional<Shortcut> shortcut = m_shortcuts.shortcut(name);
    setText(shortcut ? shortcut->presentableDescription() : QString());
    updateCancelButton();
}

void ShortcutRecorder::updateCancelButton() {
    m_cancelButton->setVisible(!text().isEmpty());
}

void ShortcutRecorder::startRecording() {
    if (isRecording()) {
        return;
    }
    setPlaceholderText(tr("Press Shortcut"));
    updateCancelButton();
    m_shortcuts.setPaused(true);
    QPointer<ShortcutRecorder> self(this);
    m_eventMonitor = std::make_unique<LocalEventMonitor>(
        InputEvent::mask(InputEvent::keyDown) | InputEvent::mask(InputEvent::leftMouseUp) |
            InputEvent::mask(InputEvent::rightMouseUp),
        [self](const InputEvent& event) { return self.isNull() ? true : self->handleEvent(event); });
    m_eventMonitor->start();
}

void ShortcutRecorder::endRecording() {
    if (!isRecording()) {
        return;
    }
    m_eventMonitor.reset();
    setPlaceholderText(tr("Record Shortcut"));
    updateCancelButton();
    m_shortcuts.setPaused(false);
}

void ShortcutRecorder::giveUpFocus() {
    m_resuming = false;
    endRecording();
    if (hasFocus() || window()->focusWidget() == this) {
        clearFocus();
    }
}

void ShortcutRecorder::resumeRecording() {
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

void ShortcutRecorder::preventBecomingKey() {
    m_canBecomeKey = false;
    QTimer::singleShot(0, this, [this] { m_canBecomeKey = true; });
}

void ShortcutRecorder::clearShortcut() {
    setText(QString());
    m_shortcuts.setShortcut(std::nullopt, m_shortcutName);
    if (m_onChange) {
        m_onChange(std::nullopt);
    }
    updateCancelButton();
    resumeRecording();
}

bool ShortcutRecorder::event(QEvent* event) {
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

void ShortcutRecorder::focusInEvent(QFocusEvent* event) {
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

void ShortcutRecorder::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    endRecording();
}

void ShortcutRecorder::keyPressEvent(QKeyEvent* event) {
    // Keys are read by the event monitor while recording; otherwise they belong to the window.
    event->ignore();
}

void ShortcutRecorder::mousePressEvent(QMouseEvent* event) {
    QLineEdit::mousePressEvent(event);
    if (hasFocus() && !isRecording()) {
        startRecording();
    }
}

int ShortcutRecorder::runAlert(const QString& message, const QString& informativeText, bool offerForce) {
    QWidget* host = window();
    QMessageBox alert(QMessageBox::Warning, QString(), message, QMessageBox::NoButton, host);
    alert.setObjectName(QStringLiteral("KeyboardShortcutsAlert"));
    alert.setInformativeText(informativeText);
    QPushButton* ok = alert.addButton(tr("OK"), QMessageBox::AcceptRole);
    QPushButton* force = offerForce ? alert.addButton(tr("Use Anyway"), QMessageBox::DestructiveRole) : nullptr;
    alert.setDefaultButton(ok);
    alert.setWindowModality(host != nullptr ? Qt::WindowModal : Qt::ApplicationModal);
    alert.exec();
    return force != nullptr && alert.clickedButton() == force ? forceUseResponse : forceUseResponse - 1;
}

bool ShortcutRecorder::handleEvent(const InputEvent& event) {
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
            runAlert(tr("This keyboard shortcut cannot be used as it’s already used by the “%1” menu "
                        "item.")
                         .arg(withoutMnemonic(item->text())),
                     QString(), false);
            resumeRecording();
            return false;
        }
    }
    // 9. Systems that refuse option-only hot keys.
    if (m_shortcuts.hotKeys().restrictsOptionOnlyHotKeys() && ShortcutRules::isOptionOnly(*shortcut)) {
        giveUpFocus();
        runAlert(tr("This keyboard shortcut cannot be used because it only uses the Alt key. "
                    "Add Super, Ctrl or Shift to it."),
                 QString(), false);
        resumeRecording();
        return false;
    }
    // 10. The system (or another program) holds it; F12 alone is exempt.
    const bool isPlainF12 = shortcut->carbonKeyCode() == Key::f12.rawValue() && shortcut->carbonModifiers() == 0;
    if (!isPlainF12 && !m_shortcuts.hotKeys().heldByOthers({*shortcut}).isEmpty()) {
        giveUpFocus();
        const int response =
            runAlert(tr("This keyboard shortcut cannot be used as it’s already a system-wide keyboard shortcut."),
                     tr("Most system-wide keyboard shortcuts can be changed in the settings of your desktop "
                        "environment."),
                     true);
        resumeRecording();
        if (response != forceUseResponse) {
            return false;
        }
    }
    // 11. Accept.
    setText(shortcut->presentableDescription());
    updateCancelButton();
    m_shortcuts.setShortcut(*shortcut, m_shortcutName);
    if (m_onChange) {
        m_onChange(*shortcut);
    }
    giveUpFocus();
    return false;
}

}  // namespace KeyboardShortcuts
