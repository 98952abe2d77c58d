// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include "app/model/Models.h"

class QLabel;
class QToolButton;

namespace KeyboardShortcuts {
class ActionShortcuts;
class ShortcutRecorder;
}  // namespace KeyboardShortcuts

// One shortcut's row: its label and the recorder for its shortcut name. A display's row records the
// display's shortcut and, for a display that is not connected, has a button that forgets the mapping.
class ShortcutRecorderRow : public QWidget {
    Q_OBJECT
public:
    ShortcutRecorderRow(const ShortcutDisplayItem& item, KeyboardShortcuts::ActionShortcuts& shortcuts,
                        QWidget* parent = nullptr);
    // A row for a named action that is not a display's, e.g. "Open panel".
    ShortcutRecorderRow(const QString& label, const QString& shortcutName,
                        KeyboardShortcuts::ActionShortcuts& shortcuts, QWidget* parent = nullptr);

    // "2. Studio Display" when the display has an index, the bare name otherwise.
    static QString labelText(const ShortcutDisplayItem& item);

    const ShortcutDisplayItem& item() const { return m_item; }
    QString labelShown() const;
    KeyboardShortcuts::ShortcutRecorder* recorder() const { return m_recorder; }
    // Null on connected rows.
    QToolButton* deleteButton() const { return m_deleteButton; }

Q_SIGNALS:
    void deleteRequested(const QString& persistentID);

private:
    // The label and recorder every row has; the layout is returned for what a row adds.
    class QHBoxLayout* build(const QString& label, const QString& shortcutName,
                             KeyboardShortcuts::ActionShortcuts& shortcuts);

    ShortcutDisplayItem m_item;
    QLabel* m_label = nullptr;
    KeyboardShortcuts::ShortcutRecorder* m_recorder = nullptr;
    QToolButton* m_deleteButton = nullptr;
};
