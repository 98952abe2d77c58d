// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>

#include "platform/SettingsStore.h"

// An in-memory key/value store for tests.
class FakeSettingsStore : public SettingsStore {
public:
    std::optional<SettingValue> value(const QString& key) const override {
        const auto found = m_values.constFind(key);
        return found != m_values.constEnd() ? std::optional<SettingValue>(*found) : std::nullopt;
    }
    void setValue(const QString& key, const SettingValue& value) override { m_values.insert(key, value); }
    void remove(const QString& key) override { m_values.remove(key); }
    QStringList keys() const override { return m_values.keys(); }
    QString writeFailure() const override { return m_writeFailure; }

    void clear() { m_values.clear(); }
    // Every later write is reported as failing for this reason (values are still kept); empty: writes succeed.
    void setWriteFailure(const QString& reason) { m_writeFailure = reason; }

private:
    QMap<QString, SettingValue> m_values;
    QString m_writeFailure;
};
