// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

class SettingsStore;

// The program's own preferences: their keys, their defaults, and every write of them. Views and
// services change a preference here (through the controller's setters), never in the store directly.
class Preferences {
public:
    // Stored keys. Their names are read by every later version and never change.
    static inline const QString taskbarIconKey = QStringLiteral("dockIconVisible");
    static inline const QString autoCheckForUpdatesKey = QStringLiteral("autoCheckForUpdatesOnLaunch");
    static inline const QString adjustWindowSizeKey = QStringLiteral("adjustWindowSizeToTargetScreen");
    static inline const QString shortcutDisplayRecordsKey = QStringLiteral("shortcutDisplayRecords.v1");

    explicit Preferences(SettingsStore& store) : m_store(store) {}

    // Stores the default of every key that holds nothing; a value of any type counts as present.
    void storeMissingDefaults();

    bool taskbarIconVisible() const;
    void setTaskbarIconVisible(bool visible);
    bool autoCheckForUpdates() const;
    void setAutoCheckForUpdates(bool enabled);
    bool adjustWindowSize() const;
    void setAdjustWindowSize(bool adjust);
    // The remembered displays in their stored form; nothing when none are stored or not as data.
    std::optional<QByteArray> shortcutDisplayRecords() const;
    void setShortcutDisplayRecords(const QByteArray& encoded);

    // Why the last change is not stored (a read-only folder, a full disk); empty once a write succeeds.
    // The changed values stay in effect in memory, and the next change writes them all again.
    QString writeFailure() const;

    SettingsStore& store() const { return m_store; }

private:
    SettingsStore& m_store;
};
