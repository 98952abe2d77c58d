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

    void clear() { m_values.clear(); }

private:
    QMap<QString, SettingValue> m_values;
};
