// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>

#include "app/model/Models.h"

class Preferences;
namespace KeyboardShortcuts {
class ActionShortcuts;
}

// The displays that per-display shortcuts are bound to: one record for every display ever connected
// (until the user deletes an unplugged one), stored in the preferences, and one key-up handler per record
// that asks for the focused window to be moved there.
class DisplayShortcuts : public QObject {
    Q_OBJECT
public:
    DisplayShortcuts(Preferences& preferences, KeyboardShortcuts::ActionShortcuts& shortcuts,
                     QObject* parent = nullptr);

    // The shortcut name of a display: "moveFocusedWindowToDisplay." + its persistent identifier.
    static QString shortcutName(const QString& persistentID);

    // Reads the stored records; an undecodable value is kept aside and reads as none.
    void load();
    // Updates the records from the connected displays (new ones added, names and positions refreshed, the
    // record of a display's former identifier taken over), sorts them by last known position then name,
    // stores them and registers their handlers.
    void refresh(const QList<DisplayDescriptor>& connected);
    // Forgets an unplugged display: its record, its shortcut and its handler. False when the display is not
    // one of the disconnected ones.
    bool forgetDisconnected(const QString& persistentID);
    // Whether any remembered display has a shortcut the user can press.
    bool hasAssignedShortcuts() const;

    const QList<ShortcutDisplayItem>& connected() const { return m_connected; }
    const QList<ShortcutDisplayItem>& disconnected() const { return m_disconnected; }
    const QList<ShortcutDisplayRecord>& records() const { return m_records; }
    const QSet<QString>& registeredIDs() const { return m_registeredIDs; }

Q_SIGNALS:
    // A display's shortcut was released. Emitted after the key event has been handled.
    void moveRequested(const QString& persistentID);

private:
    void save();
    // A display that settings stored by earlier versions know by another identifier gets the record and the
    // shortcut kept under that identifier.
    void takeOverFormerRecord(const DisplayDescriptor& descriptor,
                              const QHash<QString, DisplayDescriptor>& descriptorByID,
                              QHash<QString, ShortcutDisplayRecord>& recordByID);
    void registerHandlers();

    Preferences& m_preferences;
    KeyboardShortcuts::ActionShortcuts& m_shortcuts;
    QList<ShortcutDisplayRecord> m_records;
    QList<ShortcutDisplayItem> m_connected;
    QList<ShortcutDisplayItem> m_disconnected;
    QSet<QString> m_registeredIDs;
};
