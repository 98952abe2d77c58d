#pragma once

#include <QWidget>

#include "app/model/Models.h"

class QLabel;
class QToolButton;

namespace KeyboardShortcuts {
class ActionShortcuts;
class ShortcutRecorder;
}  // namespace KeyboardShortcuts

// One display's shortcut row: its label, the recorder for its shortcut name, and for a display that is
// not connected a button that forgets the mapping.
class ShortcutRecorderRow : public QWidget {
    Q_OBJECT
public:
    ShortcutRecorderRow(const ShortcutDisplayItem& item, KeyboardShortcuts::ActionShortcuts& shortcuts,
                        QWidget* parent = nullptr);

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
    ShortcutDisplayItem m_item;
    QLabel* m_label = nullptr;
    KeyboardShortcuts::ShortcutRecorder* m_recorder = nullptr;
    QToolButton* m_deleteButton = nullptr;
};
