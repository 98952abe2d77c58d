#pragma once

#include <QStringList>
#include <QVariant>

// The per-user key/value store. Values keep their type: bool, integer (qint64), string, binary data.
class UserDefaults {
public:
    UserDefaults() = default;
    virtual ~UserDefaults() = default;
    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;

    // The stored value, or an invalid QVariant when the key holds nothing.
    virtual QVariant object(const QString& key) const = 0;
    // Stores a value (bool, qint64/int, QString or QByteArray) and writes the store at once.
    virtual void setObject(const QString& key, const QVariant& value) = 0;
    virtual void removeObject(const QString& key) = 0;
    // Every key that holds a value.
    virtual QStringList keys() const = 0;

    // The usual coercions of a user-defaults store.
    bool boolForKey(const QString& key) const;
    qint64 integerForKey(const QString& key) const;
    // The string under the key, or nothing when the value is absent or not a string.
    std::optional<QString> stringForKey(const QString& key) const;
    // The binary data under the key, or nothing when the value is absent or not data.
    std::optional<QByteArray> dataForKey(const QString& key) const;
    bool contains(const QString& key) const { return object(key).isValid(); }
};
