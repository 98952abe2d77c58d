// SPDX-License-Identifier: MIT
#include "app/commands/MoveShortcuts.h"

#include <QCoreApplication>
#include <QPointer>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/commands/CommandService.h"

namespace {

struct FocusedMove {
    const char* name;
    const char* label;
    const char* target;
};

constexpr FocusedMove kFocusedMoves[] = {
    {"moveFocusedWindowToNextDisplay", QT_TRANSLATE_NOOP("MoveShortcuts", "Move focused window to next monitor"),
     "next"},
    {"moveFocusedWindowToPreviousDisplay",
     QT_TRANSLATE_NOOP("MoveShortcuts", "Move focused window to previous monitor"), "previous"},
    {"moveFocusedWindowToLeftDisplay", QT_TRANSLATE_NOOP("MoveShortcuts", "Move focused window to left monitor"),
     "left"},
    {"moveFocusedWindowToRightDisplay", QT_TRANSLATE_NOOP("MoveShortcuts", "Move focused window to right monitor"),
     "right"},
};

}  // namespace

QList<MoveShortcuts::Action> MoveShortcuts::focusedWindowActions() {
    QList<Action> actions;
    for (const FocusedMove& move : kFocusedMoves) {
        actions.append({QString::fromLatin1(move.name), tr(move.label)});
    }
    return actions;
}

MoveShortcuts::Action MoveShortcuts::openPanelAction() {
    return {QStringLiteral("openPanel"), tr("Open panel")};
}

QString MoveShortcuts::swapName(const QString& firstID, const QString& secondID) {
    const auto [low, high] = std::minmax(firstID, secondID);
    return QStringLiteral("swapWindowsOfDisplays.%1.%2").arg(low, high);
}

QList<MoveShortcuts::Action> MoveShortcuts::swapActions(const QList<ShortcutDisplayItem>& connected) {
    QList<ShortcutDisplayItem> ordered = connected;
    std::stable_sort(ordered.begin(), ordered.end(), [](const ShortcutDisplayItem& a, const ShortcutDisplayItem& b) {
        return a.index.value_or(0) < b.index.value_or(0);
    });
    QList<Action> actions;
    for (qsizetype i = 0; i < ordered.size(); ++i) {
        for (qsizetype j = i + 1; j < ordered.size(); ++j) {
            const QString first = ordered[i].index ? QString::number(*ordered[i].index) : ordered[i].name;
            const QString second = ordered[j].index ? QString::number(*ordered[j].index) : ordered[j].name;
            actions.append(
                {swapName(ordered[i].id, ordered[j].id), tr("Swap windows of monitors %1 and %2").arg(first, second)});
        }
    }
    return actions;
}

MoveShortcuts::MoveShortcuts(KeyboardShortcuts::ActionShortcuts& shortcuts, const CommandService& commands,
                             std::function<void()> openPanel, QObject* parent)
    : QObject(parent), m_shortcuts(shortcuts), m_commands(commands), m_openPanel(std::move(openPanel)) {
    for (const FocusedMove& move : kFocusedMoves) {
        const QString target = QString::fromLatin1(move.target);
        attach(QString::fromLatin1(move.name),
               [this, target] { return m_commands.moveFocused(target, SizeMode::Preference); });
    }
    attach(openPanelAction().name, {});
}

MoveShortcuts::~MoveShortcuts() {
    for (const QString& name : std::as_const(m_attached)) {
        m_shortcuts.removeHandler(KeyboardShortcuts::Name(name));
    }
}

void MoveShortcuts::attach(const QString& name, std::function<CommandResult()> move) {
    QPointer<MoveShortcuts> weakSelf(this);
    m_shortcuts.onKeyUp(KeyboardShortcuts::Name(name), [weakSelf, move = std::move(move)] {
        if (!weakSelf) {
            return;
        }
        // The move runs after the key event has been handled.
        QMetaObject::invokeMethod(
            weakSelf,
            [weakSelf, move] {
                if (!weakSelf) {
                    return;
                }
                if (!move) {
                    if (weakSelf->m_openPanel) {
                        weakSelf->m_openPanel();
                    }
                    return;
                }
                Q_EMIT weakSelf->moveFinished(move());
            },
            Qt::QueuedConnection);
    });
    m_attached.insert(name);
}

void MoveShortcuts::refresh(const QList<ShortcutDisplayItem>& connected) {
    QHash<QString, std::pair<QString, QString>> wanted;
    for (qsizetype i = 0; i < connected.size(); ++i) {
        for (qsizetype j = i + 1; j < connected.size(); ++j) {
            wanted.insert(swapName(connected[i].id, connected[j].id), {connected[i].id, connected[j].id});
        }
    }
    for (const QString& name : std::as_const(m_swapsAttached)) {
        if (!wanted.contains(name)) {
            m_shortcuts.removeHandler(KeyboardShortcuts::Name(name));
            m_attached.remove(name);
        }
    }
    QSet<QString> attached;
    for (auto it = wanted.cbegin(); it != wanted.cend(); ++it) {
        attached.insert(it.key());
        if (m_swapsAttached.contains(it.key())) {
            continue;
        }
        const auto [first, second] = it.value();
        attach(it.key(), [this, first, second] { return m_commands.swap(first, second, SizeMode::Preference); });
    }
    m_swapsAttached = attached;
}
