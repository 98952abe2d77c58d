// SPDX-License-Identifier: MIT
#include "app/model/Preferences.h"

#include "platform/SettingsStore.h"

void Preferences::storeMissingDefaults() {
    if (!m_store.contains(taskbarIconKey)) {
        m_store.setBool(taskbarIconKey, false);
    }
    if (!m_store.contains(autoCheckForUpdatesKey)) {
        m_store.setBool(autoCheckForUpdatesKey, true);
    }
    if (!m_store.contains(adjustWindowSizeKey)) {
        m_store.setBool(adjustWindowSizeKey, false);
    }
}

bool Preferences::taskbarIconVisible() const {
    return m_store.boolValue(taskbarIconKey);
}

void Preferences::setTaskbarIconVisible(bool visible) {
    m_store.setBool(taskbarIconKey, visible);
}

bool Preferences::autoCheckForUpdates() const {
    return m_store.boolValue(autoCheckForUpdatesKey);
}

void Preferences::setAutoCheckForUpdates(bool enabled) {
    m_store.setBool(autoCheckForUpdatesKey, enabled);
}

bool Preferences::adjustWindowSize() const {
    return m_store.boolValue(adjustWindowSizeKey);
}

void Preferences::setAdjustWindowSize(bool adjust) {
    m_store.setBool(adjustWindowSizeKey, adjust);
}

std::optional<QByteArray> Preferences::shortcutDisplayRecords() const {
    return m_store.dataValue(shortcutDisplayRecordsKey);
}

void Preferences::setShortcutDisplayRecords(const QByteArray& encoded) {
    m_store.setData(shortcutDisplayRecordsKey, encoded);
}

QString Preferences::writeFailure() const {
    return m_store.writeFailure();
}
