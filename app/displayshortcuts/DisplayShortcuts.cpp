// SPDX-License-Identifier: MIT
#include "app/displayshortcuts/DisplayShortcuts.h"

#include <QCollator>
#include <QCoreApplication>
#include <QHash>
#include <QPointer>
#include <algorithm>
#include <limits>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/displayshortcuts/ShortcutDisplayRecordCoding.h"
#include "app/model/Preferences.h"

DisplayShortcuts::DisplayShortcuts(Preferences& preferences, KeyboardShortcuts::ActionShortcuts& shortcuts,
                                   QObject* parent)
    : QObject(parent), m_preferences(preferences), m_shortcuts(shortcuts) {}

QString DisplayShortcuts::shortcutName(const QString& persistentID) {
    return QStringLiteral("moveFocusedWindowToDisplay.") + persistentID;
}

void DisplayShortcuts::load() {
    m_records = ShortcutDisplayRecordCoding::load(m_preferences.store(), Preferences::shortcutDisplayRecordsKey);
}

void DisplayShortcuts::save() {
    m_preferences.setShortcutDisplayRecords(ShortcutDisplayRecordCoding::encode(m_records));
}

void DisplayShortcuts::refresh(const QList<DisplayDescriptor>& descriptors) {
    QHash<QString, DisplayDescriptor> descriptorByID;
    for (const DisplayDescriptor& descriptor : descriptors) {
        Q_ASSERT_X(!descriptorByID.contains(descriptor.persistentID), "DisplayShortcuts::refresh",
                   "two connected displays share one persistent identifier");
        descriptorByID.insert(descriptor.persistentID, descriptor);
    }
    QHash<QString, ShortcutDisplayRecord> recordByID;
    for (const ShortcutDisplayRecord& record : m_records) {
        Q_ASSERT_X(!recordByID.contains(record.id), "DisplayShortcuts::refresh", "records repeat an identifier");
        recordByID.insert(record.id, record);
    }

    for (const DisplayDescriptor& descriptor : descriptors) {
        if (!recordByID.contains(descriptor.persistentID)) {
            takeOverFormerRecord(descriptor, descriptorByID, recordByID);
        }
        ShortcutDisplayRecord record = recordByID.value(descriptor.persistentID);
        record.id = descriptor.persistentID;
        record.lastKnownName = descriptor.name;
        record.lastKnownIndex = descriptor.index;
        recordByID.insert(record.id, record);
    }

    QList<ShortcutDisplayRecord> sorted = recordByID.values();
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(sorted.begin(), sorted.end(), [&collator](const auto& a, const auto& b) {
        const int indexA = a.lastKnownIndex.value_or(std::numeric_limits<int>::max());
        const int indexB = b.lastKnownIndex.value_or(std::numeric_limits<int>::max());
        if (indexA != indexB) {
            return indexA < indexB;
        }
        return collator.compare(a.lastKnownName, b.lastKnownName) < 0;
    });
    m_records = sorted;
    save();

    m_connected.clear();
    for (const DisplayDescriptor& descriptor : descriptors) {
        m_connected.append({descriptor.persistentID, descriptor.name, descriptor.index, true});
    }
    m_disconnected.clear();
    for (const ShortcutDisplayRecord& record : m_records) {
        if (!descriptorByID.contains(record.id)) {
            m_disconnected.append({record.id, record.lastKnownName, record.lastKnownIndex, false});
        }
    }
    registerHandlers();
}

void DisplayShortcuts::takeOverFormerRecord(const DisplayDescriptor& descriptor,
                                            const QHash<QString, DisplayDescriptor>& descriptorByID,
                                            QHash<QString, ShortcutDisplayRecord>& recordByID) {
    const QString& former = descriptor.formerPersistentID;
    // A connected display that still goes by the former identifier keeps its record.
    if (former.isEmpty() || !recordByID.contains(former) || descriptorByID.contains(former)) {
        return;
    }
    ShortcutDisplayRecord record = recordByID.take(former);
    record.id = descriptor.persistentID;
    recordByID.insert(record.id, record);
    // The old name lets go of the key combination before the new one takes it: both would hold one hot key.
    const KeyboardShortcuts::Name formerName(shortcutName(former));
    const std::optional<KeyboardShortcuts::Shortcut> shortcut = m_shortcuts.shortcut(formerName);
    m_shortcuts.setShortcut(std::nullopt, formerName);
    if (shortcut) {
        m_shortcuts.setShortcut(shortcut, KeyboardShortcuts::Name(shortcutName(record.id)));
    }
}

void DisplayShortcuts::registerHandlers() {
    QSet<QString> wanted;
    for (const ShortcutDisplayRecord& record : m_records) {
        wanted.insert(record.id);
    }
    for (const QString& id : m_registeredIDs - wanted) {
        m_shortcuts.removeHandler(KeyboardShortcuts::Name(shortcutName(id)));
    }
    for (const QString& id : wanted - m_registeredIDs) {
        QPointer<DisplayShortcuts> weakSelf(this);
        m_shortcuts.onKeyUp(KeyboardShortcuts::Name(shortcutName(id)), [weakSelf, id] {
            // The move runs after the key event has been handled, and only if the records still exist.
            QMetaObject::invokeMethod(
                QCoreApplication::instance(),
                [weakSelf, id] {
                    if (weakSelf) {
                        Q_EMIT weakSelf->moveRequested(id);
                    }
                },
                Qt::QueuedConnection);
        });
    }
    m_registeredIDs = wanted;
}

bool DisplayShortcuts::hasAssignedShortcuts() const {
    return std::any_of(m_records.cbegin(), m_records.cend(), [this](const ShortcutDisplayRecord& record) {
        return m_shortcuts.shortcut(KeyboardShortcuts::Name(shortcutName(record.id))).has_value();
    });
}

bool DisplayShortcuts::forgetDisconnected(const QString& persistentID) {
    const bool isDisconnected =
        std::any_of(m_disconnected.cbegin(), m_disconnected.cend(),
                    [&persistentID](const ShortcutDisplayItem& item) { return item.id == persistentID; });
    if (!isDisconnected) {
        return false;
    }
    m_records.removeIf([&persistentID](const ShortcutDisplayRecord& record) { return record.id == persistentID; });
    save();
    const KeyboardShortcuts::Name name(shortcutName(persistentID));
    m_shortcuts.removeHandler(name);
    m_shortcuts.setShortcut(std::nullopt, name);
    m_registeredIDs.remove(persistentID);
    return true;
}
