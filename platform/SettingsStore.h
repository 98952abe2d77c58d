// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>
#include <variant>

// A stored value keeps its type: bool, integer, string or binary data.
using SettingValue = std::variant<bool, qint64, QString, QByteArray>;

// The per-user key/value store. Every change is written at once, atomically.
class SettingsStore {
public:
    SettingsStore() = default;
    virtual ~SettingsStore() = default;
    SettingsStore(const SettingsStore&) = delete;
    SettingsStore& operator=(const SettingsStore&) = delete;

    // The value under the key as stored, or nothing when the key holds nothing.
    virtual std::optional<SettingValue> value(const QString& key) const = 0;
    // Stores a value under the key and writes the store.
    virtual void setValue(const QString& key, const SettingValue& value) = 0;
    // Removes the key and writes the store; nothing happens when the key holds nothing.
    virtual void remove(const QString& key) = 0;
    // Every key that holds a value.
    virtual QStringList keys() const = 0;
    // Why the values last changed did not reach storage (a read-only folder, a full disk), in words for the
    // user; empty once a write has succeeded. The values stay in memory either way.
    virtual QString writeFailure() const { return {}; }

    bool contains(const QString& key) const { return value(key).has_value(); }

    // Reads with the coercions the preferences rely on. A bool reads from a bool, from a non-zero
    // integer, or from a string "yes", "true" or a non-zero number; anything else is false.
    bool boolValue(const QString& key) const;
    // An integer reads from an integer, a bool (0 or 1) or a string holding a number; anything else is 0.
    qint64 integerValue(const QString& key) const;
    // The string under the key, or nothing when the value is absent or not a string.
    std::optional<QString> stringValue(const QString& key) const;
    // The binary data under the key, or nothing when the value is absent or not data.
    std::optional<QByteArray> dataValue(const QString& key) const;

    void setBool(const QString& key, bool value) { setValue(key, value); }
    void setInteger(const QString& key, qint64 value) { setValue(key, value); }
    void setString(const QString& key, const QString& value) { setValue(key, value); }
    void setData(const QString& key, const QByteArray& value) { setValue(key, value); }
};
