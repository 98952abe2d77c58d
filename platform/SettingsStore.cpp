// SPDX-License-Identifier: MIT
#include "platform/SettingsStore.h"

bool SettingsStore::boolValue(const QString& key) const {
    const std::optional<SettingValue> stored = value(key);
    if (!stored) {
        return false;
    }
    if (const bool* flag = std::get_if<bool>(&*stored)) {
        return *flag;
    }
    if (const qint64* number = std::get_if<qint64>(&*stored)) {
        return *number != 0;
    }
    if (const QString* text = std::get_if<QString>(&*stored)) {
        const QString word = text->trimmed().toLower();
        return word == QLatin1String("yes") || word == QLatin1String("true") || word.toLongLong() != 0;
    }
    return false;
}

qint64 SettingsStore::integerValue(const QString& key) const {
    const std::optional<SettingValue> stored = value(key);
    if (!stored) {
        return 0;
    }
    if (const bool* flag = std::get_if<bool>(&*stored)) {
        return *flag ? 1 : 0;
    }
    if (const qint64* number = std::get_if<qint64>(&*stored)) {
        return *number;
    }
    if (const QString* text = std::get_if<QString>(&*stored)) {
        return text->toLongLong();
    }
    return 0;
}

std::optional<QString> SettingsStore::stringValue(const QString& key) const {
    const std::optional<SettingValue> stored = value(key);
    if (const QString* text = stored ? std::get_if<QString>(&*stored) : nullptr) {
        return *text;
    }
    return std::nullopt;
}

std::optional<QByteArray> SettingsStore::dataValue(const QString& key) const {
    const std::optional<SettingValue> stored = value(key);
    if (const QByteArray* data = stored ? std::get_if<QByteArray>(&*stored) : nullptr) {
        return *data;
    }
    return std::nullopt;
}
