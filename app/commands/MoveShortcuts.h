// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <functional>

#include "app/commands/CommandResult.h"
#include "app/model/Models.h"

class CommandService;
namespace KeyboardShortcuts {
class ActionShortcuts;
}

// The global shortcuts for moves that are not tied to one display: the focused window to the next,
// previous, left or right monitor, the windows of two monitors swapped, and the panel opened. They are
// stored like the per-display ones, under "KeyboardShortcuts_" + the action's name, and run the same
// commands as the command line, on key release, after the key event has been handled.
class MoveShortcuts : public QObject {
    Q_OBJECT
public:
    // A shortcut the settings window offers: its stored name and what the row says.
    struct Action {
        QString name;
        QString label;

        bool operator==(const Action&) const = default;
    };

    // Next, previous, left and right, in that order.
    static QList<Action> focusedWindowActions();
    static Action openPanelAction();
    // One action for each pair of the connected displays, in index order: "Swap windows of monitors 1 and 2".
    static QList<Action> swapActions(const QList<ShortcutDisplayItem>& connected);
    // "swapWindowsOfDisplays." + the two persistent identifiers in sorted order, so that a pair keeps its
    // shortcut whichever display is numbered first.
    static QString swapName(const QString& firstID, const QString& secondID);

    MoveShortcuts(KeyboardShortcuts::ActionShortcuts& shortcuts, const CommandService& commands,
                  std::function<void()> openPanel, QObject* parent = nullptr);
    ~MoveShortcuts() override;
    MoveShortcuts(const MoveShortcuts&) = delete;
    MoveShortcuts& operator=(const MoveShortcuts&) = delete;

    // Attaches the swap handlers for the pairs of the connected displays; pairs no longer connected lose
    // theirs (their stored shortcuts stay, for when both displays are back).
    void refresh(const QList<ShortcutDisplayItem>& connected);

Q_SIGNALS:
    // A shortcut's move ran; the result carries the status message.
    void moveFinished(const CommandResult& result);

private:
    void attach(const QString& name, std::function<CommandResult()> move);

    KeyboardShortcuts::ActionShortcuts& m_shortcuts;
    const CommandService& m_commands;
    std::function<void()> m_openPanel;
    QSet<QString> m_attached;
    QSet<QString> m_swapsAttached;
};
