// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

class QWidget;

namespace KeyboardShortcuts {

class ActionShortcuts;

// Tells when the application's menus and other popups (the tray panel, say) open and close: the first
// one shown begins tracking, the last one hidden ends it. A popup holds the keyboard grabbed while it is
// open, so hot keys cannot fire then: the watcher tells the shortcuts, which listen to raw keys instead
// while one is open. Watches the application object's events from construction, when one exists.
class MenuWatcher : public QObject {
    Q_OBJECT
public:
    explicit MenuWatcher(ActionShortcuts& shortcuts);
    ~MenuWatcher() override;

    // Whether any of the application's menus or popups is visible now.
    bool isAnyMenuOpen() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ActionShortcuts& m_shortcuts;
    QList<QPointer<QWidget>> m_openPopups;
};

}  // namespace KeyboardShortcuts
