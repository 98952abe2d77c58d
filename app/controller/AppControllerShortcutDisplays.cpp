#include <QCollator>
#include <QCoreApplication>
#include <QHash>
#include <algorithm>
#include <limits>

#include "KeyboardShortcuts/ActionShortcuts.h"
#include "app/controller/AppController.h"
#include "app/displays/ScreenSnapshotService.h"
#include "app/displayshortcuts/ShortcutDisplayRecordCoding.h"

QString AppController::shortcutNameRawValue(const QString& persistentID) {
    return QStringLiteral("moveFocusedWindowToDisplay.") + persistentID;
}

QList<ShortcutDisplayRecord> AppController::loadShortcutDisplayRecords() const {
    return ShortcutDisplayRecordCoding::load(m_preferences.store(), Preferences::shortcutDisplayRecordsKey);
}

void AppController::saveShortcutDisplayRecords() {
    m_preferences.setShortcutDisplayRecords(ShortcutDisplayRecordCoding::encode(m_shortcutDisplayRecords));
}

void AppController::refreshShortcutDisplays() {
    const QList<DisplayDescriptor> descriptors = ScreenSnapshotService::currentDisplayDescriptors();

    QHash<QString, DisplayDescriptor> descriptorByID;
    for (const DisplayDescriptor& descriptor : descriptors) {
        Q_ASSERT_X(!descriptorByID.contains(descriptor.persistentID), "refreshShortcutDisplays",
                   "two connected displays share one persistent identifier");
        descriptorByID.insert(descriptor.persistentID, descriptor);
    }
    QHash<QString, ShortcutDisplayRecord> recordByID;
    for (const ShortcutDisplayRecord& record : m_shortcutDisplayRecords) {
        Q_ASSERT_X(!recordByID.contains(record.id), "refreshShortcutDisplays", "records repeat an identifier");
        recordByID.insert(record.id, record);
    }

    for (const DisplayDescriptor& descriptor : descriptors) {
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
    m_shortcutDisplayRecords = sorted;
    saveShortcutDisplayRecords();

    QList<ShortcutDisplayItem> connected;
    for (const DisplayDescriptor& descriptor : descriptors) {
        connected.append({descriptor.persistentID, descriptor.name, descriptor.index, true});
    }
    publish(m_connectedShortcutDisplays, connected, &AppController::connectedShortcutDisplaysChanged);

    QList<ShortcutDisplayItem> disconnected;
    for (const ShortcutDisplayRecord& record : m_shortcutDisplayRecords) {
        if (!descriptorByID.contains(record.id)) {
            disconnected.append({record.id, record.lastKnownName, record.lastKnownIndex, false});
        }
    }
    publish(m_disconnectedShortcutDisplays, disconnected, &AppController::disconnectedShortcutDisplaysChanged);

    registerShortcutHandlersIfNeeded();
}

void AppController::registerShortcutHandlersIfNeeded() {
    QSet<QString> wanted;
    for (const ShortcutDisplayRecord& record : m_shortcutDisplayRecords) {
        wanted.insert(record.id);
    }
    for (const QString& id : m_registeredShortcutDisplayIDs - wanted) {
        m_shortcuts.removeHandler(KeyboardShortcuts::Name(shortcutNameRawValue(id)));
    }
    for (const QString& id : wanted - m_registeredShortcutDisplayIDs) {
        QPointer<AppController> weakSelf(this);
        m_shortcuts.onKeyUp(KeyboardShortcuts::Name(shortcutNameRawValue(id)), [weakSelf, id] {
            // The move runs after the key event has been handled, and only if the controller still exists.
            QMetaObject::invokeMethod(
                QCoreApplication::instance(),
                [weakSelf, id] {
                    if (weakSelf) {
                        weakSelf->moveFocusedWindow(id);
                    }
                },
                Qt::QueuedConnection);
        });
    }
    m_registeredShortcutDisplayIDs = wanted;
}

bool AppController::hasAssignedDisplayShortcuts() const {
    return std::any_of(m_shortcutDisplayRecords.cbegin(), m_shortcutDisplayRecords.cend(), [this](const auto& record) {
        return m_shortcuts.shortcut(KeyboardShortcuts::Name(shortcutNameRawValue(record.id))).has_value();
    });
}

void AppController::deleteDisconnectedShortcutDisplay(const QString& persistentID) {
    const bool isDisconnected =
        std::any_of(m_disconnectedShortcutDisplays.cbegin(), m_disconnectedShortcutDisplays.cend(),
                    [&persistentID](const ShortcutDisplayItem& item) { return item.id == persistentID; });
    if (!isDisconnected) {
        return;
    }
    m_shortcutDisplayRecords.removeIf(
        [&persistentID](const ShortcutDisplayRecord& record) { return record.id == persistentID; });
    saveShortcutDisplayRecords();
    const KeyboardShortcuts::Name name(shortcutNameRawValue(persistentID));
    m_shortcuts.removeHandler(name);
    m_shortcuts.setShortcut(std::nullopt, name);
    m_registeredShortcutDisplayIDs.remove(persistentID);
    refreshShortcutDisplays();
}
